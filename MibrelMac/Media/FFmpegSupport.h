#pragma once

// Owning handles for the FFmpeg objects the media library uses, so that every exit path
// frees what it allocated, and the few helpers every part needs.

#include <filesystem>
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libswresample/swresample.h>
}

namespace mibrel::media::detail {

struct InputFormatDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
// Closes the file it writes to before freeing the context; the trailer is the writer's job.
struct OutputFormatDeleter {
    void operator()(AVFormatContext* context) const;
};
struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct ResamplerDeleter {
    void operator()(SwrContext* context) const { swr_free(&context); }
};
struct AudioFifoDeleter {
    void operator()(AVAudioFifo* fifo) const { av_audio_fifo_free(fifo); }
};

using InputFormatPtr = std::unique_ptr<AVFormatContext, InputFormatDeleter>;
using OutputFormatPtr = std::unique_ptr<AVFormatContext, OutputFormatDeleter>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using ResamplerPtr = std::unique_ptr<SwrContext, ResamplerDeleter>;
using AudioFifoPtr = std::unique_ptr<AVAudioFifo, AudioFifoDeleter>;

// Throw std::bad_alloc when FFmpeg cannot allocate.
FramePtr makeFrame();
PacketPtr makePacket();

// FFmpeg's own words for an error code.
std::string errorText(int code);

// FFmpeg writes diagnostics to stderr by default; the helper program's output must stay
// clean, so it is silenced once for the whole process.
void silenceLogging();

// A path as a URL for avio: with the file protocol named, so that a name holding a colon
// is never taken for another protocol.
std::string fileUrl(const std::filesystem::path& path);

} // namespace mibrel::media::detail
