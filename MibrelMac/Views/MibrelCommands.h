#pragma once

#include <vector>

#include <QObject>

class QAction;
class QMainWindow;

namespace mibrel {

class MibrelApp;

// The menu bar: titles, shortcuts and when each command is available. Commands that need
// an open project are disabled without one; the window calls refresh() when that changes.
class MibrelCommands : public QObject {
    Q_OBJECT

public:
    MibrelCommands(QMainWindow& window, MibrelApp& app);

    void refresh();

    QAction* inspectorToggle() const { return m_inspectorToggle; }
    // The import commands, shared with the window's toolbar menu.
    const std::vector<QAction*>& importActions() const { return m_importActions; }

signals:
    void settingsRequested();
    void shortcutsRequested();

private:
    void addFileMenu(QMainWindow& window);
    void addEditMenu(QMainWindow& window);
    void addViewMenu(QMainWindow& window);
    QAction* projectAction(QAction* action);

    MibrelApp& m_app;
    std::vector<QAction*> m_projectActions; // enabled only with a project open
    std::vector<QAction*> m_importActions;
    QAction* m_inspectorToggle = nullptr;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
};

} // namespace mibrel
