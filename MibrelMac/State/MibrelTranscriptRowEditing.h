#pragma once

#include <optional>
#include <string>
#include <utility>

#include "MibrelCore/Model/TeskValueTypes.h"
#include "MibrelCore/Sources/TeskTranscript.h"

namespace mibrel {

class MibrelWorkspaceState;

// What a transcript row offers when the researcher corrects it: the split it proposes and
// whether it may merge with the next segment. Kept apart from the widgets so that both the
// window and the tests use the same rules.
namespace MibrelTranscriptRowEditing {

// The text cut at its middle word: "one two three" gives "one" and "two three".
std::pair<std::string, std::string> suggestedSplit(const std::string& text);

// The segment after the given one, in transcript order; absent for the last or an unknown id.
std::optional<TranscriptSegment> nextSegment(const std::string& segmentID, const TeskTranscript& transcript);

struct MergeAvailability {
    bool enabled = true;
    std::string tooltip;

    bool operator==(const MergeAvailability&) const = default;
};

// A merge removes the next segment's id, so coded evidence there blocks it.
MergeAvailability mergeWithNext(const MibrelWorkspaceState& workspace, const Uuid& sourceID,
                                const std::string& segmentID, const TeskTranscript& transcript);

} // namespace MibrelTranscriptRowEditing
} // namespace mibrel
