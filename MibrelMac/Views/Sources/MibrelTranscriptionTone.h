#pragma once

#include "MibrelMac/State/MibrelTranscriptionStatusSummary.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"

namespace mibrel {

// The colour a transcription status is shown in.
inline design::Tone designTone(MibrelTranscriptionStatusTone tone) {
    switch (tone) {
    case MibrelTranscriptionStatusTone::active: return design::Tone::active;
    case MibrelTranscriptionStatusTone::neutral: return design::Tone::neutral;
    case MibrelTranscriptionStatusTone::success: return design::Tone::success;
    case MibrelTranscriptionStatusTone::warning: return design::Tone::warning;
    case MibrelTranscriptionStatusTone::error: return design::Tone::error;
    }
    return design::Tone::neutral;
}

} // namespace mibrel
