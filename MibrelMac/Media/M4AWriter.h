#pragma once

#include <cstdint>
#include <filesystem>

#include "MibrelMac/Media/FFmpegSupport.h"
#include "MibrelMac/Media/Resampler.h"

namespace mibrel::media::detail {

// Encodes sound as AAC into an M4A file. Decoded frames are converted to the encoder's
// format and nearest supported rate, gathered into frames of the encoder's size, and
// stamped from zero.
class M4AWriter {
public:
    // Opens the encoder for a source with this many channels (mono stays mono, more become
    // stereo) at this rate, and starts the file. Throws MibrelMediaLayerError.
    M4AWriter(const std::filesystem::path& file, int sourceChannels, int sourceSampleRate);

    // Takes `count` samples of the frame from `offset` on.
    void write(const AVFrame& frame, int offset, int count);
    // Encodes everything held back, writes the trailer and closes the file.
    void finish();

private:
    void openEncoder(int channels, int sampleRate);
    void openFile(const std::filesystem::path& file);
    void enqueue(std::uint8_t* const* planes, int count);
    void encodeQueued(bool final);
    void encode(const AVFrame* frame);

    OutputFormatPtr m_muxer;
    CodecContextPtr m_encoder;
    AVStream* m_stream = nullptr;
    AudioFifoPtr m_fifo;
    PacketPtr m_packet = makePacket();
    std::unique_ptr<Resampler> m_resampler;
    std::int64_t m_nextPts = 0;
};

} // namespace mibrel::media::detail
