#pragma once

#include <cstdint>
#include <string>

#include <rapidjson/document.h>

namespace mibrel::applehelper {

// An operation's "args" object. A missing or mistyped argument is a RequestError that
// names it, so a client bug reads as one.
class RequestArgs {
public:
    explicit RequestArgs(const rapidjson::Value& args) : m_args(args) {}

    std::string string(const char* name) const;
    std::int64_t integer(const char* name) const;

private:
    const rapidjson::Value& member(const char* name) const;

    const rapidjson::Value& m_args;
};

} // namespace mibrel::applehelper
