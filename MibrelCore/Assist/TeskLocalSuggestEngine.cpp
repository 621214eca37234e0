#include "MibrelCore/Assist/TeskLocalSuggestEngine.h"

#include <algorithm>
#include <array>

#include "Platform/Text/Text.h"

namespace mibrel::TeskLocalSuggestEngine {
namespace {

constexpr std::array<std::string_view, 20> kStopWords{"the",  "and",  "for",  "that", "with", "this", "from",
                                                      "have", "was",  "were", "are",  "but",  "not",  "you",
                                                      "your", "they", "their", "about", "into", "than"};

struct Match {
    const TeskCode* code;
    double score;
    std::vector<std::string> overlap;
};

std::string rationaleFor(const std::vector<Match>& kept) {
    std::vector<std::string> terms;
    for (const Match& match : kept) {
        for (const std::string& term : match.overlap) {
            if (std::find(terms.begin(), terms.end(), term) == terms.end()) terms.push_back(term);
        }
    }
    std::string named;
    for (std::size_t i = 0; i < terms.size() && i < 6; ++i) named += (i == 0 ? "" : ", ") + terms[i];
    return "Matched terms: " + named + ".";
}

} // namespace

std::set<std::string> tokens(std::string_view text) {
    std::set<std::string> result;
    for (std::string& run : platform::text::alphanumericRuns(platform::text::lowercased(text))) {
        if (platform::text::characterCount(run) < 3) continue;
        if (std::find(kStopWords.begin(), kStopWords.end(), run) != kStopWords.end()) continue;
        result.insert(std::move(run));
    }
    return result;
}

std::optional<TeskCodeSuggestion> suggest(const TranscriptSegment& segment, const Uuid& sourceID,
                                          const std::vector<TeskCode>& codes, std::size_t maxSuggestions) {
    const std::set<std::string> segmentTokens = tokens(segment.text);
    if (segmentTokens.empty() || codes.empty()) return std::nullopt;
    std::vector<Match> matches;
    for (const TeskCode& code : codes) {
        const std::set<std::string> codeTokens = tokens(code.name + " " + code.definition);
        if (codeTokens.empty()) continue;
        std::vector<std::string> overlap;
        std::set_intersection(codeTokens.begin(), codeTokens.end(), segmentTokens.begin(), segmentTokens.end(),
                              std::back_inserter(overlap));
        if (overlap.empty()) continue;
        matches.push_back({&code, static_cast<double>(overlap.size()) / static_cast<double>(codeTokens.size()),
                           std::move(overlap)});
    }
    // Equal scores keep the codebook's order.
    std::stable_sort(matches.begin(), matches.end(), [](const Match& a, const Match& b) { return a.score > b.score; });
    if (matches.size() > maxSuggestions) matches.resize(maxSuggestions);
    if (matches.empty()) return std::nullopt;

    TeskCodeSuggestion suggestion;
    suggestion.response = {sourceID, segment.id, std::nullopt, std::nullopt};
    for (const Match& match : matches) suggestion.suggestedCodeIDs.push_back(match.code->id);
    // Each further matching code, up to two, adds 0.08.
    const double lift = 0.08 * static_cast<double>(std::min<std::size_t>(matches.size() - 1, 2));
    suggestion.confidence = std::min(0.95, matches.front().score + lift);
    suggestion.rationale = rationaleFor(matches);
    return suggestion;
}

} // namespace mibrel::TeskLocalSuggestEngine
