#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "MerivanteCore/Import/MvkbPackage.h"
#include "Platform/Json/JsonReader.h"

namespace merivante {

// Reads a survey package: one JSON document from the family's survey tool, with its table
// either embedded (column-wise or row-wise) or left in an external file it names.
struct MvkbReader {
    // Absent when the bytes are not a JSON object, or neither name the tool in `app` nor
    // carry both `project` and `data`.
    static std::optional<MvkbPackage> read(const std::string& data);

    // The reading rules MvkbFieldReader shares. Nodes returned point at their parent's
    // path, so the node passed in must outlive them.

    // A JSON value as cell text: null "", a string as it is, "true"/"false", a whole number
    // below 1e15 without a point, any other number in its shortest exact text. Arrays and
    // objects have no text and give "".
    static std::string stringify(const platform::json::JsonNode& value);
    // The document when the text is JSON with an object at the top; absent otherwise.
    static std::optional<platform::json::JsonDocument> parseObject(const std::string& text);
    // The member when `object` is an object and the member is a string; absent otherwise.
    static std::optional<std::string_view> text(const platform::json::JsonNode& object, std::string_view key);
    // The member when `object` is an object and the member is an array; absent otherwise.
    static std::optional<platform::json::JsonNode> array(const platform::json::JsonNode& object,
                                                         std::string_view key);
    // The elements of an array that are objects, in order; others are passed over.
    static std::vector<platform::json::JsonNode> objects(const platform::json::JsonNode& array);
};

} // namespace merivante
