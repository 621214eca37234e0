#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "MibrelCore/Analysis/TeskAnalysisCorpus.h"
#include "MibrelCore/Analysis/TeskReportFindingReadiness.h"
#include "MibrelCore/Model/TeskReportSection.h"
#include "MibrelCore/Model/TeskReportSectionKind.h"

// Turns the project into report text: the body of each saved section, the report
// assembled from saved sections, and a whole report in one go. Pure functions, no state.
//
// The text is a line-oriented subset of Markdown that the rich-text builder reads back:
// "# " report title, "## " section, "### " sub-heading, "- " list line, and
// "Label: value" lines. Nothing else (no emphasis, tables or links) is ever produced.
namespace mibrel::TeskReportComposer {

// The report title used when the caller's title is blank.
inline constexpr std::string_view kDefaultReportTitle = "Qualitative Analysis Report";

// A new section of `kind` with its default title, the body as it would be made now, and
// that body's signature.
TeskReportSection draftSection(TeskReportSectionKind kind, const TeskAnalysisCorpus& corpus);

// The body of one section, trimmed. Empty parts of the project give a sentence saying so.
std::string sectionBody(TeskReportSectionKind kind, const TeskAnalysisCorpus& corpus);

// 64-bit FNV-1a of the UTF-8 bytes, lower-case hexadecimal without leading zeros. A
// section is stale when the signature of the body it would have now differs from the
// stored one; the hash has no seed, so it is stable across runs and machines.
std::string sourceSignature(std::string_view body);

// The report from the saved sections marked for it, in stored order. Ends in exactly one
// newline.
std::string composeSavedSections(const TeskAnalysisCorpus& corpus, std::string_view title);

// The whole report without the builder: sections with no content are left out, and each
// finding shows at most `maxQuotesPerFinding` quotes (a negative number shows none). Ends
// in exactly one newline.
std::string compose(const TeskAnalysisCorpus& corpus, std::string_view title, std::int64_t maxQuotesPerFinding);

// What would weaken each staged finding, in report order. A finding whose theme is gone
// has no row.
std::vector<TeskReportFindingReadiness> readiness(const TeskAnalysisCorpus& corpus);

} // namespace mibrel::TeskReportComposer
