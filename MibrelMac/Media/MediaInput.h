#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

#include "MibrelMac/Media/FFmpegSupport.h"
#include "MibrelMac/Media/MediaInputError.h"

namespace mibrel::media::detail {

// An opened recording and, once one is chosen, the decoder of one of its audio streams.
// The one place that reads and decodes, for the probe, the decoder and the export alike.
class MediaInput {
public:
    // Throws MediaInputError (cannotOpen) unless the file is media whose streams can be read.
    explicit MediaInput(const std::filesystem::path& file);

    const AVFormatContext& container() const { return *m_format; }

    // The container's duration, else the longest audio stream's; absent when neither is a
    // finite number of seconds above zero.
    std::optional<double> durationSeconds() const;

    // Chooses the best audio stream (absent) or the N-th among the audio streams alone, and
    // opens its decoder. Throws MediaInputError: noAudio when there is no such stream,
    // cannotDecode when it cannot be decoded.
    void openAudio(std::optional<int> audioTrack);

    // Samples `count` long from `offset` on in a decoded frame.
    using SampleHandler = std::function<void(const AVFrame& frame, int offset, int count)>;

    // Decodes the chosen stream's samples within [start, start + duration) on the
    // recording's timeline (to its end when duration is absent), and nothing of an
    // encoder's padding beyond the end the container states. Throws MediaInputError
    // (cannotDecode) when reading or decoding fails.
    void decodeRange(double startSeconds, std::optional<double> durationSeconds, const SampleHandler& onSamples);

private:
    // Moves to the nearest keyframe at or before `seconds` on the recording's timeline.
    // False when the container cannot seek there; reading then goes on from where it was.
    bool seek(double seconds);
    // Decodes from the current position to the end, handing over each frame; stops early
    // once onFrame returns false.
    void decode(const std::function<bool(const AVFrame&)>& onFrame);
    // Where a decoded frame's first sample lies on the timeline, counted in samples at the
    // frame's own rate; absent when the frame carries no timestamp.
    std::optional<std::int64_t> firstSampleOf(const AVFrame& frame) const;
    // Where the chosen stream ends on the timeline, when the container says so itself
    // rather than guessing from the bit rate.
    std::optional<double> streamEndSeconds() const;

    AVStream* chooseAudioStream(std::optional<int> audioTrack) const;
    void openDecoder(AVStream& stream);
    bool sendPacket(const AVPacket* packet, AVFrame& frame, const std::function<bool(const AVFrame&)>& onFrame);

    InputFormatPtr m_format;
    CodecContextPtr m_decoder;
    AVStream* m_stream = nullptr;
    // The timeline's zero, in AV_TIME_BASE units: the recording's first presentation time.
    std::int64_t m_origin = 0;
};

} // namespace mibrel::media::detail
