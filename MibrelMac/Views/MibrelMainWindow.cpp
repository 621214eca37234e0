#include "MibrelMac/Views/MibrelMainWindow.h"

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include "MibrelMac/App/MibrelApp.h"
#include "MibrelMac/Helper/MibrelResourcePaths.h"
#include "MibrelMac/State/MibrelSampleProject.h"
#include "MibrelMac/Views/MibrelCommands.h"
#include "MibrelMac/Views/MibrelKeyboardShortcutsView.h"
#include "MibrelMac/Views/MibrelQtPanels.h"
#include "MibrelMac/Views/MibrelSettingsView.h"
#include "MibrelMac/Views/Shell/MibrelShellView.h"
#include "MibrelMac/Views/MibrelStartPageView.h"
#include "MibrelMac/Views/Kit/MibrelToolIcons.h"

namespace mibrel {

MibrelMainWindow::MibrelMainWindow(MibrelApp& app, MibrelQtPanels& panels, QSettings& settings, QWidget* parent)
    : QMainWindow(parent), m_app(app) {
    panels.setParentWindow(this);
    resize(1240, 820);
    setMinimumSize(1000, 640);
    m_commands = new MibrelCommands(*this, app);
    connect(m_commands, &MibrelCommands::settingsRequested, this, [this] {
        auto* settingsView = new MibrelSettingsView(this);
        settingsView->setAttribute(Qt::WA_DeleteOnClose);
        settingsView->open();
    });
    connect(m_commands, &MibrelCommands::shortcutsRequested, this, [this] {
        auto* shortcuts = new MibrelKeyboardShortcutsView(this);
        shortcuts->setAttribute(Qt::WA_DeleteOnClose);
        shortcuts->show(); // beside the window, not in its way
    });

    m_root = new QStackedWidget(this);
    m_startPage = new MibrelStartPageView(app.session(), settings, MIBREL_VERSION, [this] { openSampleProject(); }, m_root);
    m_shell = new MibrelShellView(app.session(), app.sourcesState(), app.workspaceState(), app.shellUI(), true, m_root);
    m_root->addWidget(m_startPage);
    m_root->addWidget(m_shell);
    setCentralWidget(m_root);
    buildToolbar();

    auto& session = app.session();
    connect(&session, &MibrelProjectSession::manifestChanged, this, &MibrelMainWindow::showRootContent);
    connect(&session, &MibrelProjectSession::lastErrorChanged, this, [this, &session] {
        alertWhenSet(QStringLiteral("Mibrel"), session.lastError(), [&session] { session.setLastError(std::nullopt); });
    });
    showRootContent();
}

void MibrelMainWindow::showRootContent() {
    const auto& manifest = m_app.session().manifest();
    m_root->setCurrentWidget(manifest ? static_cast<QWidget*>(m_shell) : m_startPage);
    m_toolbar->setVisible(manifest.has_value());
    setWindowTitle(manifest ? QString::fromStdString(manifest->title) + QStringLiteral(" — Mibrel")
                            : QStringLiteral("Mibrel"));
    m_commands->refresh();
}

void MibrelMainWindow::alertWhenSet(const QString& title, const std::optional<std::string>& message,
                                    std::function<void()> clear) {
    if (!message) return;
    const QString text = QString::fromStdString(*message);
    QTimer::singleShot(0, this, [this, title, text, clear = std::move(clear)] {
        auto* alert = new QMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, this);
        alert->setObjectName(QStringLiteral("windowErrorAlert"));
        alert->setAttribute(Qt::WA_DeleteOnClose);
        connect(alert, &QDialog::finished, this, [clear] { clear(); });
        alert->open();
    });
}

void MibrelMainWindow::openSampleProject() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder)) folder = QDir::tempPath();
    MibrelSampleProject::openSample(m_app.session(), MibrelResourcePaths::bundledSampleURL(), folder.toStdString(),
                                    QDir::tempPath().toStdString());
    m_startPage->reloadRecents();
}

void MibrelMainWindow::buildToolbar() {
    m_toolbar = addToolBar(QStringLiteral("Workspace"));
    m_toolbar->setMovable(false);
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto* importButton = new QToolButton(m_toolbar);
    importButton->setText(QStringLiteral("Import source"));
    importButton->setIcon(iconForSymbol("doc.text"));
    importButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    importButton->setPopupMode(QToolButton::InstantPopup);
    auto* importMenu = new QMenu(importButton);
    const QString titles[] = {QStringLiteral("Import Transcript (.txt, .docx, .pdf)…"), QStringLiteral("Import Audio…"),
                              QStringLiteral("Import Video…"), QStringLiteral("Import Responses (.csv, .xlsx)…")};
    for (std::size_t i = 0; i < m_commands->importActions().size(); ++i) {
        QAction* command = m_commands->importActions()[i];
        QAction* item = importMenu->addAction(command->icon(), titles[i]);
        item->setEnabled(command->isEnabled());
        connect(command, &QAction::changed, item, [item, command] { item->setEnabled(command->isEnabled()); });
        connect(item, &QAction::triggered, command, &QAction::trigger);
    }
    importButton->setMenu(importMenu);
    m_toolbar->addWidget(importButton);
    auto* spacer = new QWidget(m_toolbar);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_toolbar->addWidget(spacer);
    m_toolbar->addAction(m_commands->inspectorToggle());
}

} // namespace mibrel
