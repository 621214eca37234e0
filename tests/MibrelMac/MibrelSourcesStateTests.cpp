#include <string>
#include <vector>

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelResponsesImportSheet.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryDirectory;
using testing::writeText;
using Table = TeskResponsesImport::Table;

std::vector<std::string> labels(const MibrelSourcesState& state) {
    std::vector<std::string> result;
    for (const TeskSource& source : state.sources()) result.push_back(source.label);
    return result;
}

std::vector<std::string> segmentTexts(const TeskTranscript& transcript) {
    std::vector<std::string> result;
    for (const auto& segment : transcript.segments) result.push_back(segment.text);
    return result;
}

class MibrelSourcesStateTest : public ::testing::Test {
protected:
    MibrelSourcesStateTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        state.bind(project);
    }

    // Three documents, "A" to "C", in that order.
    void importThree() {
        for (const char* name : {"A", "B", "C"}) {
            writeText(folder / (std::string(name) + ".txt"), std::string("Text of ") + name);
            state.importTranscript(folder / (std::string(name) + ".txt"));
        }
    }

    std::vector<std::string> indexLabels() {
        std::vector<std::string> result;
        for (const TeskSource& source : TeskSourceStore::loadIndex(project)) result.push_back(source.label);
        return result;
    }

    TemporaryDirectory folder;
    fs::path project = folder / "Study.mvibrl";
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState state{panels, &settings};
};

TEST_F(MibrelSourcesStateTest, WithoutAProjectEveryOperationDoesNothingSilently) {
    writeText(folder / "notes.txt", "Some notes");
    MibrelSourcesState unbound(panels, &settings);
    panels.openAnswers.push_back(folder / "notes.txt");
    unbound.importTranscriptFile();
    unbound.importTranscript(folder / "notes.txt");
    unbound.openResponsesTable(folder / "missing.csv");
    EXPECT_EQ(unbound.importResponses(Table{{"text"}, {{"an answer"}}}, 0, std::nullopt), 0);
    unbound.deleteSource(Uuid::random());
    EXPECT_TRUE(unbound.sources().empty());
    EXPECT_TRUE(panels.openRequests.empty());
    EXPECT_FALSE(unbound.lastError());
    EXPECT_FALSE(unbound.latestImportNotice());
    EXPECT_FALSE(unbound.pendingResponsesImport());
}

TEST_F(MibrelSourcesStateTest, BindingToleratesADamagedTranscriptAndReportsADamagedIndex) {
    importThree();
    writeText(TeskSourceStore::sourceDirectory(project, state.sources()[1].id) / "transcript.json", "{ broken");
    state.bind(project);
    EXPECT_EQ(labels(state), (std::vector<std::string>{"A", "B", "C"}));
    EXPECT_EQ(state.selectedSourceID(), state.sources().front().id);
    EXPECT_TRUE(state.transcript(state.sources()[1].id).segments.empty());
    EXPECT_EQ(segmentTexts(state.transcript(state.sources()[2].id)), (std::vector<std::string>{"Text of C"}));
    EXPECT_TRUE(state.lastError());

    const fs::path other = folder / "Other.mvibrl";
    TeskProjectArchive::createEmpty(other, "Other", false);
    writeText(TeskSourceStore::sourcesDirectory(other) / "index.json", "not json");
    state.bind(other);
    EXPECT_TRUE(state.sources().empty());
    EXPECT_FALSE(state.selectedSourceID());
    EXPECT_TRUE(state.lastError());
}

