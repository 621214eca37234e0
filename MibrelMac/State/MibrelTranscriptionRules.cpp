#include "MibrelMac/State/MibrelTranscriptionRules.h"

#include <algorithm>
#include <cmath>

#include "MibrelMac/State/MibrelTranscriptCoverageSummary.h"
#include "Platform/Foundation/Uuid.h"
#include "Platform/Text/Text.h"

namespace mibrel::MibrelTranscriptionRules {
namespace {

TeskTranscriptionStatus needsReview(std::string message, const MibrelTranscriptCoverageSummary& summary) {
    return {TeskTranscriptionStatusKind::needsReview, std::move(message), summary.segmentCount,
            summary.recognizedSeconds, summary.mediaDuration, platform::now()};
}

bool containsIgnoringCase(const std::string& text, const char* needle) {
    return platform::text::lowercased(text).find(needle) != std::string::npos;
}

} // namespace

TeskTranscriptionStatus transcriptionStatus(const TeskTranscript& transcript, std::optional<double> mediaDuration) {
    const MibrelTranscriptCoverageSummary summary = coverageSummary(transcript, mediaDuration);
    if (mediaDuration && *mediaDuration >= reviewFloor) {
        const double duration = *mediaDuration;
        const std::string of = " of " + formatDuration(duration) + ".";
        if (summary.firstStart && summary.lastEnd) {
            if (*summary.firstStart > std::min(0.25 * duration, 30.0)) {
                return needsReview("Transcript begins at " + formatDuration(*summary.firstStart) + of +
                                       " Review if earlier speech was expected.",
                                   summary);
            }
            if (*summary.lastEnd < duration - std::min(0.2 * duration, 30.0)) {
                return needsReview("Transcript stops at " + formatDuration(*summary.lastEnd) + of +
                                       " Review if later speech was expected.",
                                   summary);
            }
        }
        if (summary.segmentCount == 0) {
            return {TeskTranscriptionStatusKind::needsReview,
                    "No speech was recognized in " + formatDuration(duration) +
                        ". Review the audio or transcribe again.",
                    0, std::nullopt, mediaDuration, platform::now()};
        }
    }
    return {TeskTranscriptionStatusKind::complete, summary.statusText(), summary.segmentCount,
            summary.recognizedSeconds, mediaDuration, platform::now()};
}

std::vector<TranscriptSegment> offsetSegments(const std::vector<TranscriptSegment>& segments, double offset,
                                              double chunkDuration) {
    std::vector<TranscriptSegment> moved;
    for (const TranscriptSegment& segment : segments) {
        std::string text = platform::text::trimmed(segment.text);
        if (text.empty()) continue;
        const double start = offset + segment.start.value_or(0);
        const double end = std::max(start, segment.end ? offset + *segment.end : offset + chunkDuration);
        moved.push_back({platform::Uuid::random().uuidString(), start, end, std::move(text)});
    }
    return moved;
}

std::vector<TranscriptSegment> mergeAdjacentSegments(std::vector<TranscriptSegment> segments) {
    std::stable_sort(segments.begin(), segments.end(), [](const auto& a, const auto& b) {
        return a.start.value_or(0.0) < b.start.value_or(0.0);
    });
    std::vector<TranscriptSegment> merged;
    for (TranscriptSegment& segment : segments) {
        if (!merged.empty()) {
            TranscriptSegment& last = merged.back();
            if (last.text == segment.text && last.end && segment.start &&
                std::abs(*last.end - *segment.start) < seamTolerance) {
                last.end = segment.end;
                continue;
            }
        }
        merged.push_back(std::move(segment));
    }
    return merged;
}

std::string friendlyTranscriptionError(const std::string& description) {
    if (containsIgnoringCase(description, "not authorized") || containsIgnoringCase(description, "denied") ||
        containsIgnoringCase(description, "permission")) {
        return "Speech Recognition is not allowed. Open System Settings > Privacy & Security > Speech Recognition "
               "and enable Merivante Mibrel, then transcribe again.";
    }
    if (containsIgnoringCase(description, "missingapplehelper") ||
        containsIgnoringCase(description, "transcription helper was not found")) {
        return "The on-device transcription helper was not found. Reinstall Merivante Mibrel or run from a fresh "
               "build.";
    }
    return description;
}

std::string friendlyTranscriptionError(const std::exception& error) {
    return friendlyTranscriptionError(std::string(error.what()));
}

} // namespace mibrel::MibrelTranscriptionRules
