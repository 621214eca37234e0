#include "tools/apple-helper/ResponseChannel.h"

#include <cerrno>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <sphinxbase/err.h>
extern "C" {
#include <libavutil/log.h>
}

namespace mibrel::applehelper {

std::optional<ResponseChannel> ResponseChannel::takeOverStandardStreams() {
    // A vanished reader should make send() fail, not kill the process.
    std::signal(SIGPIPE, SIG_IGN);
    const int responses = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (responses < 0) return std::nullopt;
    const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (null < 0) return std::nullopt;
    const bool redirected = ::dup2(null, STDOUT_FILENO) >= 0 && ::dup2(null, STDERR_FILENO) >= 0;
    ::close(null);
    if (!redirected) return std::nullopt;
    return ResponseChannel(responses);
}

bool ResponseChannel::send(std::string_view line) const {
    std::string bytes;
    bytes.reserve(line.size() + 1);
    bytes.append(line).push_back('\n');
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(m_descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

void silenceLibraryLogging() {
    err_set_logfp(nullptr);
    av_log_set_level(AV_LOG_QUIET);
}

} // namespace mibrel::applehelper
