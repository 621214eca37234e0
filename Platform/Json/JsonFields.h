#pragma once

#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "Platform/Json/JsonCoding.h"

// Records describe their JSON once, as a table of fields, and get decoding and encoding
// from it:
//
//   static constexpr auto jsonFields() {
//       return std::tuple{required("codeID", &TeskCodeApplication::codeID), …};
//   }
//
// Keys are listed in ascending byte order (checked when compiling), which is the order
// they are written in. A missing defaulted field keeps the value a default-constructed
// record has, so a record's member initializers are its decoding defaults. A record may
// add `static void finishDecoding(T&, const JsonObjectReader&)` for migrations.
namespace platform::json {

enum class FieldRule { required, defaulted, optional };

template <class T, class M, FieldRule Rule>
struct MemberField {
    std::string_view key;
    M T::*member;
};

// Written, never read: a value derived from the others, kept for older readers.
template <class T, class V>
struct ComputedField {
    std::string_view key;
    V (*get)(const T&);
};

template <class T, class M>
constexpr MemberField<T, M, FieldRule::required> required(std::string_view key, M T::*member) {
    return {key, member};
}

// Missing or null keeps the default-constructed value.
template <class T, class M>
constexpr MemberField<T, M, FieldRule::defaulted> defaulted(std::string_view key, M T::*member) {
    return {key, member};
}

// For std::optional members: missing or null is absent, and absent is not written.
template <class T, class M>
constexpr MemberField<T, std::optional<M>, FieldRule::optional> optional(std::string_view key,
                                                                         std::optional<M> T::*member) {
    return {key, member};
}

template <class T, class V>
constexpr ComputedField<T, V> computed(std::string_view key, V (*get)(const T&)) {
    return {key, get};
}

template <class T>
concept JsonFieldRecord = requires { T::jsonFields(); };

namespace detail {

template <class Fields>
constexpr bool keysAscending(const Fields& fields) {
    return std::apply(
        [](const auto&... field) {
            std::string_view previous;
            bool first = true;
            bool ascending = true;
            ((ascending = ascending && (first || previous < field.key), previous = field.key, first = false), ...);
            return ascending;
        },
        fields);
}

template <class T, class M, FieldRule Rule>
void decodeField(const JsonObjectReader& reader, T& value, const MemberField<T, M, Rule>& field) {
    if constexpr (Rule == FieldRule::required) {
        value.*field.member = reader.required<M>(field.key);
    } else if constexpr (Rule == FieldRule::defaulted) {
        if (auto node = reader.find(field.key)) value.*field.member = JsonCoder<M>::decode(*node);
    } else {
        value.*field.member = reader.optional<typename M::value_type>(field.key);
    }
}

template <class T, class V>
void decodeField(const JsonObjectReader&, T&, const ComputedField<T, V>&) {}

template <class T, class M, FieldRule Rule>
void encodeField(JsonObjectWriter& writer, const T& value, const MemberField<T, M, Rule>& field) {
    writer.field(field.key, value.*field.member);
}

template <class T, class V>
void encodeField(JsonObjectWriter& writer, const T& value, const ComputedField<T, V>& field) {
    writer.field(field.key, field.get(value));
}

} // namespace detail

template <JsonFieldRecord T>
struct JsonCoder<T> {
    static_assert(detail::keysAscending(T::jsonFields()), "JSON fields must be listed in ascending key order");

    static T decode(const JsonNode& node) {
        const JsonObjectReader reader(node);
        T value{};
        std::apply([&](const auto&... field) { (detail::decodeField(reader, value, field), ...); }, T::jsonFields());
        if constexpr (requires { T::finishDecoding(value, reader); }) T::finishDecoding(value, reader);
        return value;
    }

    static void encode(JsonWriter& writer, const T& value) {
        writer.startObject();
        JsonObjectWriter object(writer);
        std::apply([&](const auto&... field) { (detail::encodeField(object, value, field), ...); }, T::jsonFields());
        writer.endObject();
    }
};

} // namespace platform::json
