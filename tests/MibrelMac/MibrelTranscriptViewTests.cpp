#include "MibrelMac/Views/Sources/MibrelTranscriptView.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QListView>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
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
    MibrelTranscriptView view{sources, workspace};
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

} // namespace
} // namespace mibrel
