#include "MibrelMac/Views/Coding/MibrelCodingView.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTextCursor>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

#include "MibrelCore/Audit/TeskAuditTrail.h"
#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelCore/Storage/TeskWorkspaceStore.h"
#include "MibrelMac/App/MibrelAuditHook.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/State/Tools/Coding/MibrelCodingPresenter.h"
#include "MibrelMac/Views/Coding/MibrelCodingInspectorPanel.h"
#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

class MibrelCodingViewTest : public ::testing::Test {
protected:
    MibrelCodingViewTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        TeskSourceStore::saveSource(source, project);
        TeskSourceStore::saveTranscript(TeskTranscript{{{"a", std::nullopt, std::nullopt, "We stayed for the kids."},
                                                        {"b", std::nullopt, std::nullopt, "The pay was low."},
                                                        {"c", std::nullopt, std::nullopt, "Mentors helped."}}},
                                        source.id, project);
        TeskSourceStore::saveIndex({source}, project);
        sources.bind(project);
        workspace.bind(project);
        workspace.onAuditEvent = auditTrailHook(workspace, project);
        workspace.addCode("Workload", "");
        workspace.addCode("Pay", "");
        view.show();
    }

    std::vector<TeskCodeApplication> saved() const {
        const auto applications = TeskWorkspaceStore::load(project)->applications;
        return {applications.begin(), applications.end()};
    }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    TeskSource source{.label = "Interview Ana"};
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels, &settings};
    MibrelWorkspaceState workspace;
    MibrelShellUIState shellUI;
    MibrelAudioPlayer player;
    MibrelCodingView view{sources, workspace, shellUI, player};
    QListView* list = view.segmentList();
};

// The whole flow without the mouse: move down, choose the second code, apply, and undo.
TEST_F(MibrelCodingViewTest, CodingFromTheKeyboard) {
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down); // the first segment
    QTest::keyClick(list, Qt::Key_J);    // the second
    EXPECT_EQ(view.presenter().selectedRow(), 1u);
    EXPECT_EQ(list->currentIndex().row(), 1);
    QTest::keyClick(list, Qt::Key_2);
    EXPECT_EQ(view.presenter().activeCode()->name, "Pay");
    QTest::keyClick(list, Qt::Key_Return);
    QTest::keyClick(list, Qt::Key_Return); // once per code
    const auto applications = saved();
    ASSERT_EQ(applications.size(), 1u);
    EXPECT_EQ(applications[0].response.segmentID, "b");
    EXPECT_EQ(workspace.code(applications[0].codeID)->name, "Pay");
    const auto events = TeskAuditTrail::load(project);
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.back().event, "application_added");
    EXPECT_EQ(list->model()->index(1, 0).data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("The pay was low. (codes: Pay)"));

    workspace.undo(); // Edit → Undo, Ctrl+Z in the window
    EXPECT_TRUE(saved().empty());
    QTest::keyClick(list, Qt::Key_P);
    ASSERT_TRUE(view.presenter().quoteAt(1));
    EXPECT_EQ(view.presenter().summary().quotes, 1u);
}

TEST_F(MibrelCodingViewTest, ThePaletteListsTheCodesWithTheirDigitsAndFilters) {
    QStringList buttons;
    for (QToolButton* button : view.findChildren<QToolButton*>()) {
        if (button->isCheckable()) buttons << button->text() + (button->isChecked() ? QStringLiteral("*") : QString());
    }
    EXPECT_EQ(buttons, (QStringList{QStringLiteral("1  Workload*"), QStringLiteral("2  Pay")}));
    view.findChild<QLineEdit*>(QStringLiteral("codingPaletteFilter"))->setText(QStringLiteral("pa"));
    buttons.clear();
    for (QToolButton* button : view.findChildren<QToolButton*>()) {
        if (button->isCheckable()) buttons << button->text();
    }
    EXPECT_EQ(buttons, QStringList{QStringLiteral("1  Pay")});
}

// The inspector codes a trimmed excerpt with its exact place, and clears its drafts.
TEST_F(MibrelCodingViewTest, TheInspectorAppliesATrimmedExcerpt) {
    MibrelCodingInspectorPanel inspector(sources, workspace, shellUI);
    view.presenter().select(1);
    inspector.findChild<QComboBox*>(QStringLiteral("codingInspectorCode"))->setCurrentIndex(1);
    auto* excerpt = inspector.findChild<QPlainTextEdit*>(QStringLiteral("codingInspectorExcerpt"));
    excerpt->setPlainText(QStringLiteral("pay was low"));
    inspector.findChild<QPushButton*>(QStringLiteral("codingInspectorApply"))->click();
    const auto applications = saved();
    ASSERT_EQ(applications.size(), 1u);
    EXPECT_EQ(workspace.code(applications[0].codeID)->name, "Pay");
    EXPECT_EQ(applications[0].response.charStart, 4);
    EXPECT_EQ(applications[0].response.charEnd, 15);
    EXPECT_TRUE(excerpt->toPlainText().isEmpty());
}

// Words selected in the segment become the excerpt, stored at the place selected even when
// they occur earlier too.
TEST_F(MibrelCodingViewTest, SelectedWordsBecomeTheExcerptAtTheirPlace) {
    TeskSourceStore::saveTranscript(TeskTranscript{{{"a", std::nullopt, std::nullopt, "Pay, pay and more pay."}}},
                                    source.id, project);
    sources.bind(project);
    MibrelCodingInspectorPanel inspector(sources, workspace, shellUI);
    view.presenter().select(0);
    auto* text = inspector.findChild<QPlainTextEdit*>(QStringLiteral("codingInspectorSegmentText"));
    ASSERT_EQ(text->toPlainText(), QStringLiteral("Pay, pay and more pay."));
    QTextCursor cursor = text->textCursor();
    cursor.setPosition(17); // " pay", the last one, with the blank before it
    cursor.setPosition(21, QTextCursor::KeepAnchor);
    text->setTextCursor(cursor);
    EXPECT_EQ(inspector.findChild<QPlainTextEdit*>(QStringLiteral("codingInspectorExcerpt"))->toPlainText(),
              QStringLiteral("pay"));
    inspector.findChild<QPushButton*>(QStringLiteral("codingInspectorApply"))->click();
    const auto applications = saved();
    ASSERT_EQ(applications.size(), 1u);
    EXPECT_EQ(applications[0].excerpt, "pay");
    EXPECT_EQ(applications[0].response.charStart, 18);
    EXPECT_EQ(applications[0].response.charEnd, 21);
}

} // namespace
} // namespace mibrel
