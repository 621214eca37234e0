#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCoreApplication>
#include <QPlainTextEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
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
#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"
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

TEST_F(MibrelShellViewTest, SourcesSectionShowsTheCurrentSourceTheFilteredRestOrWhyNothing) {
    const auto* empty = view.findChild<QWidget*>(QStringLiteral("shellSourcesEmpty"));
    auto* filter = view.findChild<QLineEdit*>(QStringLiteral("shellSourceFilter"));
    auto* strip = view.findChild<QPushButton*>(QStringLiteral("shellCurrentSource"));
    EXPECT_FALSE(empty->isHidden());
    EXPECT_EQ(labelTexts(empty), (QStringList{QStringLiteral("No sources yet"),
                                              QStringLiteral("Import transcripts, audio, documents, or open-ended responses.")}));
    EXPECT_EQ(filter->placeholderText(), QStringLiteral("Filter sources"));
    EXPECT_EQ(strip->accessibleName(), QStringLiteral("Review selected source transcript"));

    TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
    TeskSourceStore::saveIndex({TeskSource{.label = "Interview with Ana"}, TeskSource{.label = "Interview with Ben"},
                                TeskSource{.label = "Focus group"}},
                               folder / "Study.mvibrl");
    sources.bind(folder / "Study.mvibrl"); // selects the first
    EXPECT_EQ(strip->text(), QStringLiteral("Interview with Ana"));
    EXPECT_EQ(rowTexts(sourceList), (QStringList{QStringLiteral("Interview with Ben"), QStringLiteral("Focus group")}));
    EXPECT_TRUE(empty->isHidden());

    filter->setText(QStringLiteral(" ben "));
    EXPECT_EQ(rowTexts(sourceList), QStringList{QStringLiteral("Interview with Ben")});
    filter->setText(QStringLiteral("survey"));
    EXPECT_TRUE(sourceList->isHidden());
    EXPECT_TRUE(labelTexts(empty).contains(QStringLiteral("No sources match “survey”")));
    filter->clear();
    EXPECT_EQ(rowTexts(sourceList).size(), 2);

    sources.bind(std::nullopt);
    EXPECT_TRUE(rowTexts(sourceList).isEmpty());
    EXPECT_TRUE(strip->isHidden());
    EXPECT_FALSE(empty->isHidden());
}

TEST_F(MibrelShellViewTest, AnImportShowsItsToastUnderTheSourcesTool) {
    const auto* toast = view.findChild<QWidget*>(QStringLiteral("shellImportToast"));
    EXPECT_TRUE(toast->isHidden());
    TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
    sources.bind(folder / "Study.mvibrl");
    testing::writeText(folder / "Ana.txt", "Text");
    sources.importTranscript(folder / "Ana.txt");
    EXPECT_FALSE(toast->isHidden());
    EXPECT_EQ(labelTexts(toast), (QStringList{QStringLiteral("Imported into Sources"),
                                              QStringLiteral("Ana is selected and ready to review.")}));
    EXPECT_EQ(pages->currentIndex(), 0);
}

// "Delete" asks first; only "Delete Source" removes the source, from the list and the disk.
TEST_F(MibrelShellViewTest, DeletingASourceAsksFirst) {
    const auto project = folder / "Study.mvibrl";
    TeskProjectArchive::createEmpty(project, "Study", false);
    sources.bind(project);
    for (const char* name : {"Ana", "Ben"}) {
        testing::writeText(folder / (std::string(name) + ".txt"), "Text");
        sources.importTranscript(folder / (std::string(name) + ".txt"));
    }
    const auto answer = [&](const QString& button) {
        auto* dialog = view.findChild<QMessageBox*>(QStringLiteral("shellDeleteSourceDialog"));
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Delete “Ana”?"));
        EXPECT_EQ(dialog->text().toStdString(), MibrelSourcesState::kDeleteConfirmation);
        for (QAbstractButton* candidate : dialog->buttons()) {
            if (candidate->text() == button) candidate->click();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    auto* presenter = view.findChild<MibrelSourceListPresenter*>();
    ASSERT_NE(presenter, nullptr);
    const platform::Uuid ana = sources.sources().front().id;

    presenter->requestDelete(ana);
    answer(QStringLiteral("Cancel"));
    EXPECT_EQ(sources.sources().size(), 2u);
    presenter->requestDelete(ana);
    answer(QStringLiteral("Delete Source"));
    EXPECT_EQ(sources.sources().size(), 1u);
    EXPECT_EQ(TeskSourceStore::loadIndex(project).size(), 1u);
    EXPECT_EQ(rowTexts(sourceList), QStringList());
    EXPECT_EQ(view.findChild<QPushButton*>(QStringLiteral("shellCurrentSource"))->text(), QStringLiteral("Ben"));
}

// The window is driven through the accessibility tree: a control without a name is not there.
TEST_F(MibrelShellViewTest, EveryControlHasAName) {
    TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
    TeskSourceStore::saveIndex({TeskSource{.label = "Interview with Ana"}, TeskSource{.label = "Focus group"}},
                               folder / "Study.mvibrl");
    sources.bind(folder / "Study.mvibrl");
    view.findChild<QLineEdit*>(QStringLiteral("shellSourceFilter"))->setText(QStringLiteral("a"));
    QStringList unnamed;
    for (QWidget* control : view.findChildren<QWidget*>()) {
        const bool isControl = qobject_cast<QAbstractButton*>(control) || qobject_cast<QLineEdit*>(control) ||
                               qobject_cast<QAbstractItemView*>(control) || qobject_cast<QPlainTextEdit*>(control);
        if (!isControl || control->isHidden()) continue;
        const auto* button = qobject_cast<QAbstractButton*>(control);
        const bool named = !control->accessibleName().isEmpty() || (button && !button->text().isEmpty()) ||
                           (button && !button->toolTip().isEmpty());
        if (!named) unnamed << QString::fromUtf8(control->metaObject()->className()) + u' ' + control->objectName();
    }
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(QStringLiteral(", ")).toStdString();
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
