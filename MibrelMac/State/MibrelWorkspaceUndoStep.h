#pragma once

#include <QString>
#include <QUndoCommand>

#include "MibrelCore/Model/TeskWorkspace.h"

namespace mibrel {

class MibrelWorkspaceState;

// What undo leaves alone of the trustworthiness record, which is typed straight into the
// workspace without undo steps of its own.
enum class UndoTrustworthinessPolicy {
    preserveAll,   // the whole record stays as it is now
    preserveNotes, // the four notes stay; member checks roll back with the rest
};

// One edit, undoable: holds the whole workspace from before it. Undo and redo both swap
// that value with the current one (the copies share storage, so this is cheap), keeping
// the trustworthiness record as the policy says.
class MibrelWorkspaceUndoStep : public QUndoCommand {
public:
    MibrelWorkspaceUndoStep(MibrelWorkspaceState& state, const QString& actionName, TeskWorkspace before,
                            UndoTrustworthinessPolicy policy);

    void undo() override;
    // The first call comes from being pushed, after the edit was already made.
    void redo() override;

    const TeskWorkspace& snapshot() const { return m_snapshot; }

private:
    void swap();

    MibrelWorkspaceState& m_state;
    TeskWorkspace m_snapshot;
    UndoTrustworthinessPolicy m_policy;
    bool m_pushed = false;
};

} // namespace mibrel
