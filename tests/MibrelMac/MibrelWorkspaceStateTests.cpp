#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::folderListing;
using testing::readText;
using testing::TemporaryDirectory;
using testing::writeText;
using Events = std::vector<std::pair<std::string, std::string>>;

class MibrelWorkspaceStateTest : public ::testing::Test {
protected:
    void SetUp() override {
        TeskProjectArchive::createEmpty(project, "Study", false);
        state.onAuditEvent = [this](const std::string& event, const std::string& detail) {
            events.emplace_back(event, detail);
        };
    }

    TeskWorkspace onDisk() const { return *TeskWorkspaceStore::load(project); }
    fs::path workspaceFile() const { return TeskWorkspaceStore::workspaceURL(project); }

    TemporaryDirectory folder;
    fs::path project = folder / "Study.mvibrl";
    MibrelWorkspaceState state;
    Events events;
};

TEST_F(MibrelWorkspaceStateTest, AddingTrimsSavesRegistersUndoAndLogsWhileBlankNamesDoNothing) {
    state.bind(project);
    state.addCode("  Workload  \n", "Hours beyond the timetable");
    ASSERT_EQ(state.workspace().codes.size(), 1u);
    EXPECT_EQ(state.workspace().codes[0].name, "Workload");
    EXPECT_EQ(onDisk().codes.size(), 1u);
    EXPECT_EQ(state.undoTitle(), "Undo Add Code");
    EXPECT_EQ(events, (Events{{"code_created", "Workload"}}));

    const auto tick = state.undoTick();
    state.addCode(" \n ", "");
    state.addTheme("", "", {});
    TeskCode unknown;
    state.updateCode(unknown);
    EXPECT_EQ(state.undoTick(), tick);
    EXPECT_EQ(events.size(), 1u);

    state.undo();
    EXPECT_TRUE(onDisk().codes.isEmpty());
    EXPECT_EQ(state.redoTitle(), "Redo Add Code");
    state.redo();
    EXPECT_EQ(onDisk().codes.size(), 1u);
    EXPECT_EQ(events.size(), 1u); // undo and redo log nothing

    state.bind(project);
    EXPECT_EQ(state.undoTitle(), "Undo");
    EXPECT_GT(state.undoTick(), tick);
}

TEST_F(MibrelWorkspaceStateTest, DeletingACodeCascadesAndOneUndoRestoresEverything) {
    state.bind(project);
    state.addCode("Workload", "");
    state.addCode("Mentoring", "");
    const Uuid workload = state.workspace().codes[0].id;
    const Uuid mentoring = state.workspace().codes[1].id;
    state.addCategory("Pressures", "", {workload, mentoring});
    state.addTheme("Strain", "", {workload});
    state.editDirectly([&](TeskWorkspace& w) {
        for (const char* segment : {"s1", "s2", "s3"}) {
            w.applications.append(TeskCodeApplication{.response = {Uuid::random(), segment}, .codeID = workload});
        }
        w.contextualLensReviews.append(TeskContextualLensReview{.codeID = workload, .themeID = w.themes[0].id});
        w.quotes.append(TeskQuote{.response = {Uuid::random(), "s1"}, .codeIDs = {workload}});
    });
    const TeskWorkspace before = state.workspace();

    state.deleteCode(workload);
    const TeskWorkspace& after = state.workspace();
    EXPECT_EQ(after.codes.size(), 1u);
    EXPECT_TRUE(after.applications.isEmpty());
    EXPECT_TRUE(after.contextualLensReviews.isEmpty());
    EXPECT_EQ(after.categories[0].codeIDs, std::vector<Uuid>{mentoring});
    EXPECT_TRUE(after.themes[0].codeIDs.empty()); // an emptied theme stays
    EXPECT_TRUE(after.quotes[0].codeIDs.empty()); // so does the quote
    EXPECT_EQ(events.back(), (std::pair<std::string, std::string>{"code_deleted", "Workload"}));
    EXPECT_EQ(onDisk().applications.size(), 0u);

    state.undo();
    EXPECT_EQ(state.workspace(), before);
    EXPECT_EQ(onDisk().applications.size(), 3u);

    // An unknown id still makes one step and logs an empty detail.
    const auto tick = state.undoTick();
    state.deleteCode(Uuid::random());
    EXPECT_GT(state.undoTick(), tick);
    EXPECT_EQ(events.back(), (std::pair<std::string, std::string>{"code_deleted", ""}));
}

