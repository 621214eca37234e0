#include "MibrelMac/State/MibrelSourcesState.h"

#include <algorithm>

#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

using platform::text::trimmed;

std::vector<TranscriptSegment>::iterator findSegment(TeskTranscript& transcript, const std::string& segmentID) {
    return std::find_if(transcript.segments.begin(), transcript.segments.end(),
                        [&](const TranscriptSegment& segment) { return segment.id == segmentID; });
}

// Two texts trimmed, the empty ones dropped, joined by one blank.
std::string joined(const std::string& first, const std::string& second) {
    const std::string a = trimmed(first);
    const std::string b = trimmed(second);
    if (a.empty() || b.empty()) return a + b;
    return a + " " + b;
}

} // namespace

// `change` gets the transcript and the found segment, and says whether to save.
template <class Change>
void MibrelSourcesState::changeSegment(const Uuid& sourceID, const std::string& segmentID, Change change) {
    const auto found = m_transcripts.find(sourceID);
    if (found == m_transcripts.end()) return;
    TeskTranscript edited = found->second;
    const auto segment = findSegment(edited, segmentID);
    if (segment == edited.segments.end()) return;
    if (change(edited, segment)) updateTranscript(edited, sourceID);
}

// Saving an emptied segment deletes it, whatever evidence points at it.
void MibrelSourcesState::updateTranscriptSegmentText(const Uuid& sourceID, const std::string& segmentID,
                                                     const std::string& text) {
    changeSegment(sourceID, segmentID, [&](TeskTranscript& transcript, auto segment) {
        std::string clean = trimmed(text);
        if (clean.empty()) transcript.segments.erase(segment);
        else segment->text = std::move(clean);
        return true;
    });
}

// Time is cut in half by time, not by words; the first half keeps the id.
void MibrelSourcesState::splitTranscriptSegment(const Uuid& sourceID, const std::string& segmentID,
                                                const std::string& firstText, const std::string& secondText) {
    changeSegment(sourceID, segmentID, [&](TeskTranscript& transcript, auto segment) {
        std::string first = trimmed(firstText);
        std::string second = trimmed(secondText);
        if (first.empty() && second.empty()) return false;
        if (first.empty() || second.empty()) {
            segment->text = first.empty() ? std::move(second) : std::move(first);
            return true;
        }
        std::optional<double> middle;
        if (segment->start && segment->end && *segment->end > *segment->start) {
            middle = *segment->start + (*segment->end - *segment->start) * 0.5;
        }
        TranscriptSegment next{Uuid::random().uuidString(), middle ? middle : segment->start, segment->end,
                               std::move(second)};
        segment->text = std::move(first);
        if (middle) segment->end = middle;
        transcript.segments.insert(segment + 1, std::move(next));
        return true;
    });
}

void MibrelSourcesState::mergeTranscriptSegmentWithNext(const Uuid& sourceID, const std::string& segmentID) {
    changeSegment(sourceID, segmentID, [&](TeskTranscript& transcript, auto segment) {
        const auto next = segment + 1;
        if (next == transcript.segments.end()) return false;
        segment->text = joined(segment->text, next->text);
        if (next->end) segment->end = next->end;
        transcript.segments.erase(next);
        return true;
    });
}

void MibrelSourcesState::markTranscriptReviewed(const Uuid& sourceID) {
    const TeskSource* found = source(sourceID);
    if (!found || transcript(sourceID).segments.empty()) return;
    TeskSource changed = *found;
    TeskTranscriptionStatus status{TeskTranscriptionStatusKind::reviewed, "Reviewed by researcher.",
                                   static_cast<std::int64_t>(transcript(sourceID).segments.size()), std::nullopt,
                                   std::nullopt, platform::now()};
    if (const auto summary = transcriptCoverageSummary(*found)) {
        status.message = "Reviewed by researcher. " + summary->statusText() + ".";
        status.segmentCount = summary->segmentCount;
        status.recognizedSeconds = summary->recognizedSeconds;
        status.mediaDuration = summary->mediaDuration;
    }
    changed.transcriptionStatus = std::move(status);
    updateSource(changed);
}

void MibrelSourcesState::addMediaNote(const Uuid& sourceID, double timestamp, const std::string& text) {
    std::string clean = trimmed(text);
    const TeskSource* found = source(sourceID);
    if (clean.empty() || !found) return;
    TeskSource changed = *found;
    changed.mediaNotes.push_back({Uuid::random(), timestamp, std::move(clean), platform::now()});
    std::stable_sort(changed.mediaNotes.begin(), changed.mediaNotes.end(),
                     [](const TeskMediaNote& a, const TeskMediaNote& b) { return a.timestamp < b.timestamp; });
    updateSource(changed);
}

void MibrelSourcesState::updateMediaNote(const Uuid& sourceID, const Uuid& noteID, const std::string& text) {
    const TeskSource* found = source(sourceID);
    if (!found) return;
    TeskSource changed = *found;
    const auto note = std::find_if(changed.mediaNotes.begin(), changed.mediaNotes.end(),
                                   [&](const TeskMediaNote& n) { return n.id == noteID; });
    if (note == changed.mediaNotes.end()) return;
    std::string clean = trimmed(text);
    if (clean.empty()) {
        deleteMediaNote(sourceID, noteID);
        return;
    }
    note->text = std::move(clean);
    updateSource(changed);
}

void MibrelSourcesState::deleteMediaNote(const Uuid& sourceID, const Uuid& noteID) {
    const TeskSource* found = source(sourceID);
    if (!found) return;
    TeskSource changed = *found;
    const auto removed = std::erase_if(changed.mediaNotes, [&](const TeskMediaNote& n) { return n.id == noteID; });
    if (removed > 0) updateSource(changed);
}

} // namespace mibrel
