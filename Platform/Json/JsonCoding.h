#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Platform/Foundation/Bytes.h"
#include "Platform/Foundation/CowArray.h"
#include "Platform/Foundation/Date.h"
#include "Platform/Foundation/EnumRawValues.h"
#include "Platform/Foundation/Uuid.h"
#include "Platform/Json/JsonError.h"
#include "Platform/Json/JsonReader.h"
#include "Platform/Json/JsonWriter.h"

// The shared JSON coding of every file the programs write: pretty-printed with sorted
// keys, ISO 8601 dates, upper-case UUIDs, base64 binary, optional values left out when
// absent, unknown keys ignored on reading.
namespace platform::json {

template <class T, class Enable = void>
struct JsonCoder; // decode(const JsonNode&) -> T and encode(JsonWriter&, const T&)

class JsonObjectReader;
class JsonObjectWriter;

// A record codes itself as an object:
//   static T fromJson(const JsonObjectReader&);  void toJson(JsonObjectWriter&) const;
template <class T>
concept JsonRecord = requires(const T& value, const JsonObjectReader& reader, JsonObjectWriter& writer) {
    { T::fromJson(reader) } -> std::same_as<T>;
    value.toJson(writer);
};

// Reads the members of one object. A member holding JSON null counts as missing
// wherever a default or an absent value is allowed; for a required key it is a type error.
class JsonObjectReader {
public:
    explicit JsonObjectReader(const JsonNode& node) : m_node(node) {
        if (!m_node.isObject()) m_node.failType("an object");
    }

    const JsonNode& node() const { return m_node; }

    // The member when present and not null.
    std::optional<JsonNode> find(std::string_view key) const {
        auto member = m_node.member(key);
        if (member && member->isNull()) return std::nullopt;
        return member;
    }

    template <class T>
    T required(std::string_view key) const {
        const auto member = m_node.member(key);
        if (!member) throw DecodingError::missingKey(key, m_node.path());
        return JsonCoder<T>::decode(*member);
    }

    template <class T>
    std::optional<T> optional(std::string_view key) const {
        const auto member = find(key);
        if (!member) return std::nullopt;
        return JsonCoder<T>::decode(*member);
    }

    template <class T>
    T value(std::string_view key, T fallback) const {
        const auto member = find(key);
        return member ? JsonCoder<T>::decode(*member) : std::move(fallback);
    }

    // As value(), with a fallback made only when needed (a fresh id, the current moment).
    template <class T, class MakeFallback>
        requires std::is_invocable_r_v<T, MakeFallback>
    T valueOr(std::string_view key, MakeFallback makeFallback) const {
        const auto member = find(key);
        return member ? JsonCoder<T>::decode(*member) : makeFallback();
    }

private:
    JsonNode m_node;
};

// Writes the members of one object; callers list fields in ascending key order.
class JsonObjectWriter {
public:
    explicit JsonObjectWriter(JsonWriter& writer) : m_writer(writer) {}

    template <class T>
    void field(std::string_view key, const T& value) {
        m_writer.key(key);
        JsonCoder<T>::encode(m_writer, value);
    }

    // An absent value leaves the key out.
    template <class T>
    void field(std::string_view key, const std::optional<T>& value) {
        if (value) field(key, *value);
    }

