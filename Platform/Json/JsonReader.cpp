#include "Platform/Json/JsonReader.h"

#include <cmath>
#include <cstring>

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include "Platform/Json/JsonError.h"
#include "Platform/Text/TextDecoding.h"

namespace platform::json {
namespace {

const rapidjson::Value& value(const void* raw) { return *static_cast<const rapidjson::Value*>(raw); }

// The text is checked as UTF-8 as a whole before parsing, which is much faster than
// the parser's check of each string. Parsing keeps its own stack, so that a file of a million
// nested brackets is an error rather than an overflow of the thread's stack.
constexpr unsigned kParseFlags = rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag;

std::string syntaxDetail(std::string_view text, rapidjson::ParseErrorCode code, std::size_t offset) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return std::string(rapidjson::GetParseError_En(code)) + " (line " + std::to_string(line) + ", column " +
           std::to_string(column) + ")";
}

} // namespace

bool JsonNode::isNull() const { return value(m_value).IsNull(); }
bool JsonNode::isObject() const { return value(m_value).IsObject(); }

const char* JsonNode::typeName() const {
    const auto& v = value(m_value);
    if (v.IsNull()) return "null";
    if (v.IsBool()) return "a Boolean";
    if (v.IsNumber()) return "a number";
    if (v.IsString()) return "a string";
    if (v.IsArray()) return "an array";
    return "an object";
}

void JsonNode::failType(std::string_view expected) const {
    throw DecodingError::typeMismatch(expected, typeName(), m_path);
}

void JsonNode::failValue(std::string_view detail) const { throw DecodingError::invalidValue(detail, m_path); }

std::string_view JsonNode::asString() const {
    const auto& v = value(m_value);
    if (!v.IsString()) failType("a string");
    return {v.GetString(), v.GetStringLength()};
}

bool JsonNode::asBool() const {
    const auto& v = value(m_value);
    if (!v.IsBool()) failType("a Boolean");
    return v.GetBool();
}

std::int64_t JsonNode::asInt64() const {
    const auto& v = value(m_value);
    if (v.IsInt64()) return v.GetInt64();
    if (v.IsDouble()) {
        const double d = v.GetDouble();
        // 2^63 itself is out of range, hence the strict upper bound.
        if (std::trunc(d) == d && d >= -9223372036854775808.0 && d < 9223372036854775808.0) {
            return static_cast<std::int64_t>(d);
        }
    }
    if (v.IsNumber()) failValue("the number does not fit a whole 64-bit integer");
    failType("an integer");
}

double JsonNode::asDouble() const {
    const auto& v = value(m_value);
    if (!v.IsNumber()) failType("a number");
    return v.GetDouble();
}

std::size_t JsonNode::arraySize() const {
    const auto& v = value(m_value);
    if (!v.IsArray()) failType("an array");
    return v.Size();
}

JsonNode JsonNode::element(std::size_t index) const {
    return JsonNode(&value(m_value)[static_cast<rapidjson::SizeType>(index)], JsonPath{&m_path, {}, index});
}

std::optional<JsonNode> JsonNode::member(std::string_view key) const {
    const auto& v = value(m_value);
    if (!v.IsObject()) failType("an object");
    for (auto it = v.MemberBegin(); it != v.MemberEnd(); ++it) {
        const auto& name = it->name;
        if (name.GetStringLength() == key.size() && std::memcmp(name.GetString(), key.data(), key.size()) == 0) {
            return JsonNode(&it->value, JsonPath{&m_path, key, JsonPath::noIndex});
        }
    }
    return std::nullopt;
}

void JsonNode::forEachMember(const std::function<void(std::string_view, const JsonNode&)>& visit) const {
    const auto& v = value(m_value);
    if (!v.IsObject()) failType("an object");
    for (auto it = v.MemberBegin(); it != v.MemberEnd(); ++it) {
        const std::string_view key(it->name.GetString(), it->name.GetStringLength());
        visit(key, JsonNode(&it->value, JsonPath{&m_path, key, JsonPath::noIndex}));
    }
}

struct JsonDocument::Impl {
    rapidjson::Document document;
};

JsonDocument::JsonDocument(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;
JsonDocument::~JsonDocument() = default;

JsonDocument JsonDocument::parse(const std::string& text) {
    if (!text::isWellFormedUTF8(text)) throw DecodingError::syntax("the text is not valid UTF-8");
    // The parser stops at the terminating NUL, so one inside the text would hide what follows.
    if (const void* nul = std::memchr(text.data(), '\0', text.size())) {
        const auto offset = static_cast<std::size_t>(static_cast<const char*>(nul) - text.data());
        throw DecodingError::syntax(syntaxDetail(text, rapidjson::kParseErrorStringInvalidEncoding, offset));
    }
    auto impl = std::make_unique<Impl>();
    auto& document = impl->document;
    document.Parse<kParseFlags>(text.c_str());
    if (document.HasParseError()) {
        throw DecodingError::syntax(syntaxDetail(text, document.GetParseError(), document.GetErrorOffset()));
    }
    return JsonDocument(std::move(impl));
}

JsonNode JsonDocument::root() const { return JsonNode(&m_impl->document, JsonPath{}); }

} // namespace platform::json
