#include "MibrelMac/Views/Sources/MibrelTranscriptView.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDialog>
#include <QListView>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QTreeView>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/State/Tools/Sources/MibrelMediaNotesPresenter.h"
#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitPill.h"
#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"
#include "MibrelMac/Views/Player/MibrelInlineMediaPlayer.h"
#include "MibrelMac/Views/Sources/MibrelMediaNotesPanel.h"
#include "MibrelMac/Views/Sources/MibrelSourceInspectorPanel.h"
#include "MibrelMac/Views/Sources/MibrelTranscriptModel.h"
#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "tests/support/EventLoopWait.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

class MibrelTranscriptViewTest : public ::testing::Test {
protected:
    MibrelTranscriptViewTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        TeskSourceStore::saveSource(source, project);
        TeskSourceStore::saveTranscript(TeskTranscript{{{"a", 1.0, 4.0, "First answer."}, {"b", 4.0, 9.0, "Second answer."}}},
                                        source.id, project);
        TeskSourceStore::saveIndex({source}, project);
        sources.bind(project);
        workspace.bind(project);
    }

    std::vector<std::string> savedTexts() const {
        std::vector<std::string> texts;
        for (const auto& segment : TeskSourceStore::loadTranscript(source.id, project).segments) texts.push_back(segment.text);
        return texts;
    }

    // Gives the source a recording (a copy of a fixture) and a transcript status.
    void makeRecording() {
        std::filesystem::copy_file(std::filesystem::path(MIBREL_MEDIA_FIXTURES) / "speech.m4a", recordingFile());
        markAsRecording();
    }

    std::filesystem::path recordingFile() const {
        return TeskSourceStore::sourceDirectory(project, source.id) / "speech.m4a";
    }

    void markAsRecording() {
        TeskSource recording = *sources.source(source.id);
        recording.mediaFilename = "speech.m4a";
        recording.mediaKind = TeskMediaKind::audio;
        sources.updateSource(recording);
    }

    void answer(const QString& button) {
        auto* dialog = view.findChild<QMessageBox*>(QStringLiteral("transcriptDeleteSegmentDialog"));
        ASSERT_NE(dialog, nullptr);
        for (QAbstractButton* candidate : dialog->buttons()) {
            if (candidate->text() == button) candidate->click();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    TeskSource source{.label = "Interview Ana"};
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels, &settings};
    MibrelWorkspaceState workspace;
    MibrelAudioPlayer player; // no audio output: tests need no sound device
    MibrelTranscriptView view{sources, workspace, player};
    QListView* list = view.findChild<QListView*>(QStringLiteral("transcriptSegments"));
};

TEST_F(MibrelTranscriptViewTest, ARowIsCorrectedInPlaceAndSavedAtOnce) {
    ASSERT_EQ(list->model()->rowCount(), 2);
    EXPECT_EQ(list->model()->index(0, 0).data(Qt::AccessibleTextRole).toString(), QStringLiteral("0:01 – 0:04: First answer."));
    list->edit(list->model()->index(0, 0));
    auto* editor = list->findChild<QPlainTextEdit*>(QStringLiteral("transcriptSegmentEditor"));
    ASSERT_NE(editor, nullptr);
    editor->setPlainText(QStringLiteral("First answer, corrected."));
    list->itemDelegate()->setModelData(editor, list->model(), list->model()->index(0, 0));
    EXPECT_EQ(savedTexts(), (std::vector<std::string>{"First answer, corrected.", "Second answer."}));

    auto* review = view.findChild<QPushButton*>(QStringLiteral("transcriptReview"));
    EXPECT_EQ(review->text(), QStringLiteral("Mark Reviewed"));
    review->click();
    EXPECT_EQ(review->text(), QStringLiteral("Reviewed"));
    EXPECT_FALSE(review->isEnabled());
}

TEST_F(MibrelTranscriptViewTest, EmptyingASegmentWithEvidenceWaitsForTheAnswer) {
    workspace.addCode("Workload", "");
    workspace.addApplication(TeskResponseRef{source.id, "b"}, workspace.workspace().codes[0].id, "Second", "");
    view.commitEdit(QStringLiteral("b"), QStringLiteral("  "));
    auto* dialog = view.findChild<QMessageBox*>(QStringLiteral("transcriptDeleteSegmentDialog"));
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->text(), QStringLiteral("Delete this segment? 1 coded excerpt points at it and will no longer resolve."));
    answer(QStringLiteral("Keep Segment"));
    EXPECT_EQ(savedTexts().size(), 2u);
    view.commitEdit(QStringLiteral("b"), QString());
    answer(QStringLiteral("Delete Segment"));
    EXPECT_EQ(savedTexts(), std::vector<std::string>{"First answer."});
}

