#include <chrono>

#include <QAbstractButton>
#include <QDropEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QSettings>
#include <QUrl>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelProjectSession.h"
#include "MibrelMac/State/MibrelRecentProjectsStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/Views/MibrelStartPageView.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;

// Drops are delivered straight to the handlers, without a drag manager.
struct DroppablePage : MibrelStartPageView {
    using MibrelStartPageView::MibrelStartPageView;
    using MibrelStartPageView::dropEvent;
};

template <typename Widget>
Widget* childShowing(const QWidget& parent, const char* text) {
    for (Widget* child : parent.findChildren<Widget*>()) {
        if (child->text() == QString::fromUtf8(text)) return child;
    }
    return nullptr;
}

class MibrelStartPageTest : public ::testing::Test {
protected:
    bool drop(const std::vector<QUrl>& urls) {
        QMimeData data;
        data.setUrls(QList<QUrl>(urls.begin(), urls.end()));
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        page.dropEvent(&event);
        return event.isAccepted();
    }
    QUrl fileURL(const char* name) { return QUrl::fromLocalFile(QString::fromStdString((folder / name).string())); }

    testing::TemporaryDirectory folder;
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelProjectSession session{panels, settings};
    DroppablePage page{session, settings, "Version 1.0", [] {}};
};

TEST_F(MibrelStartPageTest, RecentsAreGroupedByTheDayTheirContentLastChangedInOrder) {
    for (const char* name : {"Old", "Fresh", "Fresh2"}) fs::create_directories(folder / name);
    fs::last_write_time(folder / "Old", fs::last_write_time(folder / "Old") - std::chrono::hours(24 * 10));
    // The day is read from the folder itself, so a run across midnight still agrees.
    const QDate today = QFileInfo(QString::fromStdString((folder / "Fresh").string())).lastModified().date();

    const auto groups = groupedRecents({folder / "Old", folder / "Fresh", folder / "Gone", folder / "Fresh2"}, today);
    EXPECT_EQ(groups.today, (std::vector<fs::path>{folder / "Fresh", folder / "Fresh2"}));
    EXPECT_EQ(groups.earlier, (std::vector<fs::path>{folder / "Old", folder / "Gone"}));
}

TEST_F(MibrelStartPageTest, OnlyTheFirstDroppedFileCountsAndDataFilesStartAProject) {
    EXPECT_FALSE(drop({}));
    EXPECT_TRUE(drop({fileURL("setup.exe"), fileURL("answers.csv")}));
    EXPECT_EQ(session.lastError(), "Mibrel cannot open setup.exe. Drop a Mibrel project (.mvibrl), a spreadsheet "
                                   "(.csv, .tsv, .xlsx), a document (.txt, .docx, .pdf), or an audio or video recording.");
    EXPECT_TRUE(panels.saveRequests.empty());

    drop({fileURL("answers.CSV")});
    ASSERT_EQ(panels.saveRequests.size(), 1u);
    EXPECT_EQ(panels.saveRequests[0].suggestedName, "answers.mvibrl");
}

TEST_F(MibrelStartPageTest, RecentsAreListedAndOneThatFailsToOpenIsReportedAndForgotten) {
    EXPECT_TRUE(childShowing<QLabel>(page, "No recent projects"));

    TeskProjectArchive::createEmpty(folder / "Good.mvibrl", "Good", false);
    fs::create_directories(folder / "Hollow.mvibrl");
    MibrelRecentProjectsStore::remember(settings, folder / "Good.mvibrl");
    MibrelRecentProjectsStore::remember(settings, folder / "Hollow.mvibrl");
    page.reloadRecents();
    EXPECT_TRUE(childShowing<QLabel>(page, "Today"));
    EXPECT_FALSE(childShowing<QLabel>(page, "Earlier") || childShowing<QLabel>(page, "No recent projects"));

    ASSERT_TRUE(childShowing<QAbstractButton>(page, "Hollow"));
    childShowing<QAbstractButton>(page, "Hollow")->click();
    EXPECT_TRUE(session.lastError());
    EXPECT_EQ(MibrelRecentProjectsStore::load(settings), std::vector<fs::path>{folder / "Good.mvibrl"});
    EXPECT_FALSE(childShowing<QAbstractButton>(page, "Hollow"));

    ASSERT_TRUE(childShowing<QAbstractButton>(page, "Good"));
    childShowing<QAbstractButton>(page, "Good")->click();
    EXPECT_EQ(session.projectURL(), folder / "Good.mvibrl");
}

} // namespace
} // namespace mibrel
