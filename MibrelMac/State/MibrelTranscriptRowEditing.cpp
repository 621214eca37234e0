#include "MibrelMac/State/MibrelTranscriptRowEditing.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "MibrelMac/State/MibrelWorkspaceState.h"

namespace mibrel::MibrelTranscriptRowEditing {
namespace {

std::string joined(std::vector<std::string>::const_iterator first, std::vector<std::string>::const_iterator last) {
    std::string text;
    for (auto word = first; word != last; ++word) text += (text.empty() ? "" : " ") + *word;
    return text;
}

} // namespace

std::pair<std::string, std::string> suggestedSplit(const std::string& text) {
    std::vector<std::string> words;
    std::string word;
    for (std::istringstream pieces(text); std::getline(pieces, word, ' ');) {
        if (!word.empty()) words.push_back(word);
    }
    if (words.size() < 2) return {text, ""};
    const auto middle = words.begin() + static_cast<std::ptrdiff_t>(words.size() / 2);
    return {joined(words.begin(), middle), joined(middle, words.end())};
}

std::optional<TranscriptSegment> nextSegment(const std::string& segmentID, const TeskTranscript& transcript) {
    const auto& segments = transcript.segments;
    const auto found = std::find_if(segments.begin(), segments.end(), [&](const auto& s) { return s.id == segmentID; });
    if (found == segments.end() || found + 1 == segments.end()) return std::nullopt;
    return *(found + 1);
}

MergeAvailability mergeWithNext(const MibrelWorkspaceState& workspace, const Uuid& sourceID,
                                const std::string& segmentID, const TeskTranscript& transcript) {
    const auto next = nextSegment(segmentID, transcript);
    if (next && !workspace.applications(TeskResponseRef{sourceID, next->id}).empty()) {
        return {false, "Next segment has coded evidence; remove or move codes before merging."};
    }
    return {true, "Merge with next segment"};
}

} // namespace mibrel::MibrelTranscriptRowEditing
