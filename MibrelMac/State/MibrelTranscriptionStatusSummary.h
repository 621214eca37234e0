#pragma once

#include <string>

namespace mibrel {

enum class MibrelTranscriptionStatusTone { active, neutral, success, warning, error };

// A source's transcription state as the inspector shows it.
struct MibrelTranscriptionStatusSummary {
    std::string title;
    std::string detail;
    std::string systemImage;
    MibrelTranscriptionStatusTone tone = MibrelTranscriptionStatusTone::neutral;

    bool operator==(const MibrelTranscriptionStatusSummary&) const = default;
};

} // namespace mibrel
