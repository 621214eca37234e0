#pragma once

#include <optional>

#include <QDialog>
#include <QObject>
#include <QPointer>

#include "MibrelMac/State/Tools/Shell/MibrelShellDialogPresenter.h"

class QWidget;

namespace mibrel {

class MibrelSourcesState;

// Shows the shell's dialogs one at a time, without blocking the window: the one due now,
// then the next once it is answered. A dialog that stops being due elsewhere closes.
class MibrelShellDialogs : public QObject {
    Q_OBJECT

public:
    MibrelShellDialogs(MibrelShellDialogPresenter& presenter, MibrelSourcesState& sources, QWidget* window);

    // The dialog on screen, if any (for tests and the accessibility tree).
    QDialog* openDialog() const { return m_open; }

private:
    // Queued, so a dialog never opens inside the operation that made it due.
    void scheduleSync();
    void sync();
    QDialog* makeDialog(const MibrelShellDialogPresenter::Dialog& dialog);

    MibrelShellDialogPresenter& m_presenter;
    MibrelSourcesState& m_sources;
    QWidget* m_window;
    QPointer<QDialog> m_open;
    std::optional<MibrelShellDialogPresenter::Kind> m_openKind;
    bool m_syncScheduled = false;
};

} // namespace mibrel
