#include "MibrelMac/State/Tools/Shell/MibrelShellPresenter.h"

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

class MibrelShellPresenterTest : public ::testing::Test {
protected:
    MibrelShellPresenterTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        sources.bind(project);
    }

    void importDocument(const std::string& name) {
        testing::writeText(folder / (name + ".txt"), "Text of " + name);
        sources.importTranscript(folder / (name + ".txt"));
    }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels, &settings};
    MibrelShellUIState shellUI;
    MibrelShellPresenter presenter{sources, shellUI};
};

// An import brings Sources forward with its inspector; each notice's own four seconds end
// only that notice, so a second one keeps the toast up.
TEST_F(MibrelShellPresenterTest, AnImportShowsSourcesAndASecondNoticeKeepsTheToastUp) {
    shellUI.setSelectedTool(MibrelTool::report);
    shellUI.setInspectorVisible(false);
    importDocument("Ana");
    EXPECT_EQ(shellUI.selectedTool(), MibrelTool::sources);
    EXPECT_TRUE(shellUI.isInspectorVisible());
    ASSERT_TRUE(presenter.visibleImportNotice());
    const platform::Uuid first = presenter.visibleImportNotice()->id;
    EXPECT_EQ(presenter.visibleImportNotice()->title, "Imported into Sources");
    EXPECT_EQ(presenter.visibleImportNotice()->detail, "Ana is selected and ready to review.");

    importDocument("Ben");
    const platform::Uuid second = presenter.visibleImportNotice()->id;
    EXPECT_NE(second, first);
    presenter.expireNotice(first); // the first notice's time runs out
    ASSERT_TRUE(presenter.visibleImportNotice());
    EXPECT_EQ(presenter.visibleImportNotice()->detail, "Ben is selected and ready to review.");
    presenter.expireNotice(second);
    EXPECT_FALSE(presenter.visibleImportNotice());
}

TEST_F(MibrelShellPresenterTest, TheInspectorToggleSaysWhatItWillDo) {
    shellUI.setSelectedTool(MibrelTool::codebook);
    EXPECT_EQ(MibrelShellPresenter::inspectorToggleTitle(shellUI), "Hide Inspector");
    EXPECT_EQ(MibrelShellPresenter::inspectorToggleHelp(shellUI), "Hide Inspector");
    shellUI.setInspectorVisible(false);
    EXPECT_EQ(MibrelShellPresenter::inspectorToggleTitle(shellUI), "Show Inspector");
    shellUI.setSelectedTool(MibrelTool::firstRead);
    EXPECT_EQ(MibrelShellPresenter::inspectorToggleHelp(shellUI), "Show setup inspector");
    shellUI.setInspectorVisible(true);
    EXPECT_EQ(MibrelShellPresenter::inspectorToggleHelp(shellUI), "Hide setup inspector");
}

} // namespace
} // namespace mibrel
