#pragma once

#include <filesystem>
#include <optional>

#include "MibrelMac/State/MibrelWorkspaceState.h"

namespace mibrel {

// The workspace's audit events appended to the project's audit trail. A failure to append
// is reported on the workspace state and leaves the edit standing.
MibrelWorkspaceState::AuditHook auditTrailHook(MibrelWorkspaceState& state,
                                               std::optional<std::filesystem::path> projectURL);

} // namespace mibrel
