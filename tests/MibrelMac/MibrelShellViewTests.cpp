#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QScrollBar>
#include <QCoreApplication>
#include <QPlainTextEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QListView>
#include <QListWidget>
#include <QTest>
#include <QSettings>
#include <QStackedWidget>
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
#include "MibrelMac/State/Tools/Shell/MibrelShellPresenter.h"
#include "MibrelMac/Views/Kit/MibrelToolIcons.h"
#include "MibrelMac/Views/Shell/MibrelInspectorView.h"
#include "MibrelMac/Views/Shell/MibrelShellDialogs.h"
#include "MibrelMac/Views/Shell/MibrelShellView.h"
#include "MibrelMac/Views/Shell/MibrelToolTable.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

QStringList rowTexts(const QListWidget* list) {
    QStringList result;
    for (int row = 0; row < list->count(); ++row) result << list->item(row)->text();
    return result;
}

QStringList rowTexts(const QListView* list) {
    QStringList result;
    for (int row = 0; row < list->model()->rowCount(); ++row) result << list->model()->index(row, 0).data().toString();
    return result;
}

// Lets queued dialogs open and closed ones go.
void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

void click(QMessageBox* box, const QString& title) {
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == title) return button->click();
    }
    ADD_FAILURE() << "no button " << title.toStdString();
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
    QListView* sourceList = view.findChild<QListView*>(QStringLiteral("shellSourceList"));

    QMessageBox* openBox() const { return qobject_cast<QMessageBox*>(view.dialogs().openDialog()); }

    void bindStudy() {
        TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
        sources.bind(folder / "Study.mvibrl");
        workspace.bind(folder / "Study.mvibrl");
    }

    void importDocument(const std::string& name) {
        testing::writeText(folder / (name + ".txt"), "Text of " + name);
        sources.importTranscript(folder / (name + ".txt"));
    }
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

    // Each tool has its own inspector panel.
    for (MibrelTool tool : platform::allCases<MibrelTool>()) {
        shellUI.setSelectedTool(tool);
        EXPECT_EQ(inspector->currentWidget()->objectName().toStdString(), inspectorPanelName(tool));
        EXPECT_EQ(pages->currentWidget(), view.toolPage(tool));
    }

    // The arrow keys walk the workflow.
    shellUI.setSelectedTool(MibrelTool::sources);
    QTest::keyClick(toolList, Qt::Key_Down);
    EXPECT_EQ(shellUI.selectedTool(), MibrelTool::firstRead);
    QTest::keyClick(toolList, Qt::Key_End);
    EXPECT_EQ(shellUI.selectedTool(), MibrelTool::report);

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

    TeskSourceStore::saveIndex({TeskSource{.label = "Interview with Ana"}}, folder / "Study.mvibrl");
    sources.bind(folder / "Study.mvibrl");
    EXPECT_TRUE(sourceList->isHidden());
    EXPECT_TRUE(labelTexts(empty).contains(QStringLiteral("No other sources")));

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

    // A second notice keeps the toast up when the first one's time runs out.
    const platform::Uuid first = sources.latestImportNotice()->id;
    testing::writeText(folder / "Ben.txt", "Text");
    sources.importTranscript(folder / "Ben.txt");
    auto* presenter = view.findChild<MibrelShellPresenter*>();
    presenter->expireNotice(first);
    EXPECT_FALSE(toast->isHidden());
    EXPECT_TRUE(labelTexts(toast).contains(QStringLiteral("Ben is selected and ready to review.")));
    presenter->expireNotice(sources.latestImportNotice()->id);
    EXPECT_TRUE(toast->isHidden());
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
        settle();
        QMessageBox* dialog = openBox();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->objectName(), QStringLiteral("shellDeleteSourceDialog"));
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Delete “Ana”?"));
        EXPECT_EQ(dialog->text().toStdString(), MibrelSourcesState::kDeleteConfirmation);
        click(dialog, button);
        settle();
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
    EXPECT_EQ(openBox(), nullptr);
}

// The keyboard reaches a source: arrows move along the list, Enter makes it current,
// Delete asks to delete it.
TEST_F(MibrelShellViewTest, TheSourceListIsDrivenByTheKeyboard) {
    bindStudy();
    for (const char* name : {"Ana", "Ben", "Cleo"}) importDocument(name);
    sources.select(sources.sources().front().id); // Ana is current; Ben and Cleo are listed
    view.show();
    sourceList->setFocus();
    sourceList->setCurrentIndex(sourceList->model()->index(0, 0));
    QTest::keyClick(sourceList, Qt::Key_Down);
    EXPECT_EQ(sourceList->currentIndex().data().toString(), QStringLiteral("Cleo"));
    QTest::keyClick(sourceList, Qt::Key_Return);
    settle();
    EXPECT_EQ(sources.source(sources.selectedSourceID())->label, "Cleo");

    sourceList->setCurrentIndex(sourceList->model()->index(0, 0));
    QTest::keyClick(sourceList, Qt::Key_Delete);
    settle();
    ASSERT_NE(openBox(), nullptr);
    EXPECT_EQ(openBox()->windowTitle(), QStringLiteral("Delete “Ana”?"));
    QTest::keyClick(openBox(), Qt::Key_Escape); // Escape is Cancel
    settle();
    EXPECT_EQ(openBox(), nullptr);
    EXPECT_EQ(sources.sources().size(), 3u);
}