TEST_F(MibrelSourcesStateTest, ATranscriptImportAddsOneSelectedSourceOrNothing) {
    writeText(folder / "Interview 1.final.md", "Q: Why teach?\r\n\r\nA: Because I love it.\n\n\n");
    state.importTranscript(folder / "Interview 1.final.md");
    ASSERT_EQ(labels(state), (std::vector<std::string>{"Interview 1.final"}));
    const TeskSource& source = state.sources().front();
    EXPECT_FALSE(source.mediaFilename || source.mediaKind || source.transcriptionStatus);
    EXPECT_EQ(state.selectedSourceID(), source.id);
    EXPECT_EQ(segmentTexts(state.transcript(source.id)), (std::vector<std::string>{"Q: Why teach?", "A: Because I love it."}));
    EXPECT_EQ(segmentTexts(TeskSourceStore::loadTranscript(source.id, project)), segmentTexts(state.transcript(source.id)));
    EXPECT_EQ(indexLabels(), labels(state));
    ASSERT_TRUE(state.latestImportNotice());
    EXPECT_EQ(state.latestImportNotice()->title, "Imported into Sources");
    EXPECT_EQ(state.latestImportNotice()->detail, "Interview 1.final is selected and ready to review.");
    EXPECT_EQ(state.latestImportNotice()->sourceID, source.id);

    // Failures leave the list, the index, the selection and the notice as they were.
    const auto notice = state.latestImportNotice();
    writeText(folder / "blank.txt", " \n\t\n");
    writeText(folder / "sheet.csv", "a,b\n1,2\n");
    state.importTranscript(folder / "blank.txt");
    EXPECT_EQ(state.lastError(), "Could not read text from this file. Try exporting it as .txt and import again.");
    state.importTranscript(folder / "sheet.csv");
    EXPECT_EQ(state.lastError(), "This file type is not supported for transcript import.");
    EXPECT_EQ(labels(state), (std::vector<std::string>{"Interview 1.final"}));
    EXPECT_EQ(indexLabels(), labels(state));
    EXPECT_EQ(state.latestImportNotice(), notice);

    // The chooser offers the document kinds, and its answer goes on as it stands.
    panels.openAnswers.push_back(folder / "Interview 1.final.md");
    state.importTranscriptFile();
    ASSERT_EQ(panels.openRequests.size(), 1u);
    EXPECT_EQ(panels.openRequests[0].title, "Import Transcript");
    EXPECT_EQ(state.sources().size(), 2u);
}

TEST_F(MibrelSourcesStateTest, ResponsesBecomeOneSourcePerRowNumberedAsInTheFile) {
    const Table table{{"id", "answer", "name"},
                      {{"1", "Workload", "Ann"}, {"2", "  \n "}, {"3", "Pay\n\nand hours", "  "}, {"4", "Mentors"},
                       {"5", "Leaders", "Eve"}}};
    EXPECT_EQ(state.importResponses(table, 1, std::nullopt), 4);
    EXPECT_EQ(labels(state), (std::vector<std::string>{"Row 1", "Row 3", "Row 4", "Row 5"}));
    EXPECT_EQ(state.latestImportNotice()->detail, "4 response sources imported. The newest source is selected.");
    EXPECT_EQ(state.selectedSourceID(), state.sources().back().id);
    EXPECT_EQ(segmentTexts(state.transcript(state.sources()[1].id)), (std::vector<std::string>{"Pay", "and hours"}));
    EXPECT_EQ(indexLabels(), labels(state));

    // A label column names the rows that have a label; the rest keep their numbers.
    state.importResponses(table, 1, 2);
    EXPECT_EQ(labels(state).back(), "Eve");
    EXPECT_EQ(state.sources()[5].label, "Row 3");

    state.importResponses(Table{{"text"}, {{""}, {"Only one"}}}, 0, std::nullopt);
    EXPECT_EQ(state.latestImportNotice()->detail, "1 response source imported. The newest source is selected.");
    EXPECT_EQ(state.sources().back().label, "Row 2");

    // Nothing importable: no notice, no new selection, yet the index is written.
    const auto notice = state.latestImportNotice();
    const auto selected = state.selectedSourceID();
    fs::remove(TeskSourceStore::sourcesDirectory(project) / "index.json");
    EXPECT_EQ(state.importResponses(Table{{"a", "b"}, {{"x"}, {"y", " "}}}, 1, std::nullopt), 0);
    EXPECT_EQ(state.latestImportNotice(), notice);
    EXPECT_EQ(state.selectedSourceID(), selected);
    EXPECT_TRUE(fs::exists(TeskSourceStore::sourcesDirectory(project) / "index.json"));
}

