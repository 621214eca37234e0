#include "MibrelMac/Views/MibrelCommands.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelMac/App/MibrelApp.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

QMenu* menuTitled(QMainWindow& window, const QString& title) {
    for (QAction* action : window.menuBar()->actions()) {
        if (action->menu() && action->iconText() == title) return action->menu();
    }
    return nullptr;
}

// What the menu shows and a screen reader says: mnemonic marks taken out.
QStringList shownTitles(const QMenu& menu) {
    QStringList titles;
    for (const QAction* action : menu.actions()) {
        if (!action->isSeparator()) titles << action->iconText();
    }
    return titles;
}

TEST(MibrelCommandsTest, ToolTitlesShowTheirAmpersand) {
    testing::TemporaryDirectory folder;
    QSettings settings(QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat);
    MibrelScriptedPanels panels;
    MibrelApp app(panels, settings, {QStringLiteral("mibrel")});
    QMainWindow window;
    MibrelCommands commands(window, app);
    QMenu* view = menuTitled(window, QStringLiteral("View"));
    ASSERT_NE(view, nullptr);
    EXPECT_TRUE(shownTitles(*view).contains(QStringLiteral("Read & Code"))) << shownTitles(*view).join(u'|').toStdString();
}

} // namespace
} // namespace mibrel