TEST_F(MibrelTranscriptViewTest, SplitFillsTheSuggestionAndMergeIsGuardedByEvidence) {
    TeskSourceStore::saveTranscript(
        TeskTranscript{{{"a", 10.0, 20.0, "one two three four"}, {"b", 20.0, 24.0, "Second answer."}}}, source.id,
        project);
    sources.bind(project);
    view.splitSegment(QStringLiteral("a"));
    auto* dialog = view.findChild<QDialog*>(QStringLiteral("transcriptSplitDialog"));
    ASSERT_NE(dialog, nullptr);
    const auto halves = dialog->findChildren<QPlainTextEdit*>();
    ASSERT_EQ(halves.size(), 2);
    EXPECT_EQ(halves[0]->toPlainText(), QStringLiteral("one two"));
    EXPECT_EQ(halves[1]->toPlainText(), QStringLiteral("three four"));
    for (QAbstractButton* button : dialog->findChildren<QAbstractButton*>()) {
        if (button->text() == QStringLiteral("Split")) button->click();
    }
    const auto saved = TeskSourceStore::loadTranscript(source.id, project).segments;
    ASSERT_EQ(saved.size(), 3u);
    EXPECT_EQ(saved[0].end, 15.0);
    EXPECT_EQ(saved[1].start, 15.0);
    EXPECT_EQ(saved[1].text, "three four");

    // Evidence on the next segment blocks the merge, with the reason as the tooltip.
    workspace.addCode("Workload", "");
    workspace.addApplication(TeskResponseRef{source.id, "b"}, workspace.workspace().codes[0].id, "Second", "");
    const QModelIndex second = list->model()->index(1, 0);
    EXPECT_FALSE(second.data(MibrelTranscriptModel::MergeEnabledRole).toBool());
    EXPECT_EQ(second.data(MibrelTranscriptModel::MergeTooltipRole).toString(),
              QStringLiteral("Next segment has coded evidence; remove or move codes before merging."));
    view.presenter().mergeWithNext(saved[1].id);
    EXPECT_EQ(TeskSourceStore::loadTranscript(source.id, project).segments.size(), 3u);
    view.presenter().mergeWithNext(saved[0].id);
    EXPECT_EQ(TeskSourceStore::loadTranscript(source.id, project).segments.front().text, "one two three four");
}

// A recording shows its status, its player and its notes; a note is stamped with the
// player's time, and clicking a note's time asks the player to go there.
TEST_F(MibrelTranscriptViewTest, ARecordingHasStatusPlayerAndTimedNotes) {
    auto* notes = view.findChild<MibrelMediaNotesPanel*>();
    ASSERT_NE(notes, nullptr);
    EXPECT_TRUE(notes->isHidden()); // a text source has no notes
    makeRecording();
    EXPECT_FALSE(notes->isHidden());
    auto* status = view.findChild<MibrelKitPill*>(QStringLiteral("transcriptStatus"));
    EXPECT_EQ(status->text(), QStringLiteral("Transcribed"));
    EXPECT_EQ(view.findChild<QPushButton*>(QStringLiteral("transcriptTranscribe"))->text(),
              QStringLiteral("Transcribe Again"));

    auto* draft = notes->findChild<QLineEdit*>(QStringLiteral("mediaNoteDraft"));
    draft->setText(QStringLiteral("  Long pause before answering  "));
    const double stamped = player.currentTimeSeconds();
    notes->findChild<QPushButton*>(QStringLiteral("mediaNoteAdd"))->click();
    const auto saved = TeskSourceStore::loadIndex(project).front().mediaNotes;
    ASSERT_EQ(saved.size(), 1u);
    EXPECT_EQ(saved[0].text, "Long pause before answering");
    EXPECT_DOUBLE_EQ(saved[0].timestamp, stamped);
    EXPECT_TRUE(draft->text().isEmpty());

    // A blank edit deletes the note.
    notes->presenter().edit(saved[0].id, "   ");
    EXPECT_TRUE(TeskSourceStore::loadIndex(project).front().mediaNotes.empty());

    notes->presenter().add(2.5, "Laughter");
    QSignalSpy seeks(notes, &MibrelMediaNotesPanel::seekRequested);
    auto* noteList = notes->findChild<QTreeView*>(QStringLiteral("mediaNotesList"));
    emit noteList->clicked(noteList->model()->index(0, 0));
    ASSERT_EQ(seeks.size(), 1);
    EXPECT_DOUBLE_EQ(seeks[0][0].toDouble(), 2.5);
}

