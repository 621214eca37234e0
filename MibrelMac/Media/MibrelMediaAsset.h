#pragma once

#include <filesystem>
#include <optional>

namespace mibrel::media {

// What a recording holds, read from its container without decoding it.
struct MibrelMediaInfo {
    int audioTrackCount = 0;
    int videoTrackCount = 0;
    // Seconds, from the container or else from the longest audio stream; absent when
    // neither says, or when the value is not finite or not above zero.
    std::optional<double> durationSeconds;

    bool operator==(const MibrelMediaInfo&) const = default;
};

// Throws MibrelMediaLayerError when the file cannot be opened as media.
MibrelMediaInfo probeMedia(const std::filesystem::path& file);

// The duration alone; absent on any failure.
std::optional<double> mediaDurationSeconds(const std::filesystem::path& file);

} // namespace mibrel::media
