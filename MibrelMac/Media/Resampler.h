#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "MibrelMac/Media/FFmpegSupport.h"

namespace mibrel::media::detail {

// Converts decoded frames to one sample format, rate and channel count (mixing channels
// down where there are more), following the input when its format changes part way.
class Resampler {
public:
    // The converted samples: one plane per channel for planar formats, else one plane.
    using Sink = std::function<void(std::uint8_t* const* planes, int sampleCount)>;

    Resampler(int channels, AVSampleFormat format, int sampleRate);
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    // Converts `count` samples of the frame from `offset` on, passing on what comes out
    // (possibly nothing yet: the filter holds some samples back). Throws MediaInputError.
    void push(const AVFrame& frame, int offset, int count, const Sink& sink);
    // Passes on the samples still held back.
    void flush(const Sink& sink);

private:
    bool accepts(const AVFrame& frame) const;
    void configure(const AVFrame& frame);
    int convert(const std::uint8_t** input, int count, const Sink& sink);
    void reserve(int samples);

    AVChannelLayout m_outLayout{};
    AVSampleFormat m_outFormat;
    int m_outRate;
    ResamplerPtr m_context;
    AVChannelLayout m_inLayout{};
    AVSampleFormat m_inFormat = AV_SAMPLE_FMT_NONE;
    int m_inRate = 0;
    std::array<std::uint8_t*, AV_NUM_DATA_POINTERS> m_planes{};
    int m_capacity = 0;
};

} // namespace mibrel::media::detail