TEST_F(MibrelWorkspaceStateTest, DeletingThemesAndCategoriesUnlinksWithoutLosingReflections) {
    state.bind(project);
    state.addCategory("Pressures", "", {});
    const Uuid category = state.workspace().categories[0].id;
    state.addTheme("Strain", "", {});
    TeskTheme withCategory = state.workspace().themes[0];
    withCategory.categoryIDs = {category};
    state.updateTheme(withCategory);
    const Uuid theme = withCategory.id;
    state.editDirectly([&](TeskWorkspace& w) {
        w.reportFindings.append(TeskReportFinding{.themeID = theme});
        w.contextualLensReviews.append(TeskContextualLensReview{.themeID = theme, .context = "kept"});
        w.quotes.append(TeskQuote{.response = {Uuid::random(), "s1"}, .themeIDs = {theme}});
    });

    const TeskWorkspace before = state.workspace();
    state.deleteCategory(category);
    EXPECT_TRUE(state.workspace().themes[0].categoryIDs.empty());
    state.deleteTheme(theme);
    const TeskWorkspace& w = state.workspace();
    EXPECT_TRUE(w.themes.isEmpty());
    EXPECT_TRUE(w.reportFindings.isEmpty());
    ASSERT_EQ(w.contextualLensReviews.size(), 1u);
    EXPECT_FALSE(w.contextualLensReviews[0].themeID);
    EXPECT_EQ(w.contextualLensReviews[0].context, "kept");
    EXPECT_TRUE(w.quotes[0].themeIDs.empty());

    state.undo();
    state.undo();
    EXPECT_EQ(state.workspace(), before);
}

TEST_F(MibrelWorkspaceStateTest, UndoKeepsTrustworthinessNotesButRollsBackTheStudyFrame) {
    state.bind(project);
    state.addCode("Workload", "");
    state.editDirectly([](TeskWorkspace& w) {
        w.trustworthiness.reflexivityNotes = "I taught in this district.";
        w.studyFrame.purpose = "Changed after the code";
    });
    state.undo();
    EXPECT_TRUE(state.workspace().codes.isEmpty());
    EXPECT_EQ(state.workspace().trustworthiness.reflexivityNotes, "I taught in this district.");
    EXPECT_EQ(state.workspace().studyFrame.purpose, "");
    EXPECT_EQ(onDisk().trustworthiness.reflexivityNotes, "I taught in this district.");
}

TEST_F(MibrelWorkspaceStateTest, ADamagedFileIsNeverOverwrittenUntilSetAside) {
    writeText(workspaceFile(), "{ not json");
    state.bind(project);
    ASSERT_TRUE(state.loadFailureMessage());
    state.addCode("Workload", "");
    EXPECT_EQ(state.workspace().codes.size(), 1u); // in memory only
    EXPECT_EQ(readText(workspaceFile()), "{ not json");

    state.setAsideDamagedWorkspaceAndContinue();
    EXPECT_FALSE(state.loadFailureMessage());
    EXPECT_TRUE(state.workspace().codes.isEmpty());
    const std::string listing = folderListing(workspaceFile().parent_path());
    ASSERT_EQ(listing.find("workspace-damaged-"), 0u) << listing;
    const std::string damagedName = listing.substr(0, listing.find(' '));
    EXPECT_EQ(readText(workspaceFile().parent_path() / damagedName), "{ not json");
    EXPECT_TRUE(onDisk().codes.isEmpty());
    EXPECT_EQ(events.back(), (std::pair<std::string, std::string>{"workspace_damaged_file_set_aside", damagedName}));
}

TEST_F(MibrelWorkspaceStateTest, AFailedSaveKeepsTheChangeAndTheNextGoodSaveWritesBoth) {
    state.bind(project);
    state.addCode("First", "");
    fs::remove(workspaceFile());
    writeText(workspaceFile() / "blocker", "x"); // a folder in the file's place makes the save fail
    state.addCode("Second", "");
    ASSERT_TRUE(state.lastError());
    EXPECT_EQ(state.lastError()->rfind("Your latest change could not be saved. ", 0), 0u);
    EXPECT_EQ(state.workspace().codes.size(), 2u);

    fs::remove_all(workspaceFile());
    state.addCode("Third", "");
    EXPECT_EQ(onDisk().codes.size(), 3u);
}

} // namespace
} // namespace mibrel
