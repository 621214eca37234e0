#include "MibrelMac/State/Tools/Shell/MibrelShellDialogPresenter.h"

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "MibrelMac/State/MibrelProjectSession.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

using Kind = MibrelShellDialogPresenter::Kind;

class MibrelShellDialogPresenterTest : public ::testing::Test {
protected:
    MibrelShellDialogPresenterTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        TeskSourceStore::saveIndex({TeskSource{.label = "Ana"}, TeskSource{.label = "Ben"}}, project);
    }

    void bind() {
        session.open(project);
        sources.bind(project);
        workspace.bind(project);
    }

    std::optional<Kind> due() const {
        const auto dialog = presenter.current();
        return dialog ? std::optional(dialog->kind) : std::nullopt;
    }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelProjectSession session{panels, settings};
    MibrelSourcesState sources{panels, &settings};
    MibrelWorkspaceState workspace;
    MibrelShellUIState shellUI;
    MibrelSourceListPresenter sourceList{sources, shellUI};
    MibrelShellDialogPresenter presenter{session, sourceList, sources, workspace};
};

// Several problems at once are shown one after another, in the shell's order, each
// answer clearing its own and bringing the next.
TEST_F(MibrelShellDialogPresenterTest, DialogsComeOneAtATimeInOrder) {
    bind();
    EXPECT_FALSE(presenter.current());
    workspace.setLastError("The disk is full.");
    sources.setLastError("The file could not be read.");
    sourceList.requestDelete(sources.sources().front().id);

    const auto deleting = presenter.current();
    ASSERT_TRUE(deleting);
    EXPECT_EQ(deleting->kind, Kind::deleteSource);
    EXPECT_EQ(deleting->title, "Delete “Ana”?");
    EXPECT_EQ(deleting->message, MibrelSourcesState::kDeleteConfirmation);
    EXPECT_EQ(deleting->buttons, (std::vector<MibrelShellDialogPresenter::Button>{
                                     {"Delete Source", MibrelShellDialogPresenter::Role::destructive},
                                     {"Cancel", MibrelShellDialogPresenter::Role::reject}}));
    presenter.answer(Kind::deleteSource, 1); // Cancel
    EXPECT_EQ(sources.sources().size(), 2u);

    const auto error = presenter.current();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->title, "Mibrel");
    EXPECT_EQ(error->message, "The file could not be read.");
    presenter.answer(Kind::saveProblem, 0); // not the one shown: ignored
    EXPECT_EQ(due(), Kind::sourcesError);
    presenter.answer(Kind::sourcesError, 0);
    EXPECT_FALSE(sources.lastError());

    ASSERT_EQ(due(), Kind::saveProblem);
    EXPECT_EQ(presenter.current()->title, "Save Problem");
    presenter.answer(Kind::saveProblem, 0);
    EXPECT_FALSE(workspace.lastError());
    EXPECT_FALSE(presenter.current());
}

TEST_F(MibrelShellDialogPresenterTest, DeleteSourceRemovesItFromTheProject) {
    bind();
    sourceList.requestDelete(sources.sources().front().id);
    presenter.answer(Kind::deleteSource, 0);
    EXPECT_FALSE(presenter.current());
    const auto index = TeskSourceStore::loadIndex(project);
    ASSERT_EQ(index.size(), 1u);
    EXPECT_EQ(index.front().label, "Ben");
}

TEST_F(MibrelShellDialogPresenterTest, SpeechConsentTranscribesOrWaits) {
    bind();
    TeskSource recording = sources.sources().front();
    recording.mediaFilename = "interview.m4a";
    recording.mediaKind = TeskMediaKind::audio;
    sources.updateSource(recording);
    sources.beginTranscription(recording.id, false);
    const auto asked = presenter.current();
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->kind, Kind::speechConsent);
    EXPECT_EQ(asked->title, "Transcribe on this computer");
    EXPECT_EQ(asked->message, MibrelSourcesState::kSpeechIntroQuestion);
    EXPECT_EQ(asked->buttons.at(1).title, "Not Now");
    EXPECT_EQ(asked->escapeButton, 1u);
    presenter.answer(Kind::speechConsent, 1);
    EXPECT_FALSE(presenter.current());
    EXPECT_FALSE(settings.value(QStringLiteral("mibrel.speechIntroShown"), false).toBool());
}

// A damaged workspace file leaves two ways out and no cancel.
TEST_F(MibrelShellDialogPresenterTest, AnUnreadableWorkspaceOffersOnlySetAsideOrClose) {
    testing::writeText(TeskWorkspaceStore::workspaceURL(project), "{ not json");
    bind();
    const auto dialog = presenter.current();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->kind, Kind::cannotBeSaved);
    EXPECT_EQ(dialog->title, "This Project Cannot Be Saved");
    EXPECT_EQ(dialog->message.rfind("The workspace file in this project could not be read, so nothing you do here "
                                    "will be saved.",
                                    0),
              0u);
    EXPECT_NE(dialog->message.find("\n\nDetails: "), std::string::npos);
    EXPECT_FALSE(dialog->escapeButton);
    ASSERT_EQ(dialog->buttons.size(), 2u);
    EXPECT_EQ(dialog->buttons[0].title, "Set Aside Damaged File and Continue");
    EXPECT_EQ(dialog->buttons[1].title, "Close Project");

    presenter.answer(Kind::cannotBeSaved, 0);
    EXPECT_FALSE(presenter.current());
    EXPECT_TRUE(TeskWorkspaceStore::load(project).has_value()); // a fresh workspace, readable again
    EXPECT_TRUE(session.manifest());
}

TEST_F(MibrelShellDialogPresenterTest, CloseProjectIsTheOtherWayOut) {
    testing::writeText(TeskWorkspaceStore::workspaceURL(project), "{ not json");
    bind();
    ASSERT_TRUE(session.manifest());
    presenter.answer(Kind::cannotBeSaved, 1);
    EXPECT_FALSE(session.manifest());
}

} // namespace
} // namespace mibrel