TEST_F(MibrelSourcesStateTest, TheResponsesSheetStartsOnTheSuggestionAndClosesAfterImport) {
    writeText(folder / "answers.csv", "id,,note\n1,A long answer here,ok\n2,,\n3,Another answer\n");
    state.openResponsesTable(folder / "answers.csv");
    ASSERT_TRUE(state.pendingResponsesImport());
    auto sheet = MibrelResponsesImportSheet::make(*state.pendingResponsesImport());
    EXPECT_EQ(sheet.fileName, "answers.csv");
    EXPECT_EQ(sheet.summary(), "answers.csv: 3 rows. Each row becomes one source.");
    EXPECT_EQ(sheet.columnNames(), (std::vector<std::string>{"id", "Column 2", "note"}));
    EXPECT_EQ(sheet.textColumn, 1);
    EXPECT_EQ(sheet.labelColumn, MibrelResponsesImportSheet::kRowNumbers);
    EXPECT_EQ(sheet.preview(), "A long answer here");
    EXPECT_EQ(sheet.importableRowsText(), "2 rows have response text");
    EXPECT_EQ(sheet.importButtonTitle(), "Import 2 Sources");

    sheet.textColumn = 2;
    EXPECT_EQ(sheet.importableRowCount(), 1);
    sheet.textColumn = 5;
    EXPECT_FALSE(sheet.preview());
    EXPECT_FALSE(sheet.canImport());

    sheet.textColumn = 1;
    sheet.labelColumn = 2;
    sheet.importInto(state);
    EXPECT_FALSE(state.pendingResponsesImport());
    EXPECT_EQ(labels(state), (std::vector<std::string>{"ok", "Row 3"}));

    state.openResponsesTable(folder / "missing.csv");
    EXPECT_FALSE(state.pendingResponsesImport());
    EXPECT_TRUE(state.lastError());
    writeText(folder / "header.csv", "only,headers\n");
    state.openResponsesTable(folder / "header.csv");
    EXPECT_EQ(state.lastError(), "This file has no data rows.");
}

TEST_F(MibrelSourcesStateTest, DeletingReselectsTheFirstAndLeavesTheWorkspaceAlone) {
    importThree();
    const Uuid b = state.sources()[1].id;
    MibrelWorkspaceState workspace;
    workspace.bind(project);
    workspace.addCode("Workload", "");
    const Uuid codeID = workspace.workspace().codes[0].id;
    workspace.addApplication(TeskResponseRef{b, "s1", std::nullopt, std::nullopt}, codeID, "Text of B", "");

    state.select(b);
    state.deleteSource(b);
    EXPECT_EQ(labels(state), (std::vector<std::string>{"A", "C"}));
    EXPECT_EQ(state.selectedSourceID(), state.sources().front().id);
    EXPECT_FALSE(state.transcripts().contains(b));
    EXPECT_FALSE(fs::exists(TeskSourceStore::sourceDirectory(project, b)));
    EXPECT_EQ(indexLabels(), labels(state));
    workspace.bind(project);
    EXPECT_EQ(workspace.applicationsForSource(b).size(), 1u);

    // Deleting another keeps the selection; deleting the last selects nothing.
    const Uuid c = state.sources()[1].id;
    state.deleteSource(c);
    EXPECT_EQ(state.selectedSourceID(), state.sources().front().id);
    state.deleteSource(state.sources().front().id);
    EXPECT_FALSE(state.selectedSourceID());
    EXPECT_FALSE(state.lastError());
}

TEST_F(MibrelSourcesStateTest, UpdatesSaveFirstAndMediaIsFoundOnlyWhenPresent) {
    importThree();
    TeskSource changed = state.sources()[0];
    changed.label = "Principal A";
    changed.tags = {"leadership"};
    state.updateSource(changed);
    EXPECT_EQ(state.sources()[0], changed);
    EXPECT_EQ(indexLabels()[0], "Principal A");
    TeskSource stranger = changed;
    stranger.id = Uuid::random();
    state.updateSource(stranger);
    EXPECT_EQ(state.sources().size(), 3u);

    TeskTranscript edited = TeskTranscript::fromPlainText("New first\n\nNew second");
    state.updateTranscript(edited, changed.id);
    EXPECT_EQ(state.transcript(changed.id), edited);
    EXPECT_EQ(TeskSourceStore::loadTranscript(changed.id, project), edited);

    EXPECT_FALSE(state.mediaURL(changed));
    changed.mediaFilename = "media.mp3";
    EXPECT_FALSE(state.mediaURL(changed));
    const fs::path media = TeskSourceStore::sourceDirectory(project, changed.id) / "media.mp3";
    writeText(media, "ID3");
    EXPECT_EQ(state.mediaURL(changed), media);
}

