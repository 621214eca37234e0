#include "MibrelCore/Export/TeskWordExporter.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Text/Text.h"

namespace mibrel::TeskWordExporter {
namespace {

struct Swatch {
    std::string_view fill;
    std::string_view border;
};

constexpr std::array<Swatch, 6> kPalette{{{"#DFF2E9", "#168F55"},
                                          {"#E4EBFA", "#2E5FAA"},
                                          {"#FAEEDD", "#B07020"},
                                          {"#F4E4F0", "#8E4483"},
                                          {"#E8E8E8", "#666666"},
                                          {"#FDE2DE", "#B03A2E"}}};

constexpr std::string_view kUnknownCodeName = "Code";

constexpr std::string_view kHead = "<html><head><meta charset=\"utf-8\"></head><body>\n"
                                   "<h2 style=\"font-family:Calibri, sans-serif; font-size:13pt; margin:0 0 4pt 0;\">";
constexpr std::string_view kNote =
    "<p style=\"font-family:Calibri, sans-serif; font-size:9pt; color:#666666; margin:0 0 12pt 0;\">"
    "Coded transcript exported from Merivante Mibrel. Highlights mark coded excerpts.</p>\n";
constexpr std::string_view kParagraphOpen =
    "<p style=\"margin:0 0 10pt 0; font-family:Calibri, sans-serif; font-size:11pt; line-height:1.4;\">"
    "<b style=\"color:#555555;\">";
constexpr std::string_view kTail = "</body></html>";
constexpr std::string_view kBubbleOpen = " <span style=\"display:inline-block; background-color:";
constexpr std::string_view kBubbleStyleRest = "; border-radius:8px; padding:0pt 4pt; "
                                              "font-family:Calibri, sans-serif; font-size:8pt; color:#333333; "
                                              "white-space:nowrap;\">";

using Applications = std::vector<const TeskCodeApplication*>;

// The codebook and the source's applications, indexed once per export so that each
// segment costs only its own applications, however large the workspace.
class Coding {
public:
    Coding(const TeskWorkspace& workspace, const Uuid& sourceID) {
        std::size_t position = 0;
        for (const TeskCode& code : workspace.codes) m_codes.try_emplace(code.id, Entry{&code, position++});
        for (const TeskCodeApplication& application : workspace.applications) {
            if (application.response.sourceID == sourceID) {
                m_bySegment[application.response.segmentID].push_back(&application);
            }
        }
    }

    // In workspace order.
    const Applications& applications(const TranscriptSegment& segment) const {
        const auto found = m_bySegment.find(segment.id);
        return found == m_bySegment.end() ? m_none : found->second;
    }

    std::string_view name(const Uuid& codeID) const {
        const auto found = m_codes.find(codeID);
        return found == m_codes.end() ? kUnknownCodeName : std::string_view(found->second.code->name);
    }

    const Swatch& swatch(const Uuid& codeID) const {
        const auto found = m_codes.find(codeID);
        return kPalette[found == m_codes.end() ? 0 : found->second.position % kPalette.size()];
    }

private:
    struct Entry {
        const TeskCode* code;
        std::size_t position;
    };

