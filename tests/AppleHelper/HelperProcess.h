#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <rapidjson/document.h>

namespace mibrel::testing {

// The helper program run as the application runs it: requests on its stdin, answers
// read line by line from its stdout, and stderr a pipe that nobody reads.
class HelperProcess {
public:
    // Variables to set in the helper's environment; nullopt removes one.
    using Environment = std::map<std::string, std::optional<std::string>>;

    explicit HelperProcess(const Environment& changes = {});
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    void send(std::string_view line);
    // The next output line; nothing once the helper has closed its output.
    std::optional<std::string> readLine();
    // Sends one line and parses the one answer (a Null document when there is none).
    rapidjson::Document ask(std::string_view line);

    // Closes the helper's input, collects what else it printed and its exit status.
    int finish(std::string& laterOutput);

private:
    int m_pid = -1;
    int m_input = -1;
    int m_output = -1;
    int m_errors = -1;
    std::string m_pending;
};

} // namespace mibrel::testing
