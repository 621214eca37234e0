#include "MibrelMac/Views/Shell/MibrelShellDialogs.h"

#include <QMessageBox>
#include <QPushButton>

#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/MibrelResponsesImportSheetView.h"

namespace mibrel {
namespace {

using Presenter = MibrelShellDialogPresenter;

QMessageBox::ButtonRole buttonRole(Presenter::Role role) {
    switch (role) {
    case Presenter::Role::accept: return QMessageBox::AcceptRole;
    case Presenter::Role::reject: return QMessageBox::RejectRole;
    case Presenter::Role::destructive: return QMessageBox::DestructiveRole;
    }
    return QMessageBox::AcceptRole;
}

QMessageBox::Icon icon(Presenter::Kind kind) {
    return kind == Presenter::Kind::speechConsent ? QMessageBox::Question : QMessageBox::Warning;
}

const char* dialogName(Presenter::Kind kind) {
    switch (kind) {
    case Presenter::Kind::deleteSource: return "shellDeleteSourceDialog";
    case Presenter::Kind::speechConsent: return "shellSpeechConsentDialog";
    case Presenter::Kind::responsesImport: return "shellResponsesImportSheet";
    case Presenter::Kind::sourcesError: return "shellErrorAlert";
    case Presenter::Kind::saveProblem: return "shellSaveProblemAlert";
    case Presenter::Kind::cannotBeSaved: return "shellCannotBeSavedDialog";
    }
    return "";
}

} // namespace

MibrelShellDialogs::MibrelShellDialogs(MibrelShellDialogPresenter& presenter, MibrelSourcesState& sources,
                                       QWidget* window)
    : QObject(window), m_presenter(presenter), m_sources(sources), m_window(window) {
    connect(&presenter, &MibrelShellDialogPresenter::changed, this, &MibrelShellDialogs::scheduleSync);
    scheduleSync();
}

void MibrelShellDialogs::scheduleSync() {
    if (m_syncScheduled) return;
    m_syncScheduled = true;
    QMetaObject::invokeMethod(this, &MibrelShellDialogs::sync, Qt::QueuedConnection);
}

void MibrelShellDialogs::sync() {
    m_syncScheduled = false;
    const auto due = m_presenter.current();
    if (m_open && due && m_openKind == due->kind) return;
    if (m_open) {
        // Answered or no longer due: it goes, and whatever is due next takes its place.
        m_open->disconnect(this);
        m_open->close();
        m_open = nullptr;
    }
    m_openKind.reset();
    if (!due) return;
    m_open = makeDialog(*due);
    m_openKind = due->kind;
    m_open->setObjectName(QString::fromUtf8(dialogName(due->kind)));
    m_open->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_open, &QDialog::finished, this, [this] {
        m_open = nullptr;
        m_openKind.reset();
        scheduleSync();
    });
    m_open->open();
}

QDialog* MibrelShellDialogs::makeDialog(const MibrelShellDialogPresenter::Dialog& dialog) {
    if (dialog.kind == Presenter::Kind::responsesImport) return new MibrelResponsesImportSheetView(m_sources, m_window);
    auto* box = new QMessageBox(icon(dialog.kind), kit::qtText(dialog.title), kit::qtText(dialog.message),
                                QMessageBox::NoButton, m_window);
    for (std::size_t i = 0; i < dialog.buttons.size(); ++i) {
        QPushButton* button = box->addButton(kit::qtText(dialog.buttons[i].title), buttonRole(dialog.buttons[i].role));
        if (dialog.defaultButton == i) box->setDefaultButton(button);
        if (dialog.escapeButton == i) box->setEscapeButton(button);
        connect(button, &QPushButton::clicked, this, [this, kind = dialog.kind, i] { m_presenter.answer(kind, i); });
    }
    if (!dialog.escapeButton) {
        // No way out but the buttons: no close box either.
        box->setWindowFlag(Qt::WindowCloseButtonHint, false);
    }
    return box;
}

} // namespace mibrel
