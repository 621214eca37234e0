#include "MibrelMac/State/Tools/Coding/MibrelCodingPresenter.h"
#include "MibrelMac/State/Tools/Coding/MibrelCodingInspectorPresenter.h"

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

class MibrelCodingPresenterTest : public ::testing::Test {
protected:
    MibrelCodingPresenterTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        TeskSourceStore::saveSource(source, project);
        TeskSourceStore::saveTranscript(TeskTranscript{{{"a", 1.0, 4.0, "We stayed for the kids."},
                                                        {"b", 4.0, 9.0, "The pay was low."},
                                                        {"c", std::nullopt, std::nullopt, "Mentors helped."}}},
                                        source.id, project);
        TeskSourceStore::saveIndex({source}, project);
        sources.bind(project);
        workspace.bind(project);
    }

    Uuid addCode(const std::string& name) {
        workspace.addCode(name, "");
        return workspace.workspace().codes[workspace.workspace().codes.size() - 1].id;
    }

    std::size_t savedApplications() const { return TeskWorkspaceStore::load(project)->applications.size(); }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    TeskSource source{.label = "Interview Ana"};
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels, &settings};
    MibrelWorkspaceState workspace;
    MibrelShellUIState shellUI;
    MibrelCodingPresenter presenter{sources, workspace, shellUI};
};

// The active code always points at a code while one exists: the first, until chosen,
// and the first remaining after the chosen one is deleted.
TEST_F(MibrelCodingPresenterTest, TheActiveCodeFollowsTheCodebook) {
    EXPECT_EQ(presenter.activeCode(), nullptr);
    EXPECT_EQ(presenter.actionsAt(0).applyTitle, "Select an active code");
    presenter.applyActiveCode(0); // does nothing without a code
    EXPECT_TRUE(workspace.workspace().applications.isEmpty());

    const Uuid workload = addCode("Workload");
    const Uuid mentoring = addCode("Mentoring");
    ASSERT_NE(presenter.activeCode(), nullptr);
    EXPECT_EQ(presenter.activeCode()->id, workload);
    EXPECT_EQ(presenter.actionsAt(0).applyTitle, "Apply active code");

    EXPECT_TRUE(presenter.activatePaletteCode(2));
    EXPECT_EQ(presenter.activeCode()->id, mentoring);
    EXPECT_FALSE(presenter.activatePaletteCode(3));
    presenter.setPaletteFilter("work");
    ASSERT_EQ(presenter.paletteCodes().size(), 1u);
    EXPECT_TRUE(presenter.activatePaletteCode(1));
    EXPECT_EQ(presenter.activeCode()->id, workload);

    workspace.deleteCode(workload);
    EXPECT_EQ(presenter.activeCode()->id, mentoring);
    workspace.deleteCode(mentoring);
    EXPECT_EQ(presenter.activeCode(), nullptr);
    EXPECT_FALSE(shellUI.activeCodeID);
}

TEST_F(MibrelCodingPresenterTest, TheRowButtonCodesASegmentOnceAndSelectsIt) {
    addCode("Workload");
    presenter.applyActiveCode(1);
    presenter.applyActiveCode(1);
    EXPECT_EQ(savedApplications(), 1u);
    ASSERT_EQ(presenter.applicationsAt(1).size(), 1u);
    EXPECT_FALSE(presenter.applicationsAt(1).front().excerpt);
    EXPECT_EQ(presenter.selectedRow(), 1u);
    EXPECT_EQ(presenter.summary(), (MibrelCodingPresenter::Summary{3, 1, 1, 0}));
    workspace.undo();
    EXPECT_TRUE(presenter.applicationsAt(1).empty());
    EXPECT_EQ(savedApplications(), 0u);
}

TEST_F(MibrelCodingPresenterTest, QuotesCarryTheSortedCodesAndTheThemesOverTheCodesInTheRationale) {
    EXPECT_EQ(presenter.uniqueCodeIDs({}), std::vector<Uuid>{});
    // An uncoded segment gives a quote with no ids and no rationale.
    presenter.pinQuote(2);
    ASSERT_TRUE(presenter.quoteAt(2));
    EXPECT_TRUE(presenter.quoteAt(2)->codeIDs.empty());
    EXPECT_EQ(presenter.quoteAt(2)->rationale, "");
    EXPECT_EQ(shellUI.selectedQuoteID, presenter.quoteAt(2)->id);
    EXPECT_TRUE(presenter.actionsAt(2).hasQuote);

    const Uuid pay = addCode("Pay");
    const Uuid workload = addCode("Workload");
    workspace.addApplication({source.id, "b"}, workload, std::nullopt, "");
    workspace.addApplication({source.id, "b"}, pay, "low", "");
    const auto applications = presenter.applicationsAt(1);
    const auto reversed = std::vector<TeskCodeApplication>(applications.rbegin(), applications.rend());
    EXPECT_EQ(MibrelCodingPresenter::uniqueCodeIDs(applications), MibrelCodingPresenter::uniqueCodeIDs(reversed));
    EXPECT_EQ(MibrelCodingPresenter::uniqueCodeIDs(applications).size(), 2u);

    EXPECT_EQ(MibrelCodingPresenter::quoteRationale(workspace, {pay, workload}, {}),
              "Pinned during coding as evidence for Pay, Workload.");
    workspace.addTheme("Leaving teaching", "", {workload});
    presenter.pinQuote(1);
    ASSERT_TRUE(presenter.quoteAt(1));
    EXPECT_EQ(presenter.quoteAt(1)->rationale, "Pinned during coding as evidence for Leaving teaching.");
    EXPECT_EQ(presenter.quoteAt(1)->themeIDs.size(), 1u);
    EXPECT_EQ(presenter.summary().quotes, 2u);
}

