#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "MibrelCore/Sources/TeskSource.h"

// Makes the audio file that goes to the helper: video gets its sound extracted beside it,
// audio is normalised when that works and used as it stands when it does not. All of it
// runs off the main thread and touches only files.
namespace mibrel::MibrelMediaPreparation {

inline constexpr const char* transcriptionAudioName = "transcription-audio.m4a";

struct PreparedAudio {
    std::filesystem::path location;
    std::optional<std::string> derivedName; // set when the audio is a file made here

    bool operator==(const PreparedAudio&) const = default;
};

// A derived file already made is reused unless `forceRegenerate`. Throws MibrelMediaError,
// or the media layer's error when an export fails with a cause.
PreparedAudio prepareTranscriptionAudio(const TeskSource& source, const std::filesystem::path& projectURL,
                                        bool forceRegenerate);
PreparedAudio prepareImportedAudioForTranscription(const TeskSource& source, const std::filesystem::path& projectURL,
                                                   bool forceRegenerate);
PreparedAudio extractAudioTrackForTranscription(const TeskSource& source, const std::filesystem::path& projectURL,
                                                bool forceRegenerate);

// True when the M4A was written; false when the recording's own format has to do.
bool normalizeAudioForSpeech(const std::filesystem::path& from, const std::filesystem::path& to);

// One slice of a recording, as M4A. Throws MibrelMediaError::chunkExportFailed(index)
// unless the media layer knows a cause.
void exportAudioChunk(const std::filesystem::path& source, const std::filesystem::path& destination, double start,
                      double duration, int index);

} // namespace mibrel::MibrelMediaPreparation
