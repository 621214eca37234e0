#include "MibrelMac/Media/Resampler.h"

#include <vector>

extern "C" {
#include <libavutil/samplefmt.h>
}

#include "MibrelMac/Media/MediaInputError.h"

namespace mibrel::media::detail {

namespace {

[[noreturn]] void conversionFailed(int code) {
    throw MediaInputError(MediaInputError::Kind::cannotDecode, errorText(code));
}

// The frame's samples from `offset` on, as swr wants them.
std::vector<const std::uint8_t*> inputPlanes(const AVFrame& frame, int offset) {
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const int channels = frame.ch_layout.nb_channels;
    const bool planar = av_sample_fmt_is_planar(format);
    const int step = av_get_bytes_per_sample(format) * (planar ? 1 : channels);
    std::vector<const std::uint8_t*> planes(planar ? channels : 1);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        planes[i] = frame.extended_data[i] + static_cast<std::ptrdiff_t>(offset) * step;
    }
    return planes;
}

} // namespace

Resampler::Resampler(int channels, AVSampleFormat format, int sampleRate)
    : m_outFormat(format), m_outRate(sampleRate) {
    av_channel_layout_default(&m_outLayout, channels);
}

Resampler::~Resampler() {
    av_freep(&m_planes[0]);
    av_channel_layout_uninit(&m_outLayout);
    av_channel_layout_uninit(&m_inLayout);
}

void Resampler::push(const AVFrame& frame, int offset, int count, const Sink& sink) {
    if (!accepts(frame)) {
        flush(sink);
        configure(frame);
    }
    auto planes = inputPlanes(frame, offset);
    convert(planes.data(), count, sink);
}

void Resampler::flush(const Sink& sink) {
    if (m_context) {
        while (convert(nullptr, 0, sink) > 0) {
        }
    }
}

bool Resampler::accepts(const AVFrame& frame) const {
    return m_context && frame.format == m_inFormat && frame.sample_rate == m_inRate &&
           av_channel_layout_compare(&frame.ch_layout, &m_inLayout) == 0;
}

void Resampler::configure(const AVFrame& frame) {
    m_context.reset();
    av_channel_layout_uninit(&m_inLayout);
    int result = av_channel_layout_copy(&m_inLayout, &frame.ch_layout);
    if (result < 0) {
        conversionFailed(result);
    }
    m_inFormat = static_cast<AVSampleFormat>(frame.format);
    m_inRate = frame.sample_rate;
    // A stream that names only its channel count gets the usual layout for it, so that swr
    // knows how to mix it down.
    AVChannelLayout layout{};
    if (m_inLayout.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_default(&layout, m_inLayout.nb_channels);
    } else if ((result = av_channel_layout_copy(&layout, &m_inLayout)) < 0) {
        conversionFailed(result);
    }
    SwrContext* context = nullptr;
    result = swr_alloc_set_opts2(&context, &m_outLayout, m_outFormat, m_outRate, &layout, m_inFormat, m_inRate, 0,
                                 nullptr);
    av_channel_layout_uninit(&layout);
    m_context.reset(context);
    if (result >= 0) {
        result = swr_init(context);
    }
    if (result < 0) {
        conversionFailed(result);
    }
}

int Resampler::convert(const std::uint8_t** input, int count, const Sink& sink) {
    const int room = swr_get_out_samples(m_context.get(), count);
    if (room < 0) {
        conversionFailed(room);
    }
    if (room == 0) {
        return 0;
    }
    reserve(room);
    const int produced = swr_convert(m_context.get(), m_planes.data(), room, input, count);
    if (produced < 0) {
        conversionFailed(produced);
    }
    if (produced > 0) {
        sink(m_planes.data(), produced);
    }
    return produced;
}

void Resampler::reserve(int samples) {
    if (samples <= m_capacity) {
        return;
    }
    av_freep(&m_planes[0]);
    m_capacity = 0;
    const int result = av_samples_alloc(m_planes.data(), nullptr, m_outLayout.nb_channels, samples, m_outFormat, 0);
    if (result < 0) {
        conversionFailed(result);
    }
    m_capacity = samples;
}

} // namespace mibrel::media::detail
