#pragma once

#include <stdexcept>
#include <string>

namespace mibrel {

// Why a recording could not be prepared for transcription; what() is what the researcher reads.
class MibrelMediaError : public std::runtime_error {
public:
    enum class Kind { chunkExportFailed, missingMedia, noAudioTrack, audioExtractionUnavailable };

    static MibrelMediaError chunkExportFailed(int index) {
        return {Kind::chunkExportFailed,
                "Mibrel could not prepare audio chunk " + std::to_string(index + 1) + " for transcription."};
    }
    static MibrelMediaError missingMedia() {
        return {Kind::missingMedia, "The media file for this source could not be found."};
    }
    // Said of audio files too, in the same words.
    static MibrelMediaError noAudioTrack() {
        return {Kind::noAudioTrack, "This video does not contain an audio track to transcribe."};
    }
    static MibrelMediaError audioExtractionUnavailable() {
        return {Kind::audioExtractionUnavailable, "Mibrel could not extract an audio track from this video."};
    }

    Kind kind() const { return m_kind; }

private:
    MibrelMediaError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

    Kind m_kind;
};

} // namespace mibrel
