#include "MibrelMac/Media/MediaInput.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <system_error>

#include "MibrelMac/Media/SampleWindow.h"

namespace mibrel::media::detail {

namespace {

using Kind = MediaInputError::Kind;
constexpr AVRational microseconds{1, AV_TIME_BASE};
// Decoding starts this long before a range and the lead-in is dropped: the first frame
// after a seek comes out wrong, since AAC overlaps each frame with the one before and MP3
// borrows bits from earlier frames.
constexpr double seekLeadIn = 0.5;

std::optional<double> positiveSeconds(double seconds) {
    if (std::isfinite(seconds) && seconds > 0) {
        return seconds;
    }
    return std::nullopt;
}

bool isAudio(const AVStream& stream) { return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO; }

} // namespace

MediaInput::MediaInput(const std::filesystem::path& file) {
    silenceLogging();
    // Anything but a plain file (a folder, a pipe, a device) could block or mislead the demuxers.
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        throw MediaInputError(Kind::cannotOpen, "not a file");
    }
    AVFormatContext* format = nullptr;
    int result = avformat_open_input(&format, fileUrl(file).c_str(), nullptr, nullptr);
    if (result < 0) {
        throw MediaInputError(Kind::cannotOpen, errorText(result));
    }
    m_format.reset(format);
    result = avformat_find_stream_info(format, nullptr);
    if (result < 0) {
        throw MediaInputError(Kind::cannotOpen, errorText(result));
    }
}

std::optional<double> MediaInput::durationSeconds() const {
    if (m_format->duration != AV_NOPTS_VALUE) {
        if (auto seconds = positiveSeconds(static_cast<double>(m_format->duration) / AV_TIME_BASE)) {
            return seconds;
        }
    }
    std::optional<double> longest;
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        const AVStream& stream = *m_format->streams[i];
        if (!isAudio(stream) || stream.duration == AV_NOPTS_VALUE) {
            continue;
        }
        const auto seconds = positiveSeconds(static_cast<double>(stream.duration) * av_q2d(stream.time_base));
        if (seconds && (!longest || *seconds > *longest)) {
            longest = seconds;
        }
    }
    return longest;
}

void MediaInput::openAudio(std::optional<int> audioTrack) {
    AVStream* stream = chooseAudioStream(audioTrack);
    if (!stream) {
        throw MediaInputError(Kind::noAudio);
    }
    openDecoder(*stream);
    m_stream = stream;
    // The demuxer then skips the other streams' packets (a video's pictures) instead of reading them.
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        m_format->streams[i]->discard = m_format->streams[i] == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    if (m_format->start_time != AV_NOPTS_VALUE) {
        m_origin = m_format->start_time;
    } else if (stream->start_time != AV_NOPTS_VALUE) {
        m_origin = av_rescale_q(stream->start_time, stream->time_base, microseconds);
    }
}

AVStream* MediaInput::chooseAudioStream(std::optional<int> audioTrack) const {
    if (!audioTrack) {
        const int index = av_find_best_stream(m_format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
        return index >= 0 ? m_format->streams[index] : nullptr;
    }
    int remaining = *audioTrack;
    for (unsigned i = 0; i < m_format->nb_streams && remaining >= 0; ++i) {
        if (isAudio(*m_format->streams[i]) && remaining-- == 0) {
            return m_format->streams[i];
        }
    }
    return nullptr;
}

void MediaInput::openDecoder(AVStream& stream) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec) {
        throw MediaInputError(Kind::cannotDecode, "no decoder for its audio format");
    }
    m_decoder.reset(avcodec_alloc_context3(codec));
    if (!m_decoder) {
        throw std::bad_alloc();
    }
    int result = avcodec_parameters_to_context(m_decoder.get(), stream.codecpar);
    // With the packets' time base the decoder keeps timestamps right when it drops an
    // encoder's leading padding.
    m_decoder->pkt_timebase = stream.time_base;
    if (result >= 0) {
        result = avcodec_open2(m_decoder.get(), codec, nullptr);
    }
    if (result < 0) {
        throw MediaInputError(Kind::cannotDecode, errorText(result));
    }
}

