#pragma once

#include <cstdint>
#include <optional>

extern "C" {
#include <libavutil/frame.h>
}

namespace mibrel::media::detail {

// The part of each decoded frame that falls within [start, end) on the recording's
// timeline. Frames are placed by their timestamps, never by counting samples
// from wherever decoding began, so that the slices of adjoining ranges meet exactly.
class SampleWindow {
public:
    // Without an end, the window runs to the end of the recording.
    SampleWindow(double startSeconds, std::optional<double> endSeconds);

    struct Cut {
        int offset = 0;
        int count = 0;
    };

    // `firstSample` is the frame's first sample on the timeline at the frame's own rate;
    // absent when the frame has no timestamp, and it then follows on from the frame before.
    Cut cut(const AVFrame& frame, std::optional<std::int64_t> firstSample);

    // True once a frame reached the end of the window: nothing after it can fall inside.
    bool passedEnd() const { return m_passedEnd; }

private:
    double m_start;
    std::optional<double> m_end;
    std::int64_t m_next = 0;
    int m_nextRate = 0;
    bool m_passedEnd = false;
};

} // namespace mibrel::media::detail
