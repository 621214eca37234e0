#include "MibrelMac/Views/MibrelCommands.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QUndoStack>

#include "MibrelMac/App/MibrelApp.h"
#include "MibrelMac/State/Tools/Shell/MibrelShellPresenter.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Kit/MibrelToolIcons.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace mibrel {
namespace {

QAction* addAction(QMenu* menu, const QString& title, const QKeySequence& shortcut = {}) {
    QAction* action = menu->addAction(title);
    action->setShortcut(shortcut);
    return action;
}

// Commands whose features are not in this build yet stay visible but unavailable.
QAction* unavailable(QAction* action) {
    action->setEnabled(false);
    action->setProperty("mibrelUnavailable", true);
    return action;
}

} // namespace

MibrelCommands::MibrelCommands(QMainWindow& window, MibrelApp& app) : QObject(&window), m_app(app) {
    addFileMenu(window);
    addEditMenu(window);
    addViewMenu(window);
    QMenu* help = window.menuBar()->addMenu(QStringLiteral("&Help"));
    connect(addAction(help, QStringLiteral("Keyboard Shortcuts"), QKeySequence(QStringLiteral("Ctrl+/"))),
            &QAction::triggered, this, &MibrelCommands::shortcutsRequested);
    connect(&app.shellUI(), &MibrelShellUIState::inspectorVisibilityChanged, this, &MibrelCommands::refresh);
    connect(&app.shellUI(), &MibrelShellUIState::selectedToolChanged, this, &MibrelCommands::refresh);
    refresh();
}

QAction* MibrelCommands::projectAction(QAction* action) {
    m_projectActions.push_back(action);
    return action;
}

void MibrelCommands::addFileMenu(QMainWindow& window) {
    QMenu* file = window.menuBar()->addMenu(QStringLiteral("&File"));
    auto& session = m_app.session();
    connect(addAction(file, QStringLiteral("New Project…"), QKeySequence(QStringLiteral("Ctrl+N"))),
            &QAction::triggered, &session, &MibrelProjectSession::newProject);
    connect(addAction(file, QStringLiteral("Open Project…"), QKeySequence(QStringLiteral("Ctrl+O"))),
            &QAction::triggered, &session, &MibrelProjectSession::openProject);
    file->addSeparator();
    connect(projectAction(addAction(file, QStringLiteral("Save Project"), QKeySequence(QStringLiteral("Ctrl+S")))),
            &QAction::triggered, &session, &MibrelProjectSession::save);
    const struct {
        const char* title;
        const char* symbol;
        const char* shortcut;
    } imports[] = {{"Import Transcript…", "doc.text", "Shift+Ctrl+T"},
                   {"Import Audio…", "waveform", "Shift+Ctrl+I"},
                   {"Import Video…", "video", ""},
                   {"Import Responses (.csv, .xlsx)…", "tablecells", ""}};
    for (const auto& item : imports) {
        QAction* action = addAction(file, QString::fromUtf8(item.title), QKeySequence(QString::fromUtf8(item.shortcut)));
        action->setIcon(iconForSymbol(item.symbol));
        m_importActions.push_back(projectAction(action));
    }
    auto& sources = m_app.sourcesState();
    connect(m_importActions[0], &QAction::triggered, &sources, &MibrelSourcesState::importTranscriptFile);
    connect(m_importActions[1], &QAction::triggered, &sources, &MibrelSourcesState::importAudioFile);
    connect(m_importActions[2], &QAction::triggered, &sources, &MibrelSourcesState::importVideoFile);
    connect(m_importActions[3], &QAction::triggered, &sources, &MibrelSourcesState::importResponsesFile);
    file->addSeparator();
    QAction* handoff = projectAction(addAction(file, QStringLiteral("Send to Kessil Bench…")));
    handoff->setIcon(iconForSymbol("arrow.up.forward.app"));
    connect(handoff, &QAction::triggered, &session, &MibrelProjectSession::exportHandoff);
    QAction* packet = projectAction(addAction(file, QStringLiteral("Export Presentation Packet…")));
    packet->setIcon(iconForSymbol("shippingbox"));
    connect(packet, &QAction::triggered, &session, &MibrelProjectSession::exportFindingsPacket);
    // Available once the program has its exporters.
    if (!session.canExport()) {
        unavailable(handoff);
        unavailable(packet);
    }
    file->addSeparator();
    connect(addAction(file, QStringLiteral("Quit"), QKeySequence::Quit), &QAction::triggered, &window, &QMainWindow::close);
}