// The selection moves within the transcript and lets go of a segment that an edit removed.
TEST_F(MibrelCodingPresenterTest, TheSelectionMovesAndSurvivesADeletedSegment) {
    presenter.moveSelection(1);
    EXPECT_EQ(presenter.selectedRow(), 0u);
    presenter.moveSelection(5);
    EXPECT_EQ(presenter.selectedRow(), 2u);
    presenter.moveSelection(-1);
    EXPECT_EQ(presenter.selectedRow(), 1u);
    EXPECT_FALSE(presenter.actionsAt(0).canPlay); // a text source has nothing to play

    sources.updateTranscriptSegmentText(source.id, "b", "   ");
    EXPECT_FALSE(presenter.selectedRow());
    EXPECT_EQ(presenter.rowCount(), 2u);
    presenter.moveSelection(1);
    EXPECT_EQ(presenter.selectedRow(), 0u);
}

// Character ranges count what a reader sees as one character: an accented letter written
// as two code points, or an emoji, is one.
TEST(MibrelCodingInspectorRangeTest, RangesCountReadersCharacters) {
    using Inspector = MibrelCodingInspectorPresenter;
    EXPECT_EQ(Inspector::characterRange("The pay was low.", "pay"), (std::pair<std::int64_t, std::int64_t>{4, 7}));
    EXPECT_EQ(Inspector::characterRange("Cafe\u0301 \U0001F44D pay", "pay"),
              (std::pair<std::int64_t, std::int64_t>{7, 10}));
    EXPECT_FALSE(Inspector::characterRange("The pay was low.", "The pay was low."));
    EXPECT_FALSE(Inspector::characterRange("The pay was low.", "salary"));
}

TEST_F(MibrelCodingPresenterTest, TheInspectorCodesAnExcerptWithItsPlaceAndStartsAfresh) {
    MibrelCodingInspectorPresenter inspector(sources, workspace, shellUI);
    EXPECT_EQ(inspector.segment(), nullptr);
    presenter.select(1);
    ASSERT_NE(inspector.segment(), nullptr);
    inspector.excerpt = "  pay was low ";
    inspector.memo = "About salary";
    inspector.newCodeName = " Pay ";
    inspector.apply();
    auto saved = TeskWorkspaceStore::load(project)->applications;
    ASSERT_EQ(saved.size(), 1u);
    EXPECT_EQ(saved[0].excerpt, "pay was low");
    EXPECT_EQ(saved[0].memo, "About salary");
    EXPECT_EQ(saved[0].response.charStart, 4);
    EXPECT_EQ(saved[0].response.charEnd, 15);
    EXPECT_EQ(workspace.code(saved[0].codeID)->name, "Pay");
    EXPECT_TRUE(inspector.excerpt.empty() && inspector.memo.empty() && inspector.newCodeName.empty());
    EXPECT_EQ(inspector.appliedCodes().size(), 1u);

    // An excerpt that is not in the text is kept, without a place.
    inspector.selectedCodeID = addCode("Workload");
    inspector.excerpt = "salary was poor";
    inspector.apply();
    saved = TeskWorkspaceStore::load(project)->applications;
    ASSERT_EQ(saved.size(), 2u);
    EXPECT_EQ(saved[1].excerpt, "salary was poor");
    EXPECT_FALSE(saved[1].response.charStart);

    // Drafts belong to one segment.
    inspector.memo = "half written";
    presenter.select(0);
    EXPECT_TRUE(inspector.memo.empty());
    inspector.excerpt = "the kids";
    inspector.pinQuote();
    ASSERT_TRUE(presenter.quoteAt(0));
    EXPECT_EQ(presenter.quoteAt(0)->text, "the kids");
}

} // namespace
} // namespace mibrel