    std::unordered_map<Uuid, Entry> m_codes;
    std::unordered_map<std::string, Applications> m_bySegment;
    Applications m_none;
};

// "&" first, so the entities written for "<" and ">" are not escaped again.
void appendEscaped(std::string& out, std::string_view text) {
    for (const char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        default: out += c;
        }
    }
}

void appendHighlight(std::string& out, std::string_view text, std::string_view colour) {
    out += "<span style=\"background-color:";
    out += colour;
    out += ";\">";
    appendEscaped(out, text);
    out += "</span>";
}

// The byte range of the application's characters, when they lie inside the text.
std::optional<std::pair<std::size_t, std::size_t>> byteRange(const TeskResponseRef& response, std::string_view text) {
    if (!response.charStart || !response.charEnd) return std::nullopt;
    const std::int64_t start = *response.charStart;
    const std::int64_t end = *response.charEnd;
    const auto count = static_cast<std::int64_t>(platform::text::characterCount(text));
    if (start < 0 || end > count || start >= end) return std::nullopt;
    const auto byteOffset = [&](std::int64_t characters) {
        return platform::text::characterPrefix(text, static_cast<std::size_t>(characters)).size();
    };
    return std::pair{byteOffset(start), byteOffset(end)};
}

void appendHighlightedSegment(std::string& out, const TranscriptSegment& segment,
                              const TeskCodeApplication& application, std::string_view colour) {
    const std::string_view text = segment.text;
    const auto range = byteRange(application.response, text);
    if (!range) {
        appendHighlight(out, text, colour);
        return;
    }
    const auto [start, end] = *range;
    appendEscaped(out, text.substr(0, start));
    appendHighlight(out, text.substr(start, end - start), colour);
    appendEscaped(out, text.substr(end));
}

void appendBubble(std::string& out, std::string_view name, const Swatch& swatch) {
    out += kBubbleOpen;
    out += swatch.fill;
    out += "; border:1px solid ";
    out += swatch.border;
    out += kBubbleStyleRest;
    appendEscaped(out, name);
    out += "</span>";
}

void appendParagraph(std::string& out, const TranscriptSegment& segment, const Coding& coding) {
    const Applications& applications = coding.applications(segment);
    out += kParagraphOpen;
    appendEscaped(out, segmentLabel(segment));
    out += ":</b> ";
    if (applications.empty()) {
        appendEscaped(out, segment.text);
    } else {
        // The first code alone colours the text; the bubbles name them all.
        const TeskCodeApplication& first = *applications.front();
        appendHighlightedSegment(out, segment, first, coding.swatch(first.codeID).fill);
    }
    for (const TeskCodeApplication* application : applications) {
        appendBubble(out, coding.name(application->codeID), coding.swatch(application->codeID));
    }
    out += "</p>\n";
}

// Rounded half away from zero. Times far beyond any recording are held where the
// conversion cannot overflow; they only come from a hand-edited file.
long long wholeSeconds(double seconds) {
    constexpr double kLimit = 1e15;
    if (std::isnan(seconds)) return 0;
    if (std::abs(seconds) >= kLimit) return static_cast<long long>(std::copysign(kLimit, seconds));
    return std::llround(seconds);
}

} // namespace

std::string segmentLabel(const TranscriptSegment& segment) {
    if (!segment.start) return "¶";
    const long long seconds = wholeSeconds(*segment.start);
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%lld:%02lld", seconds / 60, seconds % 60);
    return buffer;
}

std::string plainText(const std::string& sourceLabel, const TeskTranscript& transcript, const TeskWorkspace& workspace,
                      const Uuid& sourceID) {
    const Coding coding(workspace, sourceID);
    std::string out = sourceLabel + "\n\n";
    for (const TranscriptSegment& segment : transcript.segments) {
        out += segmentLabel(segment) + ": " + segment.text;
        const Applications& applications = coding.applications(segment);
        if (!applications.empty()) {
            out += "  [";
            for (std::size_t i = 0; i < applications.size(); ++i) {
                if (i > 0) out += ", ";
                out += coding.name(applications[i]->codeID);
            }
            out += "]";
        }
        out += "\n\n";
    }
    return out;
}

std::string html(const std::string& sourceLabel, const TeskTranscript& transcript, const TeskWorkspace& workspace,
                 const Uuid& sourceID) {
    const Coding coding(workspace, sourceID);
    std::string out(kHead);
    appendEscaped(out, sourceLabel);
    out += "</h2>\n";
    out += kNote;
    for (const TranscriptSegment& segment : transcript.segments) appendParagraph(out, segment, coding);
    out += kTail;
    return out;
}

} // namespace mibrel::TeskWordExporter
