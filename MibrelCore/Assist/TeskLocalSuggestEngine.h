#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "MibrelCore/Assist/TeskCodeSuggestion.h"
#include "MibrelCore/Model/TeskCode.h"
#include "MibrelCore/Sources/TranscriptSegment.h"

// Keyword matching of a segment against the codebook, on this machine, with no model.
namespace mibrel::TeskLocalSuggestEngine {

// Lower-cased runs of letters and digits of three characters or more, without the
// engine's twenty stop words. Not the analysis tokenizer: apostrophes and hyphens split.
std::set<std::string> tokens(std::string_view text);

// Up to `maxSuggestions` codes whose name and definition share words with the segment,
// the best share of the code's own words first; nothing when none does.
std::optional<TeskCodeSuggestion> suggest(const TranscriptSegment& segment, const Uuid& sourceID,
                                          const std::vector<TeskCode>& codes, std::size_t maxSuggestions);

} // namespace mibrel::TeskLocalSuggestEngine
