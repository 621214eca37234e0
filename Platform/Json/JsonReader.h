#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Json/JsonPath.h"

namespace platform::json {

// A read-only view of one value inside a JsonDocument, with its path for errors.
// Views of children point at their parent's path: keep a parent alive while
// its children are in use (decoding functions do, by recursion).
class JsonNode {
public:
    JsonNode(const void* value, JsonPath path) : m_value(value), m_path(path) {}

    bool isNull() const;
    bool isObject() const;
    const JsonPath& path() const { return m_path; }

    // Each throws DecodingError::typeMismatch when the value is of another type.
    std::string_view asString() const;
    bool asBool() const;
    std::int64_t asInt64() const; // also an integral floating-point number in range
    double asDouble() const;
    std::size_t arraySize() const;

    // The element at an index below arraySize().
    JsonNode element(std::size_t index) const;
    // The member with that key, JSON null included; absent when the key is missing.
    // The key must outlive the returned node (it is kept for error messages).
    std::optional<JsonNode> member(std::string_view key) const;
    // Each member of an object, in document order, with its key (valid while the document is).
    void forEachMember(const std::function<void(std::string_view key, const JsonNode& value)>& visit) const;

    [[noreturn]] void failType(std::string_view expected) const;
    [[noreturn]] void failValue(std::string_view detail) const;

private:
    const char* typeName() const;

    const void* m_value;
    JsonPath m_path;
};

// A parsed document; it owns copies of the strings, not the text it came from.
class JsonDocument {
public:
    // Throws DecodingError::syntax for anything that is not one well-formed UTF-8 JSON value.
    // (A std::string, being terminated by a NUL, lets the parser scan with vector instructions.)
    static JsonDocument parse(const std::string& text);

    JsonDocument(JsonDocument&&) noexcept;
    JsonDocument& operator=(JsonDocument&&) noexcept;
    ~JsonDocument();

    JsonNode root() const;

private:
    struct Impl;
    explicit JsonDocument(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

} // namespace platform::json
