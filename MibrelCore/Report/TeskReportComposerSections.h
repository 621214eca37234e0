#pragma once

// Private to the report composer: the line builders shared by its two source files.

#include <string>
#include <string_view>
#include <vector>

#include "MibrelCore/Analysis/TeskAnalysisCorpus.h"

namespace mibrel::TeskReportComposer::detail {

// The report under construction, one element per line; an element may itself hold
// line breaks.
using Lines = std::vector<std::string>;

std::string joined(const Lines& lines, std::string_view separator);

// "{label}: {value}" with the value trimmed; nothing when the value is blank.
void addField(std::string_view label, std::string_view value, Lines& lines);
// "## {title}", a blank line, the trimmed non-blank elements of `body`, a blank line;
// nothing at all when no element has content, so a heading never stands alone.
void addSection(std::string_view title, const Lines& body, Lines& lines);

// The six study-frame fields that have content.
void appendStudyFrameFields(const TeskAnalysisCorpus& corpus, Lines& lines);
// The study frame and the contextual lens as sections, each only when it has content.
void appendStudyFrame(const TeskAnalysisCorpus& corpus, Lines& lines);
void appendCorpusBody(const TeskAnalysisCorpus& corpus, Lines& lines);
void appendCodebookBody(const TeskAnalysisCorpus& corpus, Lines& lines);
// Adds nothing when the project has no lens content; the caller decides what to say then.
void appendContextLensBody(const TeskAnalysisCorpus& corpus, Lines& lines);
void appendTrustworthinessBody(const TeskAnalysisCorpus& corpus, Lines& lines);

} // namespace mibrel::TeskReportComposer::detail
