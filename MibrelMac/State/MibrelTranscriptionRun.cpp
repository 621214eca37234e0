#include "MibrelMac/State/MibrelTranscriptionRun.h"

#include <algorithm>
#include <system_error>

#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/Helper/MibrelSidecarError.h"
#include "MibrelMac/Media/MibrelMediaAsset.h"
#include "MibrelMac/State/MibrelMediaPreparation.h"
#include "MibrelMac/State/MibrelTranscriptionRules.h"
#include "Platform/Foundation/Uuid.h"
#include "Platform/Text/Text.h"

namespace mibrel::MibrelTranscription {
namespace {

namespace fs = std::filesystem;
namespace rules = MibrelTranscriptionRules;

void checkCancellation(const std::atomic<bool>& cancelled) {
    if (cancelled.load()) throw MibrelTranscriptionCanceled();
}

// The chunks' folder, removed on every way out.
class ChunkFolder {
public:
    ChunkFolder() : m_path(fs::temp_directory_path() / ("mibrel-transcription-" + platform::Uuid::random().uuidString())) {
        fs::create_directories(m_path);
    }
    ~ChunkFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    ChunkFolder(const ChunkFolder&) = delete;
    ChunkFolder& operator=(const ChunkFolder&) = delete;
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

bool isSilence(const MibrelSidecarError& error) {
    return platform::text::lowercased(error.what()).find("no speech was recognized") != std::string::npos;
}

TeskTranscript transcribeInChunks(const fs::path& audio, double duration, MibrelAppleHelperSidecar& helper,
                                  const std::atomic<bool>& cancelled, const std::function<void(double)>& onProgress) {
    const ChunkFolder folder;
    std::vector<TranscriptSegment> segments;
    int index = 0;
    for (double start = 0; start < duration; start += rules::chunkLength, ++index) {
        checkCancellation(cancelled);
        if (onProgress) onProgress(std::min(start / duration, 1.0));
        const double chunkDuration = std::min(duration - start, rules::chunkLength);
        const fs::path chunk = folder.path() / ("chunk-" + std::to_string(index) + ".m4a");
        MibrelMediaPreparation::exportAudioChunk(audio, chunk, start, chunkDuration, index);
        try {
            const TeskTranscript part = helper.transcribe(chunk, MibrelAppleHelperSidecar::kSpeechLocale);
            const auto moved = rules::offsetSegments(part.segments, start, chunkDuration);
            segments.insert(segments.end(), moved.begin(), moved.end());
        } catch (const MibrelSidecarError& error) {
            if (!isSilence(error)) throw; // silence in one chunk is normal
        }
    }
    if (segments.empty()) throw MibrelSidecarError::sidecarFailed("No speech was recognized in this recording.");
    return {rules::mergeAdjacentSegments(std::move(segments))};
}

} // namespace

TeskTranscript transcribeCompleteMedia(const fs::path& audio, MibrelAppleHelperSidecar& helper,
                                       const std::atomic<bool>& cancelled, const std::function<void(double)>& onProgress) {
    const std::optional<double> duration = media::mediaDurationSeconds(audio);
    if (!duration || *duration <= rules::oneCallLimit) {
        checkCancellation(cancelled);
        TeskTranscript transcript = helper.transcribe(audio, MibrelAppleHelperSidecar::kSpeechLocale);
        checkCancellation(cancelled);
        return transcript;
    }
    return transcribeInChunks(audio, *duration, helper, cancelled, onProgress);
}

MibrelTranscriptionOutcome run(const MibrelTranscriptionRun& run) {
    const auto prepared =
        MibrelMediaPreparation::prepareTranscriptionAudio(run.source, run.projectURL, run.forceRefresh);
    if (prepared.derivedName && run.derivedAudioMade) run.derivedAudioMade(*prepared.derivedName);
    checkCancellation(*run.cancelled);
    TeskTranscript transcript = transcribeCompleteMedia(prepared.location, *run.helper, *run.cancelled, run.progress);
    const std::optional<double> duration = media::mediaDurationSeconds(prepared.location);
    TeskTranscriptionStatus status = MibrelTranscriptionRules::transcriptionStatus(transcript, duration);
    return {std::move(transcript), std::move(status)};
}

} // namespace mibrel::MibrelTranscription
