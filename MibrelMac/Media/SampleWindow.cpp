#include "MibrelMac/Media/SampleWindow.h"

#include <algorithm>
#include <cmath>
#include <limits>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace mibrel::media::detail {

SampleWindow::SampleWindow(double startSeconds, std::optional<double> endSeconds)
    : m_start(startSeconds), m_end(endSeconds) {}

SampleWindow::Cut SampleWindow::cut(const AVFrame& frame, std::optional<std::int64_t> firstSample) {
    const int rate = frame.sample_rate;
    if (rate <= 0 || frame.nb_samples <= 0) {
        return {};
    }
    std::int64_t begin = 0;
    if (firstSample) {
        begin = *firstSample;
    } else if (m_nextRate > 0) {
        begin = av_rescale(m_next, rate, m_nextRate);
    }
    const std::int64_t end = begin + frame.nb_samples;
    m_next = end;
    m_nextRate = rate;

    const std::int64_t low = std::llround(m_start * rate);
    const std::int64_t high = m_end ? std::llround(*m_end * rate) : std::numeric_limits<std::int64_t>::max();
    if (end >= high) {
        m_passedEnd = true;
    }
    const std::int64_t from = std::max(begin, low);
    const std::int64_t to = std::min(end, high);
    if (to <= from) {
        return {};
    }
    return {static_cast<int>(from - begin), static_cast<int>(to - from)};
}

} // namespace mibrel::media::detail
