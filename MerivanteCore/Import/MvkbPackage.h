#pragma once

#include <map>
#include <string>
#include <vector>

namespace merivante {

// What a survey package (.mvkb) holds once read: a table as text, plus what the package
// says about its variables. Empty headers or rows mean there is nothing to import, and
// `notes` then may say where the data is.
struct MvkbPackage {
    std::string title;
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;
    std::map<std::string, std::string> roles; // variable name to role
    std::vector<std::string> notes;
};

// What a field-study package (.mvkbfield) holds once read: one row per case, the case's
// metadata columns first, then one column per quantitative item.
struct MvkbFieldPackage {
    std::string title;
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;
    std::map<std::string, std::string> labels; // item column to its item text
    std::map<std::string, std::string> roles;  // variable name to role
    std::vector<std::string> notes;
};

} // namespace merivante
