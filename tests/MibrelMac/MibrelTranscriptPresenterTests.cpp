#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
#include "MibrelMac/State/Tools/Sources/MibrelSourceInspectorPresenter.h"

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

TranscriptSegment timed(std::string id, std::string text, std::optional<double> start, std::optional<double> end) {
    return TranscriptSegment{std::move(id), start, end, std::move(text)};
}

class MibrelTranscriptPresenterTest : public ::testing::Test {
protected:
    MibrelTranscriptPresenterTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        TeskSourceStore::saveSource(source, project);
        TeskSourceStore::saveTranscript(TeskTranscript{{timed("a", "We stayed for the school.", 12.4, 20.0),
                                                        timed("b", "The pay was low.", 20.0, 3725.0),
                                                        timed("c", "Untimed note", std::nullopt, std::nullopt)}},
                                        source.id, project);
        TeskSourceStore::saveIndex({source}, project);
        sources.bind(project);
        workspace.bind(project);
        workspace.addCode("Workload", "");
        code = workspace.workspace().codes[0].id;
    }

    std::vector<std::string> texts() const {
        std::vector<std::string> result;
        for (std::size_t i = 0; i < presenter.rowCount(); ++i) result.push_back(presenter.row(i).text);
        return result;
    }

    std::vector<std::string> savedTexts() const {
        std::vector<std::string> result;
        for (const auto& segment : TeskSourceStore::loadTranscript(source.id, project).segments) result.push_back(segment.text);
        return result;
    }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    TeskSource source{.label = "Interview Ana"};
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels, &settings};
    MibrelWorkspaceState workspace;
    MibrelTranscriptPresenter presenter{sources, workspace};
    Uuid code;
};

TEST_F(MibrelTranscriptPresenterTest, RowsShowTimesTextAndTheMergeGuard) {
    ASSERT_EQ(presenter.rowCount(), 3u);
    EXPECT_EQ(presenter.row(0).timeText, "0:12 – 0:20");
    EXPECT_EQ(presenter.row(1).timeText, "0:20 – 62:05");
    EXPECT_EQ(presenter.row(2).timeText, "");
    EXPECT_TRUE(presenter.row(0).merge.enabled);

    workspace.addApplication(TeskResponseRef{source.id, "b"}, code, "The pay", "");
    EXPECT_EQ(presenter.row(1).codedExcerpts, 1u);
    EXPECT_FALSE(presenter.row(0).merge.enabled);
    presenter.mergeWithNext("a"); // refused: the evidence on "b" would lose its segment
    EXPECT_EQ(savedTexts().size(), 3u);
    presenter.mergeWithNext("b");
    EXPECT_EQ(savedTexts(), (std::vector<std::string>{"We stayed for the school.", "The pay was low. Untimed note"}));

    sources.select(std::nullopt);
    EXPECT_EQ(presenter.rowCount(), 0u);
    EXPECT_EQ(presenter.emptyText(), "Select a source in the sidebar to read its transcript.");
}

// Emptying a segment deletes it; where coded excerpts point at it, the researcher is asked first.
TEST_F(MibrelTranscriptPresenterTest, EmptyingASegmentWithEvidenceAsksFirst) {
    EXPECT_EQ(presenter.editConfirmation("a", "  "), std::nullopt);
    workspace.addApplication(TeskResponseRef{source.id, "a"}, code, "school", "");
    workspace.addCode("Belonging", "");
    workspace.addApplication(TeskResponseRef{source.id, "a", 0, 2}, workspace.workspace().codes[1].id, "We", "");
    EXPECT_EQ(presenter.editConfirmation("a", "We stayed."), std::nullopt);
    EXPECT_EQ(presenter.editConfirmation("a", " \n"),
              "Delete this segment? 2 coded excerpts point at it and will no longer resolve.");

    presenter.saveEdit("a", "  We stayed, for the school. ");
    EXPECT_EQ(savedTexts()[0], "We stayed, for the school.");
    presenter.saveEdit("a", "");
    EXPECT_EQ(savedTexts(), (std::vector<std::string>{"The pay was low.", "Untimed note"}));
}

