#include <stdexcept>
#include <string>
#include <vector>

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelDataFiles.h"
#include "MibrelMac/State/MibrelProjectSession.h"
#include "MibrelMac/State/MibrelRecentProjectsStore.h"
#include "MibrelMac/State/MibrelSampleProject.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryDirectory;
using testing::writeText;

class MibrelSessionTest : public ::testing::Test {
protected:
    fs::path makeProject(const std::string& name) {
        TeskProjectArchive::createEmpty(folder / name, "Study", false);
        return folder / name;
    }

    TemporaryDirectory folder;
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelProjectSession session{panels, settings};
};

TEST(MibrelDataFilesTest, DataFilesAreKnownByTheirEndingInAnyCase) {
    for (const char* name : {"a.csv", "b.XLSX", "c.Tsv", "d.docx", "e.PDF", "f.txt", "g.M4A", "h.mov", "i.MPG"}) {
        EXPECT_TRUE(MibrelDataFiles::isDataFile(name)) << name;
    }
    for (const char* name : {"study.mvibrl", "notes", "setup.exe", ".csv", "archive.csv.zip"}) {
        EXPECT_FALSE(MibrelDataFiles::isDataFile(name)) << name;
    }
    EXPECT_EQ(MibrelDataFiles::friendlyOpenError("x.sav", "fallback"), "fallback");
    EXPECT_NE(MibrelDataFiles::friendlyOpenError("x.CSV", "fallback").find("not a Mibrel project"), std::string::npos);
}

TEST_F(MibrelSessionTest, ExternalDataFileStartsAProjectWithTheImportQueued) {
    panels.saveAnswers.push_back(folder / "Responses");
    session.openExternal(folder / "Responses.CSV");
    ASSERT_EQ(panels.saveRequests.size(), 1u);
    EXPECT_EQ(panels.saveRequests[0].message, "Mibrel will create this project and import Responses.CSV into it.");
    EXPECT_EQ(panels.saveRequests[0].suggestedName, "Responses.mvibrl");
    ASSERT_TRUE(session.hasProject());
    EXPECT_EQ(*session.projectURL(), folder / "Responses.mvibrl");
    EXPECT_EQ(session.manifest()->title, "Responses");
    EXPECT_EQ(session.takePendingDataImport(), folder / "Responses.CSV");

    // A cancelled dialog says nothing and queues nothing.
    session.openExternal(folder / "more.xlsx");
    EXPECT_FALSE(session.pendingDataImport());
    EXPECT_FALSE(session.lastError());
}

TEST_F(MibrelSessionTest, ExternalProjectOpensAndAFailureKeepsTheOpenProject) {
    const fs::path first = makeProject("First.mvibrl");
    session.openExternal(first);
    ASSERT_EQ(session.projectURL(), first);

    fs::create_directories(folder / "Broken.mvibrl");
    session.openExternal(folder / "Broken.mvibrl");
    EXPECT_EQ(session.lastError(), "This file is not a valid Merivante Mibrel project.");
    EXPECT_EQ(session.projectURL(), first);

    writeText(folder / "Newer.mvibrl" / "manifest.json",
              R"({"app":"Merivante Mibrel","appVersion":"9","createdAt":"2026-01-01T00:00:00Z",)"
              R"("formatVersion":2,"title":"T","updatedAt":"2026-01-01T00:00:00Z"})");
    session.openExternal(folder / "Newer.mvibrl");
    EXPECT_EQ(session.lastError(), "Project format version 2 is not supported by this version of Mibrel.");
}

TEST_F(MibrelSessionTest, NewProjectAddsTheEndingAndReplacesOnlyANameChosenWithIt) {
    const fs::path existing = makeProject("Project.mvibrl");
    writeText(existing / "notes.txt", "keep");

    panels.saveAnswers.push_back(folder / "Project"); // extended: must not replace
    session.newProject();
    EXPECT_NE(session.lastError()->find("A project named Project.mvibrl already exists here."), std::string::npos);
    EXPECT_TRUE(fs::exists(existing / "notes.txt"));
    EXPECT_FALSE(session.hasProject());

    panels.saveAnswers.push_back(existing); // chosen with the ending: replacement confirmed
    session.newProject();
    EXPECT_EQ(session.projectURL(), existing);
    EXPECT_FALSE(fs::exists(existing / "notes.txt"));
    EXPECT_EQ(panels.saveRequests[0].suggestedName, "Untitled.mvibrl");
}

