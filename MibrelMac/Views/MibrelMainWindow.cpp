#include "MibrelMac/Views/MibrelMainWindow.h"

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include "MibrelMac/App/MibrelApp.h"
#include "MibrelMac/Helper/MibrelResourcePaths.h"
#include "MibrelMac/State/MibrelSampleProject.h"
#include "MibrelMac/Views/MibrelCommands.h"
#include "MibrelMac/Views/MibrelQtPanels.h"
#include "MibrelMac/Views/MibrelResponsesImportSheetView.h"
#include "MibrelMac/Views/MibrelSettingsView.h"
#include "MibrelMac/Views/MibrelShellView.h"
#include "MibrelMac/Views/MibrelStartPageView.h"
#include "MibrelMac/Views/MibrelToolIcons.h"

namespace mibrel {

MibrelMainWindow::MibrelMainWindow(MibrelApp& app, MibrelQtPanels& panels, QSettings& settings, QWidget* parent)
    : QMainWindow(parent), m_app(app) {
    panels.setParentWindow(this);
    resize(1240, 820);
    setMinimumSize(1000, 640);
    m_commands = new MibrelCommands(*this, app);
    connect(m_commands, &MibrelCommands::settingsRequested, this, [this] { MibrelSettingsView(this).exec(); });

    m_root = new QStackedWidget(this);
    m_startPage = new MibrelStartPageView(app.session(), settings, MIBREL_VERSION, [this] { openSampleProject(); }, m_root);
    m_shell = new MibrelShellView(app.session(), app.sourcesState(), app.workspaceState(), app.shellUI(), m_root);
    m_root->addWidget(m_startPage);
    m_root->addWidget(m_shell);
    setCentralWidget(m_root);
    buildToolbar();

    auto& session = app.session();
    connect(&session, &MibrelProjectSession::manifestChanged, this, &MibrelMainWindow::showRootContent);
    connect(&session, &MibrelProjectSession::lastErrorChanged, this, [this, &session] {
        alertWhenSet(QStringLiteral("Mibrel"), session.lastError(), [&session] { session.setLastError(std::nullopt); });
    });
    auto& sources = app.sourcesState();
    connect(&sources, &MibrelSourcesState::lastErrorChanged, this, [this, &sources] {
        alertWhenSet(QStringLiteral("Mibrel"), sources.lastError(), [&sources] { sources.setLastError(std::nullopt); });
    });
    connect(&sources, &MibrelSourcesState::pendingResponsesImportChanged, this, [this, &sources] {
        if (sources.pendingResponsesImport()) QTimer::singleShot(0, this, &MibrelMainWindow::showResponsesImportSheet);
    });
    connect(&sources, &MibrelSourcesState::pendingSpeechIntroChanged, this, [this, &sources] {
        if (sources.pendingSpeechIntro()) QTimer::singleShot(0, this, &MibrelMainWindow::askForSpeechApproval);
    });
    auto& workspace = app.workspaceState();
    connect(&workspace, &MibrelWorkspaceState::lastErrorChanged, this, [this, &workspace] {
        alertWhenSet(QStringLiteral("Save Problem"), workspace.lastError(),
                     [&workspace] { workspace.setLastError(std::nullopt); });
    });
    connect(&workspace, &MibrelWorkspaceState::loadFailureChanged, this, [this] {
        if (m_app.workspaceState().loadFailureMessage()) {
            QTimer::singleShot(0, this, &MibrelMainWindow::askAboutDamagedWorkspace);
        }
    });
    showRootContent();
}

// While the workspace file cannot be read nothing is saved; the researcher must choose a
// way out, so the dialog has no cancel.
void MibrelMainWindow::askAboutDamagedWorkspace() {
    auto& workspace = m_app.workspaceState();
    if (!workspace.loadFailureMessage()) return;
    QMessageBox dialog(QMessageBox::Warning, QStringLiteral("This Project Cannot Be Saved"),
                       QStringLiteral("The workspace file in this project could not be read, so nothing you do here "
                                      "will be saved. Setting the damaged file aside keeps it in the project's qual "
                                      "folder and starts a fresh workspace that saves normally.\n\nDetails: %1")
                           .arg(QString::fromStdString(*workspace.loadFailureMessage())),
                       QMessageBox::NoButton, this);
    QPushButton* setAside = dialog.addButton(QStringLiteral("Set Aside Damaged File and Continue"), QMessageBox::AcceptRole);
    dialog.addButton(QStringLiteral("Close Project"), QMessageBox::DestructiveRole);
    dialog.setEscapeButton(static_cast<QAbstractButton*>(nullptr));
    dialog.exec();
    if (dialog.clickedButton() == setAside) {
        workspace.setAsideDamagedWorkspaceAndContinue();
    } else {
        m_app.session().close();
    }
}

// Queued: the table may arrive while the window is still opening the project it goes into.
void MibrelMainWindow::showResponsesImportSheet() {
    auto& sources = m_app.sourcesState();
    if (!sources.pendingResponsesImport()) return;
    MibrelResponsesImportSheetView sheet(sources, this);
    sheet.exec();
}

// Asked once: the answer "Transcribe" is remembered, "Not Now" asks again next time.
void MibrelMainWindow::askForSpeechApproval() {
    auto& sources = m_app.sourcesState();
    if (!sources.pendingSpeechIntro()) return;
    QMessageBox question(QMessageBox::Question, QStringLiteral("Transcribe on this computer"),
                         QString::fromUtf8(MibrelSourcesState::kSpeechIntroQuestion), QMessageBox::NoButton, this);
    QPushButton* transcribe = question.addButton(QStringLiteral("Transcribe"), QMessageBox::AcceptRole);
    QPushButton* notNow = question.addButton(QStringLiteral("Not Now"), QMessageBox::RejectRole);
    question.setDefaultButton(transcribe);
    question.setEscapeButton(notNow);
    question.exec();
    if (question.clickedButton() == transcribe) {
        sources.confirmSpeechIntro();
    } else {
        sources.cancelSpeechIntro();
    }
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
        QMessageBox alert(QMessageBox::Warning, title, text, QMessageBox::Ok, this);
        alert.exec();
        clear();
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
