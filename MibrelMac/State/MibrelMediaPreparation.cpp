#include "MibrelMac/State/MibrelMediaPreparation.h"

#include <system_error>

#include "MibrelCore/Storage/TeskSourceStore.h"
#include "Platform/Files/FileSystem.h"
#include "MibrelMac/Media/MibrelAudioExport.h"
#include "MibrelMac/Media/MibrelMediaAsset.h"
#include "MibrelMac/Media/MibrelMediaError.h"
#include "MibrelMac/State/MibrelMediaError.h"

namespace mibrel::MibrelMediaPreparation {
namespace {

namespace fs = std::filesystem;
using media::MibrelAudioExportResult;

void removeQuietly(const fs::path& file) {
    std::error_code ignored;
    fs::remove(file, ignored);
}


// Completed is true, nothing to export is false; a failure with a cause is thrown.
bool exportAudioM4A(const fs::path& from, const fs::path& to, std::optional<int> audioTrack) {
    const MibrelAudioExportResult result = media::exportAudioM4A({from, to, audioTrack, std::nullopt, std::nullopt});
    if (result.status == MibrelAudioExportResult::Status::completed) return true;
    if (result.status == MibrelAudioExportResult::Status::failed && result.error) {
        throw media::MibrelMediaLayerError(*result.error);
    }
    return false;
}

int audioTrackCount(const fs::path& file) { return media::probeMedia(file).audioTrackCount; }

// The first steps shared by audio and video: the recording must be there, and a derived
// file already made is used again unless a new one is asked for.
struct Preparation {
    fs::path recording;
    fs::path derived;
    std::optional<PreparedAudio> reused;
};

Preparation startPreparation(const TeskSource& source, const fs::path& projectURL, bool forceRegenerate) {
    const fs::path folder = TeskSourceStore::sourceDirectory(projectURL, source.id);
    if (!source.mediaFilename || !platform::files::itemExists(folder / *source.mediaFilename)) {
        throw MibrelMediaError::missingMedia();
    }
    Preparation preparation{folder / *source.mediaFilename, folder / transcriptionAudioName, std::nullopt};
    if (forceRegenerate) removeQuietly(preparation.derived);
    else if (platform::files::itemExists(preparation.derived)) {
        preparation.reused = PreparedAudio{preparation.derived, transcriptionAudioName};
    }
    return preparation;
}

} // namespace

PreparedAudio prepareTranscriptionAudio(const TeskSource& source, const fs::path& projectURL, bool forceRegenerate) {
    const fs::path folder = TeskSourceStore::sourceDirectory(projectURL, source.id);
    if (forceRegenerate) removeQuietly(folder / transcriptionAudioName);
    const auto& derivedName = source.transcriptionMediaFilename;
    if (!forceRegenerate && derivedName && platform::files::itemExists(folder / *derivedName)) {
        return {folder / *derivedName, std::nullopt};
    }
    if (source.mediaKind == TeskMediaKind::audio) {
        return prepareImportedAudioForTranscription(source, projectURL, forceRegenerate);
    }
    if (source.mediaKind == TeskMediaKind::video) {
        return extractAudioTrackForTranscription(source, projectURL, forceRegenerate);
    }
    throw MibrelMediaError::missingMedia();
}

PreparedAudio prepareImportedAudioForTranscription(const TeskSource& source, const fs::path& projectURL,
                                                   bool forceRegenerate) {
    const Preparation start = startPreparation(source, projectURL, forceRegenerate);
    if (start.reused) return *start.reused;
    if (normalizeAudioForSpeech(start.recording, start.derived)) return {start.derived, transcriptionAudioName};
    return {start.recording, std::nullopt};
}

PreparedAudio extractAudioTrackForTranscription(const TeskSource& source, const fs::path& projectURL,
                                                bool forceRegenerate) {
    const Preparation start = startPreparation(source, projectURL, forceRegenerate);
    if (start.reused) return *start.reused;
    if (audioTrackCount(start.recording) == 0) throw MibrelMediaError::noAudioTrack();
    if (platform::files::itemExists(start.derived)) fs::remove(start.derived);
    // Video has no format of its own to fall back on.
    if (!exportAudioM4A(start.recording, start.derived, std::nullopt) &&
        !exportAudioM4A(start.recording, start.derived, 0)) {
        throw MibrelMediaError::audioExtractionUnavailable();
    }
    return {start.derived, transcriptionAudioName};
}

bool normalizeAudioForSpeech(const fs::path& from, const fs::path& to) {
    if (audioTrackCount(from) == 0) throw MibrelMediaError::noAudioTrack();
    if (platform::files::itemExists(to)) fs::remove(to);
    // The sound as a whole first, then the first audio track alone.
    return exportAudioM4A(from, to, std::nullopt) || exportAudioM4A(from, to, 0);
}

void exportAudioChunk(const fs::path& source, const fs::path& destination, double start, double duration, int index) {
    const MibrelAudioExportResult result = media::exportAudioM4A({source, destination, std::nullopt, start, duration});
    if (result.status == MibrelAudioExportResult::Status::completed) return;
    if (result.status == MibrelAudioExportResult::Status::failed && result.error) {
        throw media::MibrelMediaLayerError(*result.error);
    }
    throw MibrelMediaError::chunkExportFailed(index);
}

} // namespace mibrel::MibrelMediaPreparation