// While a run goes on the header shows it with a progress bar and Cancel; a cancelled run
// leaves the old transcript and says how to start again.
TEST_F(MibrelTranscriptViewTest, ARunningTranscriptionCanBeFollowedAndCancelled) {
    makeRecording();
    settings.setValue(QStringLiteral("mibrel.speechIntroShown"), true);
    // A helper that answers only once the test lets it, so the cancel surely comes mid-run.
    const auto script = folder / "helper";
    testing::writeText(script, "#!/bin/bash\nwhile IFS= read -r request; do\n  while [ ! -e '" +
                                   (folder / "go").string() +
                                   "' ]; do sleep 0.01; done\n"
                                   "  echo '{\"ok\":true,\"result\":{\"segments\":[{\"text\":\"other\",\"start\":0.2,"
                                   "\"duration\":0.3}]}}'\ndone\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    MibrelAppleHelperSidecar helper([script] { return script; });
    sources.useHelper(helper);

    auto* status = view.findChild<MibrelKitPill*>(QStringLiteral("transcriptStatus"));
    auto* progress = view.findChild<QProgressBar*>(QStringLiteral("transcriptProgress"));
    auto* cancel = view.findChild<QPushButton*>(QStringLiteral("transcriptCancel"));
    auto* transcribe = view.findChild<QPushButton*>(QStringLiteral("transcriptTranscribe"));
    EXPECT_FALSE(progress->isVisibleTo(&view));
    transcribe->click();
    EXPECT_EQ(status->text(), QStringLiteral("Transcribing"));
    EXPECT_TRUE(progress->isVisibleTo(&view));
    EXPECT_TRUE(cancel->isVisibleTo(&view));
    EXPECT_FALSE(transcribe->isEnabled());

    cancel->click();
    testing::writeText(folder / "go", "");
    ASSERT_TRUE(testing::processEventsUntil([&] { return sources.transcribing().empty(); }));
    EXPECT_EQ(status->text(), QStringLiteral("Not transcribed"));
    EXPECT_TRUE(view.findChild<QLabel*>(QStringLiteral("transcriptStatusDetail"))
                    ->text()
                    .startsWith(QStringLiteral("Transcription canceled. Click Transcribe to run it again.")));
    EXPECT_FALSE(progress->isVisibleTo(&view));
    EXPECT_TRUE(transcribe->isEnabled());
    EXPECT_EQ(savedTexts(), (std::vector<std::string>{"First answer.", "Second answer."}));
}

// A recording that cannot be played says so in the inspector; one whose file is gone
// leaves the transcript to read and correct.
TEST_F(MibrelTranscriptViewTest, ABrokenOrMissingRecordingLeavesTheTranscriptUsable) {
    MibrelSourceInspectorPanel inspector(sources, workspace, player);
    testing::writeText(recordingFile(), "not a recording");
    markAsRecording();
    auto* playerView = view.findChild<MibrelInlineMediaPlayer*>();
    EXPECT_FALSE(playerView->isHidden());
    auto* error = inspector.findChild<QLabel*>(QStringLiteral("sourceInspectorPlaybackError"));
    ASSERT_TRUE(testing::processEventsUntil([&] { return !player.errorText().isEmpty(); }, 20'000));
    EXPECT_FALSE(error->isHidden());
    EXPECT_TRUE(error->text().startsWith(QStringLiteral("The recording cannot be played: ")));
    view.playRow(0); // nothing to play, nothing breaks
    EXPECT_FALSE(player.isPlaying());

    std::filesystem::remove(recordingFile());
    sources.bind(project);
    EXPECT_TRUE(playerView->isHidden());
    EXPECT_EQ(list->model()->rowCount(), 2);
    EXPECT_TRUE(player.errorText().isEmpty());
    EXPECT_TRUE(error->isHidden());
}

} // namespace
} // namespace mibrel