void MediaInput::decodeRange(double startSeconds, std::optional<double> durationSeconds,
                             const SampleHandler& onSamples) {
    // Where the container cannot seek, decoding runs from the start instead: the frames'
    // timestamps place them either way.
    if (startSeconds > 0) {
        seek(std::max(0.0, startSeconds - seekLeadIn));
    }
    std::optional<double> end;
    if (durationSeconds) {
        end = startSeconds + *durationSeconds;
    }
    if (const auto streamEnd = streamEndSeconds(); streamEnd && (!end || *streamEnd < *end)) {
        end = streamEnd;
    }
    SampleWindow window(startSeconds, end);
    decode([&](const AVFrame& frame) {
        const auto cut = window.cut(frame, firstSampleOf(frame));
        if (cut.count > 0) {
            onSamples(frame, cut.offset, cut.count);
        }
        return !window.passedEnd();
    });
}

bool MediaInput::seek(double seconds) {
    const std::int64_t micros = m_origin + std::llround(seconds * AV_TIME_BASE);
    const std::int64_t target = av_rescale_q(micros, microseconds, m_stream->time_base);
    if (avformat_seek_file(m_format.get(), m_stream->index, INT64_MIN, target, target, 0) < 0) {
        return false;
    }
    avcodec_flush_buffers(m_decoder.get());
    return true;
}

void MediaInput::decode(const std::function<bool(const AVFrame&)>& onFrame) {
    const PacketPtr packet = makePacket();
    const FramePtr frame = makeFrame();
    for (;;) {
        const int result = av_read_frame(m_format.get(), packet.get());
        if (result == AVERROR_EOF) {
            break;
        }
        if (result < 0) {
            throw MediaInputError(Kind::cannotDecode, errorText(result));
        }
        const bool wanted = packet->stream_index == m_stream->index;
        const bool more = !wanted || sendPacket(packet.get(), *frame, onFrame);
        av_packet_unref(packet.get());
        if (!more) {
            return;
        }
    }
    // An empty packet drains the frames the decoder still holds.
    sendPacket(nullptr, *frame, onFrame);
}

bool MediaInput::sendPacket(const AVPacket* packet, AVFrame& frame,
                            const std::function<bool(const AVFrame&)>& onFrame) {
    int result = avcodec_send_packet(m_decoder.get(), packet);
    if (result < 0) {
        throw MediaInputError(Kind::cannotDecode, errorText(result));
    }
    for (;;) {
        result = avcodec_receive_frame(m_decoder.get(), &frame);
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return true;
        }
        if (result < 0) {
            throw MediaInputError(Kind::cannotDecode, errorText(result));
        }
        const bool more = onFrame(frame);
        av_frame_unref(&frame);
        if (!more) {
            return false;
        }
    }
}

std::optional<double> MediaInput::streamEndSeconds() const {
    if (m_stream->duration == AV_NOPTS_VALUE || m_format->duration_estimation_method == AVFMT_DURATION_FROM_BITRATE) {
        return std::nullopt;
    }
    const std::int64_t start = m_stream->start_time != AV_NOPTS_VALUE ? m_stream->start_time : 0;
    const std::int64_t end = av_rescale_q(start + m_stream->duration, m_stream->time_base, microseconds) - m_origin;
    return static_cast<double>(end) / AV_TIME_BASE;
}

std::optional<std::int64_t> MediaInput::firstSampleOf(const AVFrame& frame) const {
    const std::int64_t pts = frame.best_effort_timestamp != AV_NOPTS_VALUE ? frame.best_effort_timestamp : frame.pts;
    if (pts == AV_NOPTS_VALUE || frame.sample_rate <= 0) {
        return std::nullopt;
    }
    const AVRational perSample{1, frame.sample_rate};
    return av_rescale_q(pts, m_stream->time_base, perSample) - av_rescale_q(m_origin, microseconds, perSample);
}

} // namespace mibrel::media::detail
