#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

using testing::TemporaryDirectory;
using Event = std::pair<std::string, std::string>;

class MibrelWorkspaceEvidenceTest : public ::testing::Test {
protected:
    void SetUp() override {
        TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
        state.bind(folder / "Study.mvibrl");
        state.onAuditEvent = [this](const std::string& event, const std::string& detail) {
            events.emplace_back(event, detail);
        };
        state.addCode("Workload", "");
        workload = state.workspace().codes[0].id;
    }

    TemporaryDirectory folder;
    MibrelWorkspaceState state;
    std::vector<Event> events;
    Uuid workload;
    Uuid source = Uuid::random();
};

TEST_F(MibrelWorkspaceEvidenceTest, ApplyingACodeTwiceToASegmentIsIdempotent) {
    const Uuid first = state.addApplication({source, "s1", 0, 10}, workload, "Long days", "");
    const auto tick = state.undoTick();
    EXPECT_EQ(state.addApplication({source, "s1"}, workload, "Other words", ""), first);
    EXPECT_EQ(state.undoTick(), tick);
    EXPECT_EQ(state.workspace().applications.size(), 1u);
    EXPECT_EQ(state.applications({source, "s1"}).size(), 1u);
    EXPECT_EQ(events.back(), (Event{"application_added", "Workload"}));

    state.addApplication({source, "s1"}, Uuid::random(), std::nullopt, "");
    EXPECT_EQ(events.back(), (Event{"application_added", "code"})); // an unknown code
    EXPECT_EQ(state.applicationsForSource(source).size(), 2u);
}

TEST_F(MibrelWorkspaceEvidenceTest, PinningTheSameTextAgainMergesWithoutErasing) {
    const Uuid a = Uuid::random(), b = Uuid::random();
    const auto first = state.addQuote({source, "s1"}, "  We stayed for the kids.  ", {b}, {}, "memo", "why", std::nullopt);
    ASSERT_TRUE(first);
    EXPECT_EQ(state.workspace().quotes[0].role, TeskQuoteRole::exemplar);
    const auto merged = state.addQuote({source, "s1"}, "We stayed for the kids.", {a, b}, {a}, "", "",
                                       TeskQuoteRole::counterExample);
    EXPECT_EQ(merged, first);
    const TeskQuote& quote = state.workspace().quotes[0];
    EXPECT_EQ(quote.codeIDs, (std::vector<Uuid>{std::min(a, b), std::max(a, b)}));
    EXPECT_EQ(quote.memo, "memo");
    EXPECT_EQ(quote.rationale, "why");
    EXPECT_EQ(quote.role, TeskQuoteRole::counterExample);
    EXPECT_EQ(events.back(), (Event{"quote_updated", "We stayed for the kids."}));

    state.addQuote({source, "s1"}, std::string(70, 'x'), {}, {}, "", "", std::nullopt);
    EXPECT_EQ(state.quotes({source, "s1"}).size(), 2u);
    EXPECT_EQ(events.back(), (Event{"quote_added", std::string(60, 'x')}));
    EXPECT_FALSE(state.addQuote({source, "s1"}, " \n", {}, {}, "", "", std::nullopt));
}

TEST_F(MibrelWorkspaceEvidenceTest, ReviewsAreNewestFirstAndMemberChecksUndoKeepingNotes) {
    state.addContextualLensReview(workload, std::nullopt);
    const Uuid newest = state.addContextualLensReview(std::nullopt, std::nullopt);
    EXPECT_EQ(state.workspace().contextualLensReviews[0].id, newest);
    EXPECT_EQ(events.back(), (Event{"contextual_lens_review_added", ""}));

    state.addMemberCheck({.finding = "Workload theme"});
    EXPECT_FALSE(state.workspace().trustworthiness.memberChecks[0].date.empty());
    state.editDirectly([](TeskWorkspace& w) { w.trustworthiness.limitationsNotes = "One district only."; });
    state.undo();
    EXPECT_TRUE(state.workspace().trustworthiness.memberChecks.empty());
    EXPECT_EQ(state.workspace().trustworthiness.limitationsNotes, "One district only.");
}

TEST_F(MibrelWorkspaceEvidenceTest, ReportSectionsKeepIdentityAndExclusionAndMovesStopAtTheEdges) {
    const Uuid id = state.saveReportSection(TeskReportSection::make(TeskReportSectionKind::codebook, "", "v1", "sig"));
    TeskReportSection excluded = state.workspace().reportSections[0];
    excluded.includeInReport = false;
    state.updateReportSection(excluded);
    EXPECT_EQ(state.saveReportSection(TeskReportSection::make(TeskReportSectionKind::codebook, "", "v2", "sig")), id);
    ASSERT_EQ(state.workspace().reportSections.size(), 1u);
    EXPECT_EQ(state.workspace().reportSections[0].body, "v2");
    EXPECT_FALSE(state.workspace().reportSections[0].includeInReport);
    EXPECT_EQ(events.back(), (Event{"report_section_saved", "Codebook Appendix"}));

    const Uuid second = state.saveReportSection(TeskReportSection::make(TeskReportSectionKind::findings, "", "", ""));
    const auto tick = state.undoTick();
    state.moveReportSection(id, true); // already first
    state.moveReportSection(second, false); // already last
    EXPECT_EQ(state.undoTick(), tick);
    state.moveReportSection(second, true);
    EXPECT_EQ(state.workspace().reportSections[0].id, second);
    EXPECT_EQ(state.undoTitle(), "Undo Reorder Report Sections");
}

TEST_F(MibrelWorkspaceEvidenceTest, FindingsStageOncePerThemeAndTheDraftStaysOutOfUndo) {
    const Uuid category = (state.addCategory("Pressures", "", {workload}), state.workspace().categories[0].id);
    state.addTheme("Strain", "", {});
    TeskTheme theme = state.workspace().themes[0];
    theme.categoryIDs = {category};
    state.updateTheme(theme);
    EXPECT_EQ(state.themeIDs({workload}), std::vector<Uuid>{theme.id}); // reached through its category

    EXPECT_FALSE(state.stageThemeForReport(Uuid::random()));
    const auto finding = state.stageThemeForReport(theme.id);
    EXPECT_EQ(state.stageThemeForReport(theme.id), finding);
    EXPECT_EQ(state.workspace().reportFindings.size(), 1u);

    const std::string title = state.undoTitle();
    state.updateReportDraft(Bytes("{\\rtf1 draft}"));
    EXPECT_TRUE(state.hasReportDraft());
    EXPECT_EQ(state.undoTitle(), title);
    state.updateReportDraft(Bytes(""));
    EXPECT_FALSE(state.workspace().reportDraftRTFData);
}

} // namespace
} // namespace mibrel