void MibrelCommands::addEditMenu(QMainWindow& window) {
    QMenu* edit = window.menuBar()->addMenu(QStringLiteral("&Edit"));
    auto& workspace = m_app.workspaceState();
    m_undo = addAction(edit, QStringLiteral("Undo"), QKeySequence(QStringLiteral("Ctrl+Z")));
    m_redo = addAction(edit, QStringLiteral("Redo"), QKeySequence(QStringLiteral("Shift+Ctrl+Z")));
    connect(m_undo, &QAction::triggered, &workspace, &MibrelWorkspaceState::undo);
    connect(m_redo, &QAction::triggered, &workspace, &MibrelWorkspaceState::redo);
    connect(&workspace.undoStack(), &QUndoStack::indexChanged, this, &MibrelCommands::refresh);
    connect(&workspace, &MibrelWorkspaceState::undoTickChanged, this, &MibrelCommands::refresh);
    edit->addSeparator();
    QAction* copyForWord =
        projectAction(addAction(edit, QStringLiteral("Copy Transcript for Word"), QKeySequence(QStringLiteral("Alt+Ctrl+C"))));
    connect(copyForWord, &QAction::triggered, this,
            [this] { m_app.sourcesState().copyTranscriptForWord(m_app.workspaceState().workspace()); });
    edit->addSeparator();
    connect(addAction(edit, QStringLiteral("Settings…"), QKeySequence(QStringLiteral("Ctrl+,"))),
            &QAction::triggered, this, &MibrelCommands::settingsRequested);
}

void MibrelCommands::addViewMenu(QMainWindow& window) {
    QMenu* view = window.menuBar()->addMenu(QStringLiteral("&View"));
    auto& shell = m_app.shellUI();
    m_inspectorToggle = projectAction(addAction(view, QString(), QKeySequence(QStringLiteral("Alt+Ctrl+I"))));
    m_inspectorToggle->setIcon(iconForSymbol("sidebar.right"));
    connect(m_inspectorToggle, &QAction::triggered, &shell,
            [&shell] { shell.setInspectorVisible(!shell.isInspectorVisible()); });
    view->addSeparator();
    int position = 1;
    for (MibrelTool tool : platform::allCases<MibrelTool>()) {
        QAction* action = projectAction(addAction(view, kit::menuText(kit::qtText(title(tool)))));
        action->setIcon(iconForSymbol(symbol(tool)));
        if (position <= 9) action->setShortcut(QKeySequence(QStringLiteral("Ctrl+%1").arg(position)));
        connect(action, &QAction::triggered, &shell, [&shell, tool] { shell.setSelectedTool(tool); });
        ++position;
    }
}

void MibrelCommands::refresh() {
    const bool hasProject = m_app.session().hasProject();
    for (QAction* action : m_projectActions) {
        action->setEnabled(hasProject && !action->property("mibrelUnavailable").toBool());
    }
    const auto& workspace = m_app.workspaceState();
    m_undo->setText(kit::menuText(kit::qtText(workspace.undoTitle())));
    m_undo->setEnabled(workspace.canUndo());
    m_redo->setText(kit::menuText(kit::qtText(workspace.redoTitle())));
    m_redo->setEnabled(workspace.canRedo());
    m_inspectorToggle->setText(kit::qtText(MibrelShellPresenter::inspectorToggleTitle(m_app.shellUI())));
    m_inspectorToggle->setToolTip(kit::qtText(MibrelShellPresenter::inspectorToggleHelp(m_app.shellUI())));
}

} // namespace mibrel
