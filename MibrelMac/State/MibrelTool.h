#pragma once

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mibrel {

// The eleven tools of the workspace, in sidebar and menu order.
enum class MibrelTool {
    sources,
    firstRead,
    contextualLens,
    coding,
    codebook,
    analysis,
    themes,
    evidence,
    assist,
    trustworthiness,
    report
};

constexpr auto rawValueTable(std::type_identity<MibrelTool>) {
    using enum MibrelTool;
    using P = std::pair<MibrelTool, std::string_view>;
    return std::array{P{sources, "sources"},       P{firstRead, "firstRead"}, P{contextualLens, "contextualLens"},
                      P{coding, "coding"},         P{codebook, "codebook"},   P{analysis, "analysis"},
                      P{themes, "themes"},         P{evidence, "evidence"},   P{assist, "assist"},
                      P{trustworthiness, "trustworthiness"},                  P{report, "report"}};
}

constexpr std::string_view title(MibrelTool tool) {
    switch (tool) {
    case MibrelTool::sources: return "Sources";
    case MibrelTool::firstRead: return "First Read";
    case MibrelTool::contextualLens: return "Contextual Lens";
    case MibrelTool::coding: return "Read & Code";
    case MibrelTool::codebook: return "Codebook";
    case MibrelTool::analysis: return "Analysis";
    case MibrelTool::themes: return "Themes";
    case MibrelTool::evidence: return "Evidence";
    case MibrelTool::assist: return "Assist";
    case MibrelTool::trustworthiness: return "Rigor";
    case MibrelTool::report: return "Report";
    }
    return {};
}

// The symbolic icon name; the views map it to an icon of the desktop's theme.
constexpr std::string_view symbol(MibrelTool tool) {
    switch (tool) {
    case MibrelTool::sources: return "doc.text";
    case MibrelTool::firstRead: return "text.magnifyingglass";
    case MibrelTool::contextualLens: return "eye";
    case MibrelTool::coding: return "highlighter";
    case MibrelTool::codebook: return "tag";
    case MibrelTool::analysis: return "chart.bar.xaxis";
    case MibrelTool::themes: return "square.stack.3d.up";
    case MibrelTool::evidence: return "quote.opening";
    case MibrelTool::assist: return "sparkles";
    case MibrelTool::trustworthiness: return "checkmark.seal";
    case MibrelTool::report: return "doc.richtext";
    }
    return {};
}

} // namespace mibrel
