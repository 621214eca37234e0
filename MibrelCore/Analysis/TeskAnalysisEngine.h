#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "MibrelCore/Analysis/TeskAnalysisCorpus.h"
#include "MibrelCore/Analysis/TeskAnalysisRows.h"
#include "MibrelCore/Analysis/TeskRigorCheck.h"

// Every count of the analysis, from one snapshot of the project. Pure functions: no state,
// no cache, no input or output, no failure. Segments are matched by their reference key
// ("{SOURCE-ID}|{segmentID}"), never by character offsets. Sorts are stable and break ties
// by natural order (case-insensitive, digit runs by value).
namespace mibrel::TeskAnalysisEngine {

struct CodeScope {
    Uuid id;
};
struct ThemeScope {
    Uuid id;
};
struct CorpusScope {};
using WordFrequencyScope = std::variant<CodeScope, ThemeScope, CorpusScope>;

TeskCorpusOverview corpusOverview(const TeskAnalysisCorpus& corpus);
std::vector<TeskCodeFrequencyRow> codeFrequency(const TeskAnalysisCorpus& corpus);
std::vector<TeskCodeSourceMatrixRow> codeSourceMatrix(const TeskAnalysisCorpus& corpus);
std::vector<TeskCodeCooccurrenceRow> codeCooccurrence(const TeskAnalysisCorpus& corpus);
std::vector<TeskWordFrequencyRow> wordFrequency(const TeskAnalysisCorpus& corpus, const WordFrequencyScope& scope,
                                                std::int64_t minCount, std::int64_t limit);
std::vector<TeskThemeCoverageRow> themeCoverage(const TeskAnalysisCorpus& corpus);
std::vector<TeskCodingStripe> codingStripes(const TeskAnalysisCorpus& corpus, const Uuid& sourceID);
std::vector<TeskQuote> representativeQuotes(const TeskAnalysisCorpus& corpus, std::int64_t limit);
// The twelve checks, always in the same order.
std::vector<TeskRigorCheck> rigorChecks(const TeskAnalysisCorpus& corpus);

// Lower-cased words for counting: ASCII letters, digits, inner apostrophes and hyphens;
// no stop words, no single characters, no bare numbers. In text order, with repeats.
std::vector<std::string> tokenize(std::string_view text);
// The code's name, or "Code" for an id no longer in the codebook.
std::string codeName(const Uuid& codeID, const TeskWorkspace& workspace);

// The warning texts of theme coverage; other checks match on them.
inline constexpr const char* kMissingClaimWarning = "Missing interpretive claim";
inline constexpr const char* kNoEvidenceWarning = "No coded evidence";
inline constexpr const char* kOneSourceWarning = "Evidence comes from one source";
inline constexpr const char* kNoQuoteWarning = "No exemplar quote";
inline constexpr const char* kNoCounterEvidenceWarning = "No counter-evidence note";

} // namespace mibrel::TeskAnalysisEngine
