#pragma once

#include <functional>
#include <optional>
#include <string>

#include <QMainWindow>

class QSettings;
class QStackedWidget;
class QToolBar;

namespace mibrel {

class MibrelApp;
class MibrelCommands;
class MibrelQtPanels;
class MibrelShellView;
class MibrelStartPageView;

// The one window: the start page with no project open, the workspace shell with one,
// the menus, and the alerts that show what went wrong.
class MibrelMainWindow : public QMainWindow {
    Q_OBJECT

public:
    MibrelMainWindow(MibrelApp& app, MibrelQtPanels& panels, QSettings& settings, QWidget* parent = nullptr);

private:
    void showRootContent();
    // Shows `message` in an alert whose OK runs `clear`; queued, so the alert never opens
    // in the middle of the operation that reported the problem.
    void alertWhenSet(const QString& title, const std::optional<std::string>& message, std::function<void()> clear);
    void openSampleProject();
    void buildToolbar();

    MibrelApp& m_app;
    MibrelCommands* m_commands;
    QStackedWidget* m_root;
    MibrelStartPageView* m_startPage;
    MibrelShellView* m_shell;
    QToolBar* m_toolbar = nullptr;
};

} // namespace mibrel
