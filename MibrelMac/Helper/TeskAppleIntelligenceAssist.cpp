#include "MibrelMac/Helper/TeskAppleIntelligenceAssist.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <exception>

#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "Platform/Text/Text.h"

namespace mibrel::TeskAppleIntelligenceAssist {
namespace {

constexpr const char* kNotAvailable = "Not available on this computer.";

std::string upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](unsigned char c) { return std::toupper(c); });
    return result;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(separator, start);
        pieces.push_back(text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start));
        if (end == std::string_view::npos) return pieces;
        start = end + 1;
    }
}

// The whole field must be a number; anything else reads as 0.6. Kept within 0.1 and 0.95.
double confidenceOf(std::string_view field) {
    double value = 0.6;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (field.empty() || error != std::errc() || end != field.data() + field.size() || std::isnan(value)) value = 0.6;
    return std::clamp(value, 0.1, 0.95);
}

const TeskCode* codeNamed(const std::vector<TeskCode>& codes, std::string_view name) {
    const std::string wanted = platform::text::lowercased(name);
    const auto found = std::find_if(codes.begin(), codes.end(),
                                    [&](const TeskCode& code) { return platform::text::lowercased(code.name) == wanted; });
    return found == codes.end() ? nullptr : &*found;
}

std::string joined(const std::vector<std::string_view>& fields, std::size_t from, char separator) {
    std::string text;
    for (std::size_t i = from; i < fields.size(); ++i) {
        if (i > from) text += separator;
        text += fields[i];
    }
    return text;
}

} // namespace

TeskAppleIntelligenceStatus status(MibrelAppleHelperSidecar& helper) {
    std::optional<rapidjson::Document> reply;
    try {
        reply = helper.call("ai.status", rapidjson::Document(rapidjson::kObjectType));
    } catch (const std::exception&) {
        return {false, "the local model", kNotAvailable};
    }
    if (!reply || !reply->IsObject()) return {false, "the local model", kNotAvailable};
    TeskAppleIntelligenceStatus result;
    const auto available = reply->FindMember("available");
    result.available = available != reply->MemberEnd() && available->value.IsBool() && available->value.GetBool();
    if (const auto model = reply->FindMember("model"); model != reply->MemberEnd() && model->value.IsString()) {
        result.model = model->value.GetString();
    }
    if (!result.available) {
        const auto reason = reply->FindMember("reason");
        result.reason = reason != reply->MemberEnd() && reason->value.IsString() ? reason->value.GetString() : kNotAvailable;
    }
    return result;
}

std::string context(const std::string& trimmedText, const std::vector<TeskCode>& codes) {
    std::string list;
    for (const TeskCode& code : codes) list += (list.empty() ? "" : "\n") + ("- " + code.name + ": " + code.definition);
    return "Codebook:\n" + list + "\n\nSegment:\n" + trimmedText;
}

std::optional<TeskCodeSuggestion> suggest(MibrelAppleHelperSidecar& helper, const TranscriptSegment& segment,
                                          const Uuid& sourceID, const std::vector<TeskCode>& codes) {
    if (codes.empty()) return std::nullopt;
    const std::string text = platform::text::trimmed(segment.text);
    if (text.empty()) return std::nullopt;
    rapidjson::Document args(rapidjson::kObjectType);
    auto& allocator = args.GetAllocator();
    const std::string built = context(text, codes);
    args.AddMember("task", rapidjson::StringRef(task), allocator);
    args.AddMember("prompt", rapidjson::StringRef(prompt), allocator);
    args.AddMember("context", rapidjson::Value(built.c_str(), static_cast<rapidjson::SizeType>(built.size()), allocator),
                   allocator);
    args.AddMember("max_tokens", maxTokens, allocator);
    const auto reply = helper.call("ai.generate", args);
    if (!reply || !reply->IsObject()) return std::nullopt;
    const auto replyText = reply->FindMember("text");
    if (replyText == reply->MemberEnd() || !replyText->value.IsString()) return std::nullopt;
    return parseSuggestion(std::string_view(replyText->value.GetString(), replyText->value.GetStringLength()), segment,
                           sourceID, codes);
}

std::optional<TeskCodeSuggestion> parseSuggestion(std::string_view text, const TranscriptSegment& segment,
                                                  const Uuid& sourceID, const std::vector<TeskCode>& codes) {
    const std::string whole = platform::text::trimmed(text);
    if (whole.empty() || upper(whole) == "NONE") return std::nullopt;
    TeskCodeSuggestion suggestion;
    suggestion.response = {sourceID, segment.id, std::nullopt, std::nullopt};
    for (const std::string_view line : split(whole, '\n')) {
        if (line.empty()) continue;
        const auto fields = split(line, '|');
        if (fields.size() < 4 || upper(fields[0]) != "CODE") continue;
        const TeskCode* code = codeNamed(codes, platform::text::trimmed(fields[1]));
        if (!code) continue;
        if (suggestion.suggestedCodeIDs.empty()) {
            suggestion.confidence = confidenceOf(fields[2]);
            suggestion.rationale = platform::text::trimmed(joined(fields, 3, '|'));
            if (suggestion.rationale.empty()) suggestion.rationale = "Suggested by the local model.";
        }
        suggestion.suggestedCodeIDs.push_back(code->id);
    }
    if (suggestion.suggestedCodeIDs.empty()) return std::nullopt;
    return suggestion;
}

} // namespace mibrel::TeskAppleIntelligenceAssist