TEST_F(MibrelTranscriptPresenterTest, SplittingAndReviewingSaveAtOnce) {
    EXPECT_EQ(presenter.suggestedSplit("a"), (std::pair<std::string, std::string>{"We stayed", "for the school."}));
    presenter.saveSplit("a", "We stayed", "for the school.");
    EXPECT_EQ(texts(), (std::vector<std::string>{"We stayed", "for the school.", "The pay was low.", "Untimed note"}));
    EXPECT_EQ(presenter.row(0).timeText, "0:12 – 0:16");

    EXPECT_EQ(presenter.reviewCommand().title, "Mark Reviewed");
    EXPECT_TRUE(presenter.reviewCommand().enabled);
    presenter.markReviewed();
    EXPECT_EQ(presenter.reviewCommand().title, "Reviewed");
    EXPECT_EQ(presenter.reviewCommand().image, "checkmark.seal");
    const auto index = TeskSourceStore::loadIndex(project);
    ASSERT_EQ(index.size(), 1u);
    const TeskSource& saved = index[0];
    ASSERT_TRUE(saved.transcriptionStatus);
    EXPECT_EQ(saved.transcriptionStatus->kind, TeskTranscriptionStatusKind::reviewed);
}

// The inspector renames through the source's record and counts what the transcript holds.
// Only a recording has a transcription state; the first request asks for approval, and
// nothing more can be started until it is answered.
TEST_F(MibrelTranscriptPresenterTest, ARecordingShowsItsTranscriptionAndCanRunItAgain) {
    EXPECT_FALSE(presenter.transcription());
    EXPECT_FALSE(presenter.media());
    EXPECT_FALSE(presenter.row(0).start);

    TeskSource recording = *sources.source(source.id);
    recording.mediaFilename = "interview.m4a";
    recording.mediaKind = TeskMediaKind::audio;
    sources.updateSource(recording);
    EXPECT_FALSE(presenter.media()); // the file is not there: the transcript stays usable
    EXPECT_EQ(presenter.row(2).start, 0.0); // an untimed row plays from the start
    auto state = presenter.transcription();
    ASSERT_TRUE(state);
    EXPECT_EQ(state->summary.title, "Transcribed");
    EXPECT_EQ(state->summary.detail, "3 segments available.");
    EXPECT_EQ(state->coverage, "Coverage 12s-62:05; 11 words; 3 segments");
    EXPECT_EQ(state->transcribeTitle, "Transcribe Again");
    EXPECT_TRUE(state->canTranscribe);
    EXPECT_FALSE(state->running);

    presenter.transcribe();
    state = presenter.transcription();
    EXPECT_EQ(state->summary.title, "Approval needed");
    EXPECT_FALSE(state->canTranscribe);
    EXPECT_EQ(savedTexts().size(), 3u); // the transcript is untouched while waiting
}

TEST_F(MibrelTranscriptPresenterTest, TheInspectorRenamesAndCountsTheSelectedSource) {
    using Field = MibrelSourceInspectorPresenter::Field;
    MibrelSourceInspectorPresenter inspector(sources, workspace);
    workspace.addApplication(TeskResponseRef{source.id, "a"}, code, "school", "");
    workspace.addCode("Pay", "");
    workspace.addApplication(TeskResponseRef{source.id, "a"}, workspace.workspace().codes[1].id, "stayed", "");
    workspace.addApplication(TeskResponseRef{source.id, "b"}, code, "pay", "");
    EXPECT_EQ(inspector.counts(), (std::vector<Field>{{"Segments", "3"}, {"Words", "11"}, {"Coded segments", "2"},
                                                       {"Applications", "3"}, {"Media notes", "0"}}));
    EXPECT_EQ(inspector.details().front(), (Field{"Kind", "Text"}));

    inspector.rename("   ");
    EXPECT_EQ(TeskSourceStore::loadIndex(project)[0].label, "Interview Ana");
    inspector.rename("  Ana, second visit ");
    EXPECT_EQ(TeskSourceStore::loadIndex(project)[0].label, "Ana, second visit");
    sources.select(std::nullopt);
    EXPECT_TRUE(inspector.counts().empty());
}

} // namespace
} // namespace mibrel
