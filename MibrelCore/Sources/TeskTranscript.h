#pragma once

#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "MibrelCore/Model/TeskValueTypes.h"
#include "MibrelCore/Sources/TranscriptSegment.h"

namespace mibrel {

// A source's text, as an ordered list of segments.
struct TeskTranscript {
    std::vector<TranscriptSegment> segments;

    bool operator==(const TeskTranscript&) const = default;

    // The segments' texts joined by blank lines.
    std::string fullText() const;

    // Paragraphs (separated by blank lines) become segments with fresh ids; CR LF counts
    // as a line break, parts are trimmed, and empty parts are dropped.
    static TeskTranscript fromPlainText(std::string_view text);

    static constexpr auto jsonFields() {
        using namespace platform::json;
        return std::tuple{required("segments", &TeskTranscript::segments)};
    }
};

} // namespace mibrel
