#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "MibrelCore/Assist/TeskCodeSuggestion.h"
#include "MibrelCore/Model/TeskCode.h"
#include "MibrelCore/Sources/TranscriptSegment.h"

namespace mibrel {

class MibrelAppleHelperSidecar;

// Whether the on-device language model can be asked, and its name to show.
struct TeskAppleIntelligenceStatus {
    bool available = false;
    std::string model = "the local model";
    std::optional<std::string> reason;

    bool operator==(const TeskAppleIntelligenceStatus&) const = default;
};

// Code suggestions from the on-device model, asked through the helper program one segment
// at a time. All the application knows of the model is the text of its reply.
namespace TeskAppleIntelligenceAssist {

inline constexpr const char* task = "Qualitative code suggestion";
inline constexpr const char* prompt =
    "Review one transcript segment against the codebook.\n"
    "Suggest only codes that clearly fit the segment language.\n"
    "If none fit, reply with exactly: NONE\n"
    "\n"
    "Reply format (one line per suggested code):\n"
    "CODE|<code name>|<0.0-1.0 confidence>|<short rationale>";
inline constexpr int maxTokens = 220;

// Never fails: any failure reads as not available.
TeskAppleIntelligenceStatus status(MibrelAppleHelperSidecar& helper);

// "Codebook:\n- name: definition…\n\nSegment:\n<text>"
std::string context(const std::string& trimmedText, const std::vector<TeskCode>& codes);

// Blocks until the helper replies; lets the helper's errors through.
std::optional<TeskCodeSuggestion> suggest(MibrelAppleHelperSidecar& helper, const TranscriptSegment& segment,
                                          const Uuid& sourceID, const std::vector<TeskCode>& codes);

// Reads "CODE|name|confidence|rationale" lines, skipping what does not fit; the model
// cannot invent a code.
std::optional<TeskCodeSuggestion> parseSuggestion(std::string_view text, const TranscriptSegment& segment,
                                                  const Uuid& sourceID, const std::vector<TeskCode>& codes);

} // namespace TeskAppleIntelligenceAssist
} // namespace mibrel
