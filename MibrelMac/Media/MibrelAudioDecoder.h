#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>

namespace mibrel::media {

// Decodes the file's best audio stream to 16-bit signed mono samples at `sampleRate`,
// handing them over in blocks as they come. Throws MibrelMediaLayerError when the file
// cannot be opened, has no audio stream, or fails to decode.
void decodeMonoPcm16(const std::filesystem::path& file, int sampleRate,
                     const std::function<void(std::span<const std::int16_t>)>& consume);

} // namespace mibrel::media
