#include "MibrelMac/Media/FFmpegSupport.h"

#include <mutex>
#include <new>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

namespace mibrel::media::detail {

void OutputFormatDeleter::operator()(AVFormatContext* context) const {
    if (context->pb && !(context->oformat->flags & AVFMT_NOFILE)) {
        avio_closep(&context->pb);
    }
    avformat_free_context(context);
}

FramePtr makeFrame() {
    FramePtr frame(av_frame_alloc());
    if (!frame) {
        throw std::bad_alloc();
    }
    return frame;
}

PacketPtr makePacket() {
    PacketPtr packet(av_packet_alloc());
    if (!packet) {
        throw std::bad_alloc();
    }
    return packet;
}

std::string errorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

void silenceLogging() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

std::string fileUrl(const std::filesystem::path& path) { return "file:" + path.string(); }

} // namespace mibrel::media::detail
