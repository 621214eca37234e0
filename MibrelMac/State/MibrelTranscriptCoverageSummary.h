#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "MibrelCore/Sources/TeskTranscript.h"

namespace mibrel {

// How much of a recording a transcript covers. Only timed segments (a start below an end)
// count for time; every segment counts for segments and words.
struct MibrelTranscriptCoverageSummary {
    std::int64_t segmentCount = 0;
    std::int64_t wordCount = 0;
    std::optional<double> firstStart;
    std::optional<double> lastEnd;
    std::optional<double> recognizedSeconds; // absent unless above 0
    std::optional<double> mediaDuration;

    bool operator==(const MibrelTranscriptCoverageSummary&) const = default;

    // "Coverage 0s-1:05 of 1:10; 120 words; 9 segments"
    std::string statusText() const;
};

MibrelTranscriptCoverageSummary coverageSummary(const TeskTranscript& transcript, std::optional<double> mediaDuration);

// Seconds rounded half away from zero: "45s" below a minute, else "m:ss" with minutes
// never broken into hours ("62:05").
std::string formatDuration(double seconds);

} // namespace mibrel
