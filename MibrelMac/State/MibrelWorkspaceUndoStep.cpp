#include "MibrelMac/State/MibrelWorkspaceUndoStep.h"

#include "MibrelMac/State/MibrelWorkspaceState.h"

namespace mibrel {

MibrelWorkspaceUndoStep::MibrelWorkspaceUndoStep(MibrelWorkspaceState& state, const QString& actionName,
                                                 TeskWorkspace before, UndoTrustworthinessPolicy policy)
    : QUndoCommand(actionName), m_state(state), m_snapshot(std::move(before)), m_policy(policy) {}

void MibrelWorkspaceUndoStep::undo() { swap(); }

void MibrelWorkspaceUndoStep::redo() {
    if (!m_pushed) {
        m_pushed = true;
        return;
    }
    swap();
}

void MibrelWorkspaceUndoStep::swap() { m_snapshot = m_state.restoreSnapshot(std::move(m_snapshot), m_policy); }

} // namespace mibrel