TEST_F(MibrelSessionTest, RecentsKeepTwelveMostRecentFirstAndSkipMissingOnes) {
    for (int i = 1; i <= 13; ++i) session.open(makeProject("P" + std::to_string(i) + ".mvibrl"));
    auto recents = MibrelRecentProjectsStore::load(settings);
    ASSERT_EQ(recents.size(), 12u);
    EXPECT_EQ(recents.front(), folder / "P13.mvibrl");
    EXPECT_EQ(recents.back(), folder / "P2.mvibrl");

    session.open(folder / "P5.mvibrl");
    recents = MibrelRecentProjectsStore::load(settings);
    EXPECT_EQ(recents.front(), folder / "P5.mvibrl");
    EXPECT_EQ(recents.size(), 12u);

    fs::rename(folder / "P7.mvibrl", folder / "away");
    EXPECT_EQ(MibrelRecentProjectsStore::load(settings).size(), 11u);
    fs::rename(folder / "away", folder / "P7.mvibrl");
    EXPECT_EQ(MibrelRecentProjectsStore::load(settings).size(), 12u);

    MibrelRecentProjectsStore::forget(settings, folder / "P7.mvibrl");
    EXPECT_EQ(MibrelRecentProjectsStore::load(settings).size(), 11u);
}

TEST_F(MibrelSessionTest, SampleCopiesNeverOverwriteEarlierOnes) {
    const fs::path sample = makeProject("Bundled.mvibrl");
    fs::create_directories(folder / "Documents");
    MibrelSampleProject::openSample(session, sample, folder / "Documents", folder.path());
    MibrelSampleProject::openSample(session, sample, folder / "Documents", folder.path());
    EXPECT_TRUE(fs::exists(folder / "Documents" / "Mibrel Sample - Teacher Retention.mvibrl" / "manifest.json"));
    EXPECT_EQ(session.projectURL(), folder / "Documents" / "Mibrel Sample - Teacher Retention 2.mvibrl");

    MibrelSampleProject::openSample(session, std::nullopt, folder / "Documents", folder.path());
    EXPECT_EQ(session.lastError(),
              "The sample project could not be found in this copy of Mibrel. Reinstalling the app restores it.");
}

TEST_F(MibrelSessionTest, ExportsAskWhereToWriteThenRevealOrReport) {
    std::vector<fs::path> written;
    auto exporter = [&](const fs::path& output, const fs::path&, const std::string& title, const std::string&) {
        if (title != "Study") throw std::runtime_error("unexpected title");
        written.push_back(output);
    };
    session.setHandoffExporter(exporter);
    session.setFindingsPacketExporter([](auto&&...) { throw std::runtime_error("The disk is full."); });
    session.exportHandoff(); // no project: nothing happens
    EXPECT_TRUE(panels.saveRequests.empty());

    session.open(makeProject("Study.mvibrl"));
    panels.saveAnswers.push_back(folder / "out.mvibrl-handoff");
    session.exportHandoff();
    EXPECT_EQ(panels.saveRequests.back().suggestedName, "Study.mvibrl-handoff");
    EXPECT_EQ(written, std::vector<fs::path>{folder / "out.mvibrl-handoff"});
    EXPECT_EQ(panels.revealed, written);

    panels.saveAnswers.push_back(folder / "out.zvk");
    session.exportFindingsPacket();
    EXPECT_EQ(panels.saveRequests.back().title, "Export Presentation Packet");
    EXPECT_EQ(session.lastError(), "The disk is full.");
    EXPECT_EQ(panels.revealed.size(), 1u);
}

TEST(MibrelShellUIStateTest, ChangingToolClearsSelectionsButNotTheArmedCodeOrAJump) {
    MibrelShellUIState shell;
    const auto code = platform::Uuid::random();
    int toolChanges = 0;
    QObject::connect(&shell, &MibrelShellUIState::selectedToolChanged, [&] { ++toolChanges; });

    shell.setSelectedTool(MibrelTool::codebook);
    shell.selectedCodeID = code;
    shell.activeCodeID = code;
    shell.auditEventFilter = "quote";
    shell.setSelectedTool(MibrelTool::codebook); // the current tool: nothing happens
    EXPECT_EQ(shell.selectedCodeID, code);
    EXPECT_EQ(toolChanges, 1);

    shell.setSelectedTool(MibrelTool::themes);
    shell.setSelectedTool(MibrelTool::codebook);
    EXPECT_FALSE(shell.selectedCodeID);
    EXPECT_EQ(shell.auditEventFilter, "");
    EXPECT_EQ(shell.activeCodeID, code);

    shell.jumpTo(MibrelTool::themes, [&](MibrelShellUIState& s) { s.selectedThemeID = code; });
    EXPECT_EQ(shell.selectedTool(), MibrelTool::themes);
    EXPECT_EQ(shell.selectedThemeID, code);
}

} // namespace
} // namespace mibrel
