#include "Platform/Json/JsonError.h"

namespace platform::json {
namespace {

const std::string kMissing = "The data couldn’t be read because it is missing: ";
const std::string kMalformed = "The data couldn’t be read because it isn’t in the correct format: ";

std::string location(const JsonPath& at) {
    const std::string path = at.toString();
    return path.empty() ? std::string("at the top level") : "at " + path;
}

} // namespace

std::string JsonPath::toString() const {
    std::string text = parent ? parent->toString() : std::string();
    if (index != noIndex) {
        text += '[' + std::to_string(index) + ']';
    } else if (!key.empty() || parent) {
        if (!text.empty()) text += '.';
        text += key;
    }
    return text;
}

DecodingError DecodingError::syntax(std::string_view detail) {
    return DecodingError(Kind::syntax, kMalformed + std::string(detail));
}

DecodingError DecodingError::missingKey(std::string_view key, const JsonPath& at) {
    return DecodingError(Kind::missingKey,
                         kMissing + "no value for the key “" + std::string(key) + "” " + location(at) + ".");
}

DecodingError DecodingError::typeMismatch(std::string_view expected, std::string_view found, const JsonPath& at) {
    return DecodingError(Kind::typeMismatch, kMalformed + "expected " + std::string(expected) + " " + location(at) +
                                                 ", found " + std::string(found) + ".");
}

DecodingError DecodingError::invalidValue(std::string_view detail, const JsonPath& at) {
    return DecodingError(Kind::invalidValue, kMalformed + std::string(detail) + " " + location(at) + ".");
}

} // namespace platform::json
