#include "MibrelMac/App/MibrelAuditHook.h"

#include <exception>
#include <string>

#include "MibrelCore/Audit/TeskAuditTrail.h"

namespace mibrel {

MibrelWorkspaceState::AuditHook auditTrailHook(MibrelWorkspaceState& state,
                                               std::optional<std::filesystem::path> projectURL) {
    return [&state, projectURL = std::move(projectURL)](const std::string& event, const std::string& detail) {
        if (!projectURL) return;
        try {
            TeskAuditTrail::append(event, detail, *projectURL);
        } catch (const std::exception& error) {
            state.setLastError(std::string("The audit trail could not be updated: ") + error.what());
        }
    };
}

} // namespace mibrel