TEST_F(MibrelSourcesStateTest, SpeechApprovalIsAskedUntilGivenOnce) {
    importThree();
    const Uuid id = state.sources()[0].id;
    state.cancelSpeechIntro();
    EXPECT_FALSE(state.sources()[0].transcriptionStatus);

    state.beginTranscription(id, true);
    EXPECT_EQ(state.pendingSpeechIntro(), id);
    EXPECT_EQ(state.sources()[0].transcriptionStatus->message, "Waiting for approval to use on-device speech recognition.");
    state.cancelSpeechIntro();
    EXPECT_FALSE(state.pendingSpeechIntro());
    EXPECT_EQ(state.sources()[0].transcriptionStatus->message,
              "Click Transcribe when you are ready. Mibrel uses on-device speech recognition.");
    EXPECT_FALSE(state.speechIntroShown());

    state.beginTranscription(id, false);
    state.confirmSpeechIntro();
    EXPECT_FALSE(state.pendingSpeechIntro());
    EXPECT_TRUE(settings.value(QStringLiteral("mibrel.speechIntroShown")).toBool());
    state.beginTranscription(id, false);
    EXPECT_FALSE(state.pendingSpeechIntro());
}

TEST(MibrelSourcesStateSubtitle, OnlyLongLabelsOfRecordingsAskForANewName) {
    const std::string ordinary = "Edit metadata, transcribe, and review per-source stats in the inspector.";
    TeskSource source;
    source.label = std::string(47, 'a') + "é"; // 48 characters, 49 bytes
    source.mediaFilename = "media.m4a";
    EXPECT_EQ(MibrelSourcesState::subtitle(source), ordinary);
    source.label += "b";
    EXPECT_EQ(MibrelSourcesState::subtitle(source),
              "Original import: " + source.label +
                  ". Edit the label in the inspector when you are ready to name this source.");
    source.mediaFilename.reset();
    EXPECT_EQ(MibrelSourcesState::subtitle(source), ordinary);
}

TEST_F(MibrelSourcesStateTest, CopyingForWordPutsTheSelectedTranscriptOnTheClipboardInBothForms) {
    TeskWorkspace workspace;
    EXPECT_FALSE(state.copyTranscriptForWord(workspace));
    importThree();
    state.select(std::nullopt);
    EXPECT_FALSE(state.copyTranscriptForWord(workspace));
    state.select(Uuid::random());
    EXPECT_FALSE(state.copyTranscriptForWord(workspace));
    EXPECT_FALSE(panels.clipboardHTML || panels.clipboardText);

    const TeskSource source = state.sources()[1];
    TeskCode code;
    code.name = "Workload";
    workspace.codes.append(code);
    TeskCodeApplication application;
    application.response = {source.id, state.transcript(source.id).segments.front().id, 8, 9};
    application.codeID = code.id;
    workspace.applications.append(application);
    state.select(source.id);
    EXPECT_TRUE(state.copyTranscriptForWord(workspace));
    EXPECT_EQ(panels.clipboardText, "B\n\n¶: Text of B  [Workload]\n\n");
    ASSERT_TRUE(panels.clipboardHTML);
    EXPECT_TRUE(panels.clipboardHTML->starts_with("<html>"));
    EXPECT_NE(panels.clipboardHTML->find(">B</h2>"), std::string::npos);
    EXPECT_NE(panels.clipboardHTML->find("Text of <span style=\"background-color:#DFF2E9;\">B</span>"),
              std::string::npos);
}

} // namespace
} // namespace mibrel
