#pragma once

#include <atomic>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "MibrelCore/Sources/TeskSource.h"
#include "MibrelCore/Sources/TeskTranscript.h"

namespace mibrel {

class MibrelAppleHelperSidecar;

class MibrelTranscriptionCanceled : public std::exception {
public:
    const char* what() const noexcept override { return "Transcription canceled."; }
};

// Everything one background transcription needs, copied off the main thread. The two
// callbacks are called on the worker; they hop to the main thread themselves.
struct MibrelTranscriptionRun {
    TeskSource source;
    std::filesystem::path projectURL;
    bool forceRefresh = false;
    std::shared_ptr<const std::atomic<bool>> cancelled;
    MibrelAppleHelperSidecar* helper = nullptr;
    std::function<void(const std::string& derivedName)> derivedAudioMade;
    std::function<void(double fraction)> progress;
};

struct MibrelTranscriptionOutcome {
    TeskTranscript transcript;
    TeskTranscriptionStatus status;
};

namespace MibrelTranscription {

// Prepares the audio, transcribes it and judges the result. Blocks; throws
// MibrelTranscriptionCanceled at a check point after a cancel, or the failure.
MibrelTranscriptionOutcome run(const MibrelTranscriptionRun& run);

// Up to 30 seconds in one helper call; longer recordings in 12-second slices, where a
// silent slice leaves a gap and any other failure ends the run.
TeskTranscript transcribeCompleteMedia(const std::filesystem::path& audio, MibrelAppleHelperSidecar& helper,
                                       const std::atomic<bool>& cancelled, const std::function<void(double)>& onProgress);

} // namespace MibrelTranscription
} // namespace mibrel
