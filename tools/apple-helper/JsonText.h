#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <rapidjson/document.h>

namespace mibrel::applehelper {

// Text from files, libraries and servers is not always UTF-8; every byte that does not
// belong to a well-formed sequence becomes U+FFFD, so the answer can always be written.
std::string validUtf8(std::string_view text);

// At most `maxBytes` of the text (then an ellipsis), for quoting user input in messages.
std::string shortened(std::string_view text, std::size_t maxBytes);

rapidjson::Value jsonString(std::string_view text, rapidjson::Document::AllocatorType& allocator);

// One line of compact JSON, or nothing when the value cannot be encoded (a NaN, say).
std::optional<std::string> compactJson(const rapidjson::Value& value);

} // namespace mibrel::applehelper
