#include "MibrelMac/Media/M4AWriter.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>

#include "MibrelMac/Media/MibrelMediaError.h"

namespace mibrel::media::detail {

namespace {

constexpr std::int64_t bitRatePerChannel = 64000;
// Used when an encoder takes frames of any size.
constexpr int fallbackFrameSize = 1024;

[[noreturn]] void writeFailed(const char* step, int code) {
    throw MibrelMediaLayerError(std::string("The export could not be ") + step + " (" + errorText(code) + ").");
}

int nearestSupportedRate(const AVCodec& codec, int rate) {
    if (!codec.supported_samplerates) {
        return rate;
    }
    int best = codec.supported_samplerates[0];
    for (const int* candidate = codec.supported_samplerates; *candidate; ++candidate) {
        if (std::abs(*candidate - rate) < std::abs(best - rate)) {
            best = *candidate;
        }
    }
    return best;
}

} // namespace

M4AWriter::M4AWriter(const std::filesystem::path& file, int sourceChannels, int sourceSampleRate) {
    silenceLogging();
    AVFormatContext* muxer = nullptr;
    // "ipod" is FFmpeg's name for the M4A flavour of MP4; the temporary file's name says nothing.
    const int result = avformat_alloc_output_context2(&muxer, nullptr, "ipod", nullptr);
    if (result < 0) {
        writeFailed("started", result);
    }
    m_muxer.reset(muxer);
    openEncoder(sourceChannels > 1 ? 2 : 1, sourceSampleRate);
    openFile(file);
    m_resampler = std::make_unique<Resampler>(m_encoder->ch_layout.nb_channels, m_encoder->sample_fmt,
                                              m_encoder->sample_rate);
}

void M4AWriter::openEncoder(int channels, int sampleRate) {
    const AVCodec* codec = avcodec_find_encoder_by_name("aac");
    if (!codec) {
        writeFailed("encoded", AVERROR_ENCODER_NOT_FOUND);
    }
    m_encoder.reset(avcodec_alloc_context3(codec));
    if (!m_encoder) {
        throw std::bad_alloc();
    }
    av_channel_layout_default(&m_encoder->ch_layout, channels);
    m_encoder->sample_fmt = codec->sample_fmts ? codec->sample_fmts[0] : AV_SAMPLE_FMT_FLTP;
    m_encoder->sample_rate = nearestSupportedRate(*codec, sampleRate);
    m_encoder->bit_rate = bitRatePerChannel * channels;
    m_encoder->time_base = {1, m_encoder->sample_rate};
    if (m_muxer->oformat->flags & AVFMT_GLOBALHEADER) {
        m_encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    const int result = avcodec_open2(m_encoder.get(), codec, nullptr);
    if (result < 0) {
        writeFailed("encoded", result);
    }
    m_fifo.reset(av_audio_fifo_alloc(m_encoder->sample_fmt, channels, std::max(m_encoder->frame_size, 1)));
    if (!m_fifo) {
        throw std::bad_alloc();
    }
}

void M4AWriter::openFile(const std::filesystem::path& file) {
    m_stream = avformat_new_stream(m_muxer.get(), nullptr);
    if (!m_stream) {
        throw std::bad_alloc();
    }
    m_stream->time_base = m_encoder->time_base;
    int result = avcodec_parameters_from_context(m_stream->codecpar, m_encoder.get());
    if (result >= 0) {
        result = avio_open(&m_muxer->pb, fileUrl(file).c_str(), AVIO_FLAG_WRITE);
    }
    if (result >= 0) {
        result = avformat_write_header(m_muxer.get(), nullptr);
    }
    if (result < 0) {
        writeFailed("written", result);
    }
}

void M4AWriter::write(const AVFrame& frame, int offset, int count) {
    m_resampler->push(frame, offset, count, [this](std::uint8_t* const* planes, int samples) {
        enqueue(planes, samples);
    });
    encodeQueued(false);
}

void M4AWriter::finish() {
    m_resampler->flush([this](std::uint8_t* const* planes, int samples) { enqueue(planes, samples); });
    encodeQueued(true);
    encode(nullptr);
    int result = av_write_trailer(m_muxer.get());
    if (result < 0) {
        writeFailed("finished", result);
    }
    // Closing flushes avio's buffer: a full disk may only show here.
    result = avio_closep(&m_muxer->pb);
    if (result < 0) {
        writeFailed("finished", result);
    }
}

void M4AWriter::enqueue(std::uint8_t* const* planes, int count) {
    // av_audio_fifo_write only reads through the pointers it is given.
    const int written = av_audio_fifo_write(m_fifo.get(), reinterpret_cast<void**>(const_cast<std::uint8_t**>(planes)),
                                            count);
    if (written < count) {
        throw std::bad_alloc();
    }
}

void M4AWriter::encodeQueued(bool final) {
    const int frameSize = m_encoder->frame_size > 0 ? m_encoder->frame_size : fallbackFrameSize;
    // The encoder takes a shorter frame only as the last one.
    while (av_audio_fifo_size(m_fifo.get()) >= frameSize || (final && av_audio_fifo_size(m_fifo.get()) > 0)) {
        const FramePtr frame = makeFrame();
        frame->nb_samples = std::min(frameSize, av_audio_fifo_size(m_fifo.get()));
        frame->format = m_encoder->sample_fmt;
        frame->sample_rate = m_encoder->sample_rate;
        int result = av_channel_layout_copy(&frame->ch_layout, &m_encoder->ch_layout);
        if (result >= 0) {
            result = av_frame_get_buffer(frame.get(), 0);
        }
        if (result < 0) {
            writeFailed("encoded", result);
        }
        if (av_audio_fifo_read(m_fifo.get(), reinterpret_cast<void**>(frame->data), frame->nb_samples) <
            frame->nb_samples) {
            writeFailed("encoded", AVERROR_BUG);
        }
        frame->pts = m_nextPts;
        m_nextPts += frame->nb_samples;
        encode(frame.get());
    }
}

void M4AWriter::encode(const AVFrame* frame) {
    int result = avcodec_send_frame(m_encoder.get(), frame);
    if (result < 0) {
        writeFailed("encoded", result);
    }
    for (;;) {
        result = avcodec_receive_packet(m_encoder.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return;
        }
        if (result < 0) {
            writeFailed("encoded", result);
        }
        av_packet_rescale_ts(m_packet.get(), m_encoder->time_base, m_stream->time_base);
        m_packet->stream_index = m_stream->index;
        // Takes the packet's data over and leaves it empty for the next one.
        result = av_interleaved_write_frame(m_muxer.get(), m_packet.get());
        if (result < 0) {
            writeFailed("written", result);
        }
    }
}

} // namespace mibrel::media::detail
