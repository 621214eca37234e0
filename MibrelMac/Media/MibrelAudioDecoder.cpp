#include "MibrelMac/Media/MibrelAudioDecoder.h"

#include "MibrelMac/Media/MibrelMediaError.h"

namespace mibrel::media {

void decodeMonoPcm16(const std::filesystem::path&, int, const std::function<void(std::span<const std::int16_t>)>&) {
    throw MibrelMediaLayerError("not yet");
}

} // namespace mibrel::media
