#include "MibrelCore/Sources/TeskTranscript.h"

#include <algorithm>

#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

std::string normalizedLineBreaks(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        out += text[i];
    }
    return out;
}

} // namespace

std::string TeskTranscript::fullText() const {
    std::string text;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        if (i > 0) text += "\n\n";
        text += segments[i].text;
    }
    return text;
}

TeskTranscript TeskTranscript::fromPlainText(std::string_view text) {
    const std::string normalized = normalizedLineBreaks(text);
    TeskTranscript transcript;
    std::size_t start = 0;
    while (start <= normalized.size()) {
        const std::size_t end = std::min(normalized.find("\n\n", start), normalized.size());
        std::string part = platform::text::trimmed(std::string_view(normalized).substr(start, end - start));
        if (!part.empty()) {
            transcript.segments.push_back(TranscriptSegment{Uuid::random().uuidString(), std::nullopt, std::nullopt,
                                                            std::move(part)});
        }
        start = end + 2;
    }
    return transcript;
}

} // namespace mibrel