    JsonWriter& writer() { return m_writer; }

private:
    JsonWriter& m_writer;
};

template <>
struct JsonCoder<bool> {
    static bool decode(const JsonNode& node) { return node.asBool(); }
    static void encode(JsonWriter& writer, bool value) { writer.boolean(value); }
};

template <>
struct JsonCoder<std::int64_t> {
    static std::int64_t decode(const JsonNode& node) { return node.asInt64(); }
    static void encode(JsonWriter& writer, std::int64_t value) { writer.integer(value); }
};

template <>
struct JsonCoder<double> {
    static double decode(const JsonNode& node) { return node.asDouble(); }
    static void encode(JsonWriter& writer, double value) { writer.number(value); }
};

template <>
struct JsonCoder<std::string> {
    static std::string decode(const JsonNode& node) { return std::string(node.asString()); }
    static void encode(JsonWriter& writer, const std::string& value) { writer.string(value); }
};

template <>
struct JsonCoder<Uuid> {
    static Uuid decode(const JsonNode& node);
    static void encode(JsonWriter& writer, const Uuid& value);
};

template <>
struct JsonCoder<Date> {
    static Date decode(const JsonNode& node);
    static void encode(JsonWriter& writer, Date value);
};

template <>
struct JsonCoder<Bytes> {
    static Bytes decode(const JsonNode& node);
    static void encode(JsonWriter& writer, const Bytes& value);
};

template <class E>
struct JsonCoder<E, std::enable_if_t<RawRepresentable<E>>> {
    static E decode(const JsonNode& node) {
        const std::string_view raw = node.asString();
        if (auto value = fromRawValue<E>(raw)) return *value;
        node.failValue("“" + std::string(raw) + "” is not one of the allowed values");
    }
    static void encode(JsonWriter& writer, E value) { writer.string(rawValue(value)); }
};

template <class T>
struct JsonCoder<std::vector<T>> {
    static std::vector<T> decode(const JsonNode& node) {
        const std::size_t count = node.arraySize();
        std::vector<T> items;
        items.reserve(count);
        for (std::size_t i = 0; i < count; ++i) items.push_back(JsonCoder<T>::decode(node.element(i)));
        return items;
    }
    static void encode(JsonWriter& writer, const std::vector<T>& items) {
        writer.startArray();
        for (const auto& item : items) JsonCoder<T>::encode(writer, item);
        writer.endArray();
    }
};

// An element that may be absent, such as a cell of a matrix: absent is written as null.
template <class T>
struct JsonCoder<std::optional<T>> {
    static std::optional<T> decode(const JsonNode& node) {
        if (node.isNull()) return std::nullopt;
        return JsonCoder<T>::decode(node);
    }
    static void encode(JsonWriter& writer, const std::optional<T>& value) {
        if (value) JsonCoder<T>::encode(writer, *value);
        else writer.null();
    }
};

// An object whose keys are data, such as counts by name; written in key order.
template <class T>
struct JsonCoder<std::map<std::string, T>> {
    static std::map<std::string, T> decode(const JsonNode& node) {
        std::map<std::string, T> items;
        node.forEachMember([&](std::string_view key, const JsonNode& value) {
            items.insert_or_assign(std::string(key), JsonCoder<T>::decode(value));
        });
        return items;
    }
    static void encode(JsonWriter& writer, const std::map<std::string, T>& items) {
        writer.startObject();
        for (const auto& [key, value] : items) {
            writer.key(key);
            JsonCoder<T>::encode(writer, value);
        }
        writer.endObject();
    }
};

template <class T>
struct JsonCoder<CowArray<T>> {
    static CowArray<T> decode(const JsonNode& node) { return CowArray<T>(JsonCoder<std::vector<T>>::decode(node)); }
    static void encode(JsonWriter& writer, const CowArray<T>& items) {
        writer.startArray();
        for (const auto& item : items) JsonCoder<T>::encode(writer, item);
        writer.endArray();
    }
};

template <class T>
struct JsonCoder<T, std::enable_if_t<JsonRecord<T>>> {
    static T decode(const JsonNode& node) { return T::fromJson(JsonObjectReader(node)); }
    static void encode(JsonWriter& writer, const T& value) {
        writer.startObject();
        JsonObjectWriter object(writer);
        value.toJson(object);
        writer.endObject();
    }
};

// The whole document as pretty-printed text.
template <class T>
std::string encode(const T& value) {
    JsonWriter writer;
    JsonCoder<T>::encode(writer, value);
    return writer.take();
}

// The whole document on one line, keys sorted as in files.
template <class T>
std::string encodeCompact(const T& value) {
    JsonWriter writer(JsonWriter::Layout::compact);
    JsonCoder<T>::encode(writer, value);
    return writer.take();
}

// Throws DecodingError when the text is not JSON or not a T.
template <class T>
T decode(const std::string& text) {
    const JsonDocument document = JsonDocument::parse(text);
    return JsonCoder<T>::decode(document.root());
}

} // namespace platform::json
