#include <QLabel>
#include <QListWidget>
#include <QSettings>
#include <QStackedWidget>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelProjectSession.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/Views/MibrelShellView.h"
#include "MibrelMac/Views/MibrelToolIcons.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

QStringList rowTexts(const QListWidget* list) {
    QStringList result;
    for (int row = 0; row < list->count(); ++row) result << list->item(row)->text();
    return result;
}

QStringList labelTexts(const QWidget* root) {
    QStringList result;
    for (const QLabel* label : root->findChildren<QLabel*>()) result << label->text();
    return result;
}

class MibrelShellViewTest : public ::testing::Test {
protected:
    testing::TemporaryDirectory folder;
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelProjectSession session{panels, settings};
    MibrelSourcesState sources{panels, &settings};
    MibrelWorkspaceState workspace;
    MibrelShellUIState shellUI;
    MibrelShellView view{session, sources, workspace, shellUI};
    QListWidget* toolList = view.findChild<QListWidget*>(QStringLiteral("shellToolList"));
    QStackedWidget* pages = view.findChild<QStackedWidget*>(QStringLiteral("shellToolPages"));
    QStackedWidget* inspector = view.findChild<QStackedWidget*>(QStringLiteral("shellInspector"));
    QListWidget* sourceList = view.findChild<QListWidget*>(QStringLiteral("shellSourceList"));
};

TEST_F(MibrelShellViewTest, SidebarPagesAndInspectorFollowTheState) {
    EXPECT_EQ(rowTexts(toolList).join(QLatin1Char('|')),
              QStringLiteral("Sources|First Read|Contextual Lens|Read & Code|Codebook|Analysis|Themes|Evidence|"
                             "Assist|Rigor|Report"));
    EXPECT_EQ(pages->count(), 11);
    EXPECT_EQ(toolList->currentRow(), 1); // the state starts on First Read

    toolList->setCurrentRow(3);
    EXPECT_EQ(shellUI.selectedTool(), MibrelTool::coding);
    EXPECT_TRUE(labelTexts(pages->currentWidget()).contains(QStringLiteral("Read & Code")));

    // A change from elsewhere (the menu, a jump) moves the highlight, the page and the inspector.
    shellUI.setSelectedTool(MibrelTool::trustworthiness);
    EXPECT_EQ(toolList->currentRow(), 9);
    EXPECT_EQ(pages->currentIndex(), 9);
    EXPECT_TRUE(labelTexts(inspector->currentWidget()).contains(QStringLiteral("Rigor")));

    EXPECT_FALSE(inspector->isHidden());
    shellUI.setInspectorVisible(false);
    EXPECT_TRUE(inspector->isHidden());
    shellUI.setInspectorVisible(true);
    EXPECT_FALSE(inspector->isHidden());
}

TEST_F(MibrelShellViewTest, SourcesSectionShowsTheProjectsSourcesOrSaysThereAreNone) {
    const auto* empty = view.findChild<QWidget*>(QStringLiteral("shellSourcesEmpty"));
    EXPECT_FALSE(empty->isHidden());
    const QStringList emptyTexts{QStringLiteral("No sources yet"),
                                 QStringLiteral("Import transcripts, audio, documents, or open-ended responses.")};
    EXPECT_EQ(labelTexts(empty), emptyTexts);

    TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
    TeskSourceStore::saveIndex({TeskSource{.label = "Interview with Ana"}}, folder / "Study.mvibrl");
    sources.bind(folder / "Study.mvibrl");
    EXPECT_EQ(rowTexts(sourceList), QStringList{QStringLiteral("Interview with Ana")});
    EXPECT_TRUE(empty->isHidden());

    sources.bind(std::nullopt);
    EXPECT_TRUE(rowTexts(sourceList).isEmpty());
    EXPECT_FALSE(empty->isHidden());
}

TEST(MibrelToolIconsTest, EverySymbolAndAnUnknownOneHaveAnIcon) {
    for (const char* name : {"doc.text", "text.magnifyingglass", "eye", "highlighter", "tag", "chart.bar.xaxis",
                             "square.stack.3d.up", "quote.opening", "sparkles", "checkmark.seal", "doc.richtext",
                             "waveform", "video", "tablecells", "sidebar.right", "arrow.up.forward.app",
                             "shippingbox", "no.such.symbol", ""}) {
        EXPECT_FALSE(iconForSymbol(name).isNull()) << name;
    }
}

} // namespace
} // namespace mibrel
