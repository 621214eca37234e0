#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace mibrel::media {

// One export of a recording's sound to M4A (AAC in an MP4 container).
struct MibrelAudioExportRequest {
    std::filesystem::path source;
    std::filesystem::path destination;
    // Absent: the recording's sound as a whole (its best audio stream). A value: that
    // audio track alone, counted among the audio tracks from 0.
    std::optional<int> audioTrack;
    // A slice in seconds; absent start is 0, absent duration runs to the end.
    std::optional<double> start;
    std::optional<double> duration;
};

struct MibrelAudioExportResult {
    enum class Status {
        completed,
        unavailable, // nothing to export this way (no such audio track, or the file is not media)
        failed,      // the export started and did not complete
    };
    Status status = Status::failed;
    std::optional<std::string> error; // for `failed`, when the cause is known

    bool operator==(const MibrelAudioExportResult&) const = default;
};

// Never throws. The destination appears only complete: it is written under a temporary
// name beside it and moved into place, and nothing is left behind on failure.
MibrelAudioExportResult exportAudioM4A(const MibrelAudioExportRequest& request);

} // namespace mibrel::media
