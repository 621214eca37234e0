#pragma once

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mibrel {

enum class TeskReportSectionKind { studyFrame, contextLens, corpus, codebook, findings, trustworthiness };

constexpr auto rawValueTable(std::type_identity<TeskReportSectionKind>) {
    using enum TeskReportSectionKind;
    return std::array{std::pair{studyFrame, std::string_view("studyFrame")},
                      std::pair{contextLens, std::string_view("contextLens")},
                      std::pair{corpus, std::string_view("corpus")},
                      std::pair{codebook, std::string_view("codebook")},
                      std::pair{findings, std::string_view("findings")},
                      std::pair{trustworthiness, std::string_view("trustworthiness")}};
}

constexpr std::string_view defaultTitle(TeskReportSectionKind kind) {
    switch (kind) {
    case TeskReportSectionKind::studyFrame: return "Study Frame";
    case TeskReportSectionKind::contextLens: return "Contextual Lens";
    case TeskReportSectionKind::corpus: return "Corpus";
    case TeskReportSectionKind::codebook: return "Codebook Appendix";
    case TeskReportSectionKind::findings: return "Findings";
    case TeskReportSectionKind::trustworthiness: return "Trustworthiness";
    }
    return {};
}

} // namespace mibrel
