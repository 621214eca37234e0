#include "MibrelMac/State/MibrelTranscriptCoverageSummary.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

std::string counted(std::int64_t count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace

std::string formatDuration(double seconds) {
    const auto whole = static_cast<long long>(std::round(seconds));
    if (whole < 60) return std::to_string(whole) + "s";
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    return text;
}

std::string MibrelTranscriptCoverageSummary::statusText() const {
    std::string text;
    if (firstStart && lastEnd) {
        text = "Coverage " + formatDuration(*firstStart) + "-" + formatDuration(*lastEnd);
        if (mediaDuration) text += " of " + formatDuration(*mediaDuration);
        text += "; ";
    } else if (mediaDuration) {
        text = "Duration " + formatDuration(*mediaDuration) + "; ";
    }
    return text + counted(wordCount, "word") + "; " + counted(segmentCount, "segment");
}

MibrelTranscriptCoverageSummary coverageSummary(const TeskTranscript& transcript, std::optional<double> mediaDuration) {
    MibrelTranscriptCoverageSummary summary;
    summary.mediaDuration = mediaDuration;
    summary.segmentCount = static_cast<std::int64_t>(transcript.segments.size());
    double recognized = 0;
    for (const TranscriptSegment& segment : transcript.segments) {
        summary.wordCount += static_cast<std::int64_t>(platform::text::whitespaceSeparatedRunCount(segment.text));
        if (!segment.start || !segment.end || !(*segment.start < *segment.end)) continue;
        summary.firstStart = summary.firstStart ? std::min(*summary.firstStart, *segment.start) : *segment.start;
        summary.lastEnd = summary.lastEnd ? std::max(*summary.lastEnd, *segment.end) : *segment.end;
        recognized += *segment.end - *segment.start;
    }
    if (recognized > 0) summary.recognizedSeconds = recognized;
    return summary;
}

} // namespace mibrel