// Problems reported together are shown one after another, each answered by its own button.
TEST_F(MibrelShellViewTest, AlertsFollowOneAnotherAndClearTheirProblem) {
    bindStudy();
    view.show();
    workspace.setLastError("The disk is full.");
    sources.setLastError("The file could not be read.");
    settle();
    ASSERT_NE(openBox(), nullptr);
    EXPECT_EQ(openBox()->windowTitle(), QStringLiteral("Mibrel"));
    EXPECT_EQ(openBox()->text(), QStringLiteral("The file could not be read."));
    click(openBox(), QStringLiteral("OK"));
    settle();
    EXPECT_FALSE(sources.lastError());
    ASSERT_NE(openBox(), nullptr);
    EXPECT_EQ(openBox()->windowTitle(), QStringLiteral("Save Problem"));
    click(openBox(), QStringLiteral("OK"));
    settle();
    EXPECT_FALSE(workspace.lastError());
    EXPECT_EQ(openBox(), nullptr);
}

// With the workspace unreadable the researcher must choose: Escape and closing do nothing.
TEST_F(MibrelShellViewTest, TheCannotBeSavedDialogHasNoWayOutButItsCommands) {
    TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
    testing::writeText(TeskWorkspaceStore::workspaceURL(folder / "Study.mvibrl"), "{ not json");
    view.show();
    workspace.bind(folder / "Study.mvibrl");
    settle();
    QMessageBox* box = openBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), QStringLiteral("This Project Cannot Be Saved"));
    QStringList buttons;
    for (QAbstractButton* button : box->buttons()) buttons << button->text();
    buttons.sort();
    EXPECT_EQ(buttons, (QStringList{QStringLiteral("Close Project"), QStringLiteral("Set Aside Damaged File and Continue")}));
    QTest::keyClick(box, Qt::Key_Escape);
    box->close();
    settle();
    EXPECT_EQ(openBox(), box);
    click(box, QStringLiteral("Set Aside Damaged File and Continue"));
    settle();
    EXPECT_EQ(openBox(), nullptr);
    EXPECT_FALSE(workspace.loadFailureMessage());
}

// The window is driven through the accessibility tree: a control without a name is not there.
TEST_F(MibrelShellViewTest, EveryControlHasAName) {
    TeskProjectArchive::createEmpty(folder / "Study.mvibrl", "Study", false);
    TeskSource recording{.label = "Interview with Ana", .mediaFilename = "speech.m4a", .mediaKind = TeskMediaKind::video};
    TeskSourceStore::saveIndex({recording, TeskSource{.label = "Focus group"}}, folder / "Study.mvibrl");
    std::filesystem::create_directories(TeskSourceStore::sourceDirectory(folder / "Study.mvibrl", recording.id));
    std::filesystem::copy_file(std::filesystem::path(MIBREL_MEDIA_FIXTURES) / "video-with-sound.mp4",
                               TeskSourceStore::sourceDirectory(folder / "Study.mvibrl", recording.id) / "speech.m4a");
    TeskSourceStore::saveTranscript(TeskTranscript{{{"a", 1.0, 2.0, "Hello there."}}}, recording.id,
                                    folder / "Study.mvibrl");
    sources.bind(folder / "Study.mvibrl");
    workspace.bind(folder / "Study.mvibrl");
    workspace.addCode("Workload", "");
    shellUI.codingSelection = MibrelCodingSelection{recording.id, "a"};
    view.findChild<QLineEdit*>(QStringLiteral("shellSourceFilter"))->setText(QStringLiteral("a"));
    // Every tool's page and inspector, as each is shown: Sources with the transcript, its
    // player and its notes; Read & Code with its palette and inspector.
    QStringList unnamed;
    for (MibrelTool tool : platform::allCases<MibrelTool>()) {
        shellUI.setSelectedTool(tool);
        for (QWidget* control : view.findChildren<QWidget*>()) {
            const bool isControl = qobject_cast<QAbstractButton*>(control) || qobject_cast<QLineEdit*>(control) ||
                                   qobject_cast<QAbstractItemView*>(control) || qobject_cast<QPlainTextEdit*>(control) ||
                                   qobject_cast<QComboBox*>(control) ||
                                   (qobject_cast<QAbstractSlider*>(control) && !qobject_cast<QScrollBar*>(control));
            if (!isControl || !control->isVisibleTo(&view)) continue;
            const auto* button = qobject_cast<QAbstractButton*>(control);
            const bool named = !control->accessibleName().isEmpty() || (button && !button->text().isEmpty()) ||
                               (button && !button->toolTip().isEmpty());
            const QString name = QString::fromUtf8(control->metaObject()->className()) + u' ' + control->objectName();
            if (!named && !unnamed.contains(name)) unnamed << name;
        }
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
