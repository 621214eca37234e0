#include <unordered_set>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Analysis/TeskAnalysisSupport.h"

namespace mibrel::TeskAnalysisEngine {
namespace {

using Status = TeskAnalysisStatus;

constexpr double kWorkableCoverage = 0.35;

bool filled(const std::string& text) { return !platform::text::isBlank(text); }

Status strongOrMissing(bool strong) { return strong ? Status::strong : Status::missing; }

// Strong, else review when there is material to review, else missing.
Status graded(bool strong, bool review) {
    if (strong) return Status::strong;
    return review ? Status::review : Status::missing;
}

// Coded segments over all segments, without the word count the overview also makes.
double codedCoverage(const TeskAnalysisCorpus& corpus) {
    std::int64_t segments = 0;
    analysis::forEachSegment(corpus, [&segments](const Uuid&, const TranscriptSegment&) { ++segments; });
    if (segments == 0) return 0.0;
    return static_cast<double>(analysis::codedSegmentCount(corpus.workspace)) / static_cast<double>(segments);
}

Status codebookRules(const TeskWorkspace& workspace) {
    const bool anyRule = std::any_of(workspace.codes.begin(), workspace.codes.end(), [](const TeskCode& code) {
        return filled(code.includeWhen) || filled(code.excludeWhen);
    });
    return graded(anyRule, !workspace.codes.isEmpty());
}

Status themeClaims(const std::vector<TeskThemeCoverageRow>& rows) {
    const bool allClaimed = std::all_of(rows.begin(), rows.end(), [](const auto& row) { return filled(row.interpretiveClaim); });
    return rows.empty() ? Status::missing : graded(allClaimed, true);
}

Status quoteEvidence(const std::vector<TeskThemeCoverageRow>& rows, const TeskWorkspace& workspace) {
    const bool allQuoted = std::all_of(rows.begin(), rows.end(), [](const auto& row) { return row.quoteCount >= 1; });
    return graded(!rows.empty() && allQuoted, !workspace.quotes.isEmpty());
}

bool negativeCasesAddressed(const std::vector<TeskThemeCoverageRow>& rows, const TeskWorkspace& workspace) {
    if (filled(workspace.trustworthiness.negativeCaseNotes)) return true;
    return std::any_of(rows.begin(), rows.end(), [](const auto& row) {
        return std::find(row.warnings.begin(), row.warnings.end(), kNoCounterEvidenceWarning) == row.warnings.end();
    });
}

} // namespace

std::vector<TeskRigorCheck> rigorChecks(const TeskAnalysisCorpus& corpus) {
    const TeskWorkspace& w = corpus.workspace;
    const auto rows = themeCoverage(corpus);
    const double coverage = codedCoverage(corpus);
    const TeskContextLens& lens = w.contextLens;
    return {
        {"research_question", "Research question is stated", strongOrMissing(filled(w.studyFrame.researchQuestion)),
         "Add the guiding qualitative question in First Read."},
        {"researcher_stance", "Researcher stance is documented", strongOrMissing(filled(w.studyFrame.researcherStance)),
         "Document positionality and assumptions before final interpretation."},
        {"sources", "Sources are imported", strongOrMissing(!corpus.sources.empty()),
         "Import transcripts, documents, responses, or audio sources."},
        {"first_read", "First-read memo is present", strongOrMissing(filled(w.studyFrame.firstReadMemo)),
         "Write a first impressions memo before coding."},
        {"coding_coverage", "Coding coverage is workable", graded(coverage >= kWorkableCoverage, coverage > 0.0),
         "Code enough excerpts for themes to rest on visible evidence."},
        {"codebook_rules", "Codebook includes rules", codebookRules(w), "Add include/exclude guidance to important codes."},
        {"categories", "Codes are organized into categories", strongOrMissing(!w.categories.isEmpty()),
         "Create categories between codes and themes."},
        {"theme_claims", "Themes have interpretive claims", themeClaims(rows), "Each theme needs a claim, not only a label."},
        {"quote_evidence", "Themes have exemplar quotes", quoteEvidence(rows, w), "Attach exemplar quotes to reported themes."},
        // Setting, population and culture only: the other lens fields do not count here.
        {"context_lens", "Contextual lens is documented",
         strongOrMissing(filled(lens.setting) || filled(lens.population) || filled(lens.culturalContext)),
         "Name setting, population, cultural, or institutional context."},
        {"negative_cases", "Negative cases are addressed", strongOrMissing(negativeCasesAddressed(rows, w)),
         "Document evidence that complicates or challenges the themes."},
        {"member_checks", "Member checks or limitations are recorded",
         strongOrMissing(!w.trustworthiness.memberChecks.empty() || filled(w.trustworthiness.limitationsNotes)),
         "Log member checks or explain why they were not possible."},
    };
}

} // namespace mibrel::TeskAnalysisEngine
