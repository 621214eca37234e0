#pragma once

#include <cstddef>
#include <functional>
#include <istream>
#include <map>
#include <string>
#include <string_view>

#include <rapidjson/document.h>

#include "tools/apple-helper/RequestArgs.h"

namespace mibrel::applehelper {

// The line protocol: each request line, a JSON object {"id", "op", "args"}, gets exactly
// one response line, {"ok": true, "result": ...} or {"ok": false, "error": "..."}, in
// order. Whatever a line holds, the answer is one line and the server goes on.
class HelperServer {
public:
    // Fills `result` (a Null document on entry) or throws; a RequestError's message
    // reaches the user as it is.
    using Operation = std::function<void(const RequestArgs& args, rapidjson::Document& result)>;
    // Returns false when the line could not be delivered (the application is gone).
    using LineSink = std::function<bool(std::string_view line)>;

    static constexpr std::size_t defaultMaxRequestBytes = 16 * 1024 * 1024;

    explicit HelperServer(std::size_t maxRequestBytes = defaultMaxRequestBytes);

    void add(std::string op, Operation operation);

    // The response line for one request line, without its line end.
    std::string respond(std::string_view line) const;

    // Answers every line of `input` until it ends; false when `send` failed first.
    bool serve(std::istream& input, const LineSink& send) const;

private:
    std::string respondToRequest(const rapidjson::Value& request) const;
    const Operation& operation(const rapidjson::Value& request) const;

    std::size_t m_maxRequestBytes;
    std::map<std::string, Operation, std::less<>> m_operations;
};

} // namespace mibrel::applehelper
