#include "MibrelMac/Media/MibrelAudioDecoder.h"

#include "MibrelMac/Media/MediaInput.h"
#include "MibrelMac/Media/MibrelMediaError.h"
#include "MibrelMac/Media/Resampler.h"

namespace mibrel::media {

void decodeMonoPcm16(const std::filesystem::path& file, int sampleRate,
                     const std::function<void(std::span<const std::int16_t>)>& consume) {
    // Beyond the highest rate in use, a mistaken value would only ask for gigabytes.
    constexpr int highestRate = 384000;
    if (sampleRate <= 0 || sampleRate > highestRate) {
        throw MibrelMediaLayerError("The sample rate to decode to must be between 1 and 384000 Hz.");
    }
    detail::MediaInput input(file);
    input.openAudio(std::nullopt);
    detail::Resampler resampler(1, AV_SAMPLE_FMT_S16, sampleRate);
    const auto deliver = [&](std::uint8_t* const* planes, int count) {
        consume({reinterpret_cast<const std::int16_t*>(planes[0]), static_cast<std::size_t>(count)});
    };
    input.decodeRange(0.0, std::nullopt, [&](const AVFrame& frame, int offset, int count) {
        resampler.push(frame, offset, count, deliver);
    });
    resampler.flush(deliver);
}

} // namespace mibrel::media
