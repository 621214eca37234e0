#include "MibrelMac/Media/MibrelMediaAsset.h"

#include "MibrelMac/Media/MediaInput.h"

namespace mibrel::media {

MibrelMediaInfo probeMedia(const std::filesystem::path& file) {
    const detail::MediaInput input(file);
    const AVFormatContext& container = input.container();
    MibrelMediaInfo info;
    for (unsigned i = 0; i < container.nb_streams; ++i) {
        const AVStream& stream = *container.streams[i];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            ++info.audioTrackCount;
        } else if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
                   !(stream.disposition & AV_DISPOSITION_ATTACHED_PIC)) {
            // Cover art comes as a one-picture video stream; it is no video track.
            ++info.videoTrackCount;
        }
    }
    info.durationSeconds = input.durationSeconds();
    return info;
}

std::optional<double> mediaDurationSeconds(const std::filesystem::path& file) {
    try {
        return detail::MediaInput(file).durationSeconds();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace mibrel::media
