#include "Platform/Json/JsonCoding.h"

namespace platform::json {

Uuid JsonCoder<Uuid>::decode(const JsonNode& node) {
    const std::string_view text = node.asString();
    if (auto uuid = Uuid::parse(text)) return *uuid;
    node.failValue("“" + std::string(text) + "” is not a valid UUID");
}

void JsonCoder<Uuid>::encode(JsonWriter& writer, const Uuid& value) {
    char text[36];
    value.writeCanonical(text);
    writer.plainString(std::string_view(text, sizeof text));
}

Date JsonCoder<Date>::decode(const JsonNode& node) {
    const std::string_view text = node.asString();
    if (auto date = parseISO8601(text)) return *date;
    node.failValue("expected date string to be ISO8601-formatted, found “" + std::string(text) + "”");
}

void JsonCoder<Date>::encode(JsonWriter& writer, Date value) {
    char text[kISO8601BufferSize];
    writer.plainString(std::string_view(text, writeISO8601(value, text)));
}

Bytes JsonCoder<Bytes>::decode(const JsonNode& node) {
    if (auto bytes = Bytes::fromBase64(node.asString())) return *bytes;
    node.failValue("the data is not valid Base64");
}

void JsonCoder<Bytes>::encode(JsonWriter& writer, const Bytes& value) { writer.string(value.base64Encoded()); }

} // namespace platform::json
