#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "Platform/Json/JsonPath.h"

namespace platform::json {

// A document that cannot be turned into the expected value. The message names the
// offending key and where it sits, so a damaged file can be repaired by hand.
class DecodingError : public std::runtime_error {
public:
    enum class Kind { syntax, missingKey, typeMismatch, invalidValue };

    static DecodingError syntax(std::string_view detail);
    static DecodingError missingKey(std::string_view key, const JsonPath& at);
    static DecodingError typeMismatch(std::string_view expected, std::string_view found, const JsonPath& at);
    static DecodingError invalidValue(std::string_view detail, const JsonPath& at);

    Kind kind() const { return m_kind; }

private:
    DecodingError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}
    Kind m_kind;
};

// A value that JSON cannot hold (a non-finite number).
class EncodingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace platform::json
