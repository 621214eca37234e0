#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "Platform/Json/JsonFields.h"

namespace merivante {

// What a statistical-package reader found in a file, before it becomes a dataset. Value
// labels and notes stay here: the dataset has no place for them.
struct TabularImport {
    std::vector<std::string> variableNames; // unique ignoring case
    std::map<std::string, std::string> variableLabels; // name to non-empty label
    std::map<std::string, std::map<std::string, std::string>> valueLabels; // name to value text to label
    std::vector<std::vector<std::string>> rows; // one text per variable per case
    std::vector<std::string> notes; // what the reader did, in order

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TabularImport;
        return std::tuple{required("notes", &T::notes), required("rows", &T::rows),
                          required("valueLabels", &T::valueLabels), required("variableLabels", &T::variableLabels),
                          required("variableNames", &T::variableNames)};
    }
};

} // namespace merivante
