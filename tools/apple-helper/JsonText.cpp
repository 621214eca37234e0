#include "tools/apple-helper/JsonText.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace mibrel::applehelper {
namespace {

unsigned char byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

// The length of the well-formed UTF-8 sequence at `index`, or 0 when there is none
// (overlong forms, surrogates and code points past U+10FFFF included).
std::size_t sequenceLength(std::string_view text, std::size_t index) {
    const unsigned char lead = byteAt(text, index);
    if (lead < 0x80) return 1;
    std::size_t length = 0;
    unsigned char low = 0x80, high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) length = 2;
    else if (lead == 0xE0) length = 3, low = 0xA0;
    else if (lead == 0xED) length = 3, high = 0x9F;
    else if (lead >= 0xE1 && lead <= 0xEF) length = 3;
    else if (lead == 0xF0) length = 4, low = 0x90;
    else if (lead == 0xF4) length = 4, high = 0x8F;
    else if (lead >= 0xF1 && lead <= 0xF3) length = 4;
    else return 0;
    if (index + length > text.size()) return 0;
    const unsigned char second = byteAt(text, index + 1);
    if (second < low || second > high) return 0;
    for (std::size_t k = 2; k < length; ++k) {
        if ((byteAt(text, index + k) & 0xC0) != 0x80) return 0;
    }
    return length;
}

} // namespace

std::string validUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t length = sequenceLength(text, index);
        if (length == 0) {
            result += "\xEF\xBF\xBD";
            ++index;
        } else {
            result.append(text.substr(index, length));
            index += length;
        }
    }
    return result;
}

std::string shortened(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return validUtf8(text);
    // A sequence cut in two becomes U+FFFD, which is fine for a quotation.
    return validUtf8(text.substr(0, maxBytes)) + "\xE2\x80\xA6";
}

rapidjson::Value jsonString(std::string_view text, rapidjson::Document::AllocatorType& allocator) {
    const std::string valid = validUtf8(text);
    return rapidjson::Value(valid.data(), static_cast<rapidjson::SizeType>(valid.size()), allocator);
}

std::optional<std::string> compactJson(const rapidjson::Value& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>, rapidjson::CrtAllocator,
                      rapidjson::kWriteValidateEncodingFlag>
        writer(buffer);
    if (!value.Accept(writer)) return std::nullopt;
    return std::string(buffer.GetString(), buffer.GetSize());
}

} // namespace mibrel::applehelper
