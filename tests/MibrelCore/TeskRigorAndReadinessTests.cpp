#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Analysis/TeskCodeReadiness.h"

namespace mibrel {
namespace {

using Strings = std::vector<std::string>;
using Status = TeskAnalysisStatus;

class RigorChecksTest : public ::testing::Test {
protected:
    RigorChecksTest() {
        TeskSource source;
        sources.push_back(source);
        for (int n = 0; n < 10000; ++n) {
            TranscriptSegment segment;
            segment.id = "s" + std::to_string(n);
            segment.text = "text";
            transcripts[source.id].segments.push_back(segment);
        }
    }

    // Codes `count` distinct segments of the one source.
    void codeSegments(int count) {
        workspace.applications = {};
        for (int n = 0; n < count; ++n) {
            TeskCodeApplication application;
            application.response = {sources[0].id, "s" + std::to_string(n), std::nullopt, std::nullopt};
            workspace.applications.append(application);
        }
    }

    Status status(const std::string& id) {
        for (const auto& check : TeskAnalysisEngine::rigorChecks({sources, transcripts, workspace})) {
            if (check.id == id) return check.status;
        }
        ADD_FAILURE() << "no check " << id;
        return Status::missing;
    }

    std::vector<TeskSource> sources;
    TeskTranscriptMap transcripts;
    TeskWorkspace workspace;
};

TEST(RigorChecksEmptyTest, AnEmptyProjectHasTwelveMissingChecksInOrder) {
    const std::vector<TeskSource> sources;
    const TeskTranscriptMap transcripts;
    const TeskWorkspace workspace;
    const auto checks = TeskAnalysisEngine::rigorChecks({sources, transcripts, workspace});
    Strings ids;
    for (const auto& check : checks) {
        ids.push_back(check.id);
        EXPECT_EQ(check.status, Status::missing) << check.id;
    }
    EXPECT_EQ(ids, (Strings{"research_question", "researcher_stance", "sources", "first_read", "coding_coverage",
                            "codebook_rules", "categories", "theme_claims", "quote_evidence", "context_lens",
                            "negative_cases", "member_checks"}));
    EXPECT_EQ(checks[4].label, "Coding coverage is workable");
    EXPECT_EQ(checks[4].guidance, "Code enough excerpts for themes to rest on visible evidence.");
}

TEST_F(RigorChecksTest, CoverageIsStrongFromExactlyThirtyFivePercent) {
    codeSegments(3500);
    EXPECT_EQ(status("coding_coverage"), Status::strong);
    codeSegments(3499);
    EXPECT_EQ(status("coding_coverage"), Status::review);
    codeSegments(0);
    EXPECT_EQ(status("coding_coverage"), Status::missing);
}

TEST_F(RigorChecksTest, QuotesThemesAndNotesDecideTheirChecks) {
    TeskQuote unlinked;
    workspace.quotes.append(unlinked);
    EXPECT_EQ(status("quote_evidence"), Status::review); // a quote, but no theme
    EXPECT_EQ(status("theme_claims"), Status::missing);
    EXPECT_EQ(status("negative_cases"), Status::missing);

    TeskTheme claimed;
    claimed.interpretiveClaim = "Staying is relational.";
    claimed.counterEvidence = "Two left for pay.";
    TeskTheme bare;
    workspace.themes.append(claimed);
    workspace.themes.append(bare);
    EXPECT_EQ(status("theme_claims"), Status::review);
    EXPECT_EQ(status("negative_cases"), Status::strong); // one theme's note is enough
    workspace.quotes = {};
    EXPECT_EQ(status("quote_evidence"), Status::missing);

    workspace.contextLens.institutionalContext = "District policy";
    EXPECT_EQ(status("context_lens"), Status::missing); // institutional context is not among the three
    workspace.contextLens.population = "Rural teachers";
    EXPECT_EQ(status("context_lens"), Status::strong);

    workspace.trustworthiness.limitationsNotes = "No member checks were possible.";
    EXPECT_EQ(status("member_checks"), Status::strong);
    TeskCode code;
    workspace.codes.append(code);
    EXPECT_EQ(status("codebook_rules"), Status::review);
}

TEST(CodeReadinessTest, ScoresTheEntryAndWarnsApart) {
    TeskWorkspace workspace;
    TeskCode code;
    code.name = "Workload";
    code.definition = code.fullDescription = code.includeWhen = code.excludeWhen = "x";
    code.borderlineCases = code.exampleQuote = "x";
    code.status = TeskCodeStatus::draft;
    workspace.codes.append(code);

    auto readiness = TeskCodeReadinessEngine::readiness(code, workspace);
    EXPECT_DOUBLE_EQ(readiness.score(), 1.0);
    EXPECT_FALSE(readiness.isReady());
    EXPECT_EQ(readiness.warnings, (Strings{"No coded excerpts", "Status is Draft"}));

    TeskCodeApplication application;
    application.codeID = code.id;
    workspace.applications.append(application);
    code.status = TeskCodeStatus::accepted;
    readiness = TeskCodeReadinessEngine::readiness(code, workspace);
    EXPECT_EQ(readiness.completed.size(), 7u);
    EXPECT_TRUE(readiness.isReady());

    // Tagged for the lens: a review needs all six of its fields.
    code.includeInContextualLens = true;
    code.exampleQuote = " ";
    TeskContextualLensReview review;
    review.codeID = code.id;
    review.context = review.voice = review.powerPosition = review.representation = review.counterPatterns = "x";
    workspace.contextualLensReviews.append(review);
    readiness = TeskCodeReadinessEngine::readiness(code, workspace);
    EXPECT_EQ(readiness.missing, (Strings{"Example quote", "Contextual lens"}));
    EXPECT_EQ(readiness.totalCount(), 8);
    EXPECT_DOUBLE_EQ(readiness.score(), 6.0 / 8.0);

    workspace.codes.replace(0, code);
    EXPECT_EQ(TeskCodeReadinessEngine::readiness(workspace), (std::vector<TeskCodeReadiness>{readiness}));
}

} // namespace
} // namespace mibrel
