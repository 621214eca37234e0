#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "MibrelCore/Analysis/TeskAnalysisCorpus.h"
#include "MibrelMac/App/MibrelAuditHook.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"

namespace mibrel::cli {

// A project's two state objects, bound as the window binds them, the audit trail included,
// so an edit made here is logged as one made in the window. A damaged transcript is
// something the window reports once; here it does not fail every command.
struct BoundProject {
    MibrelScriptedPanels panels;
    MibrelWorkspaceState workspace;
    MibrelSourcesState sources{panels};

    explicit BoundProject(const std::filesystem::path& projectURL) {
        workspace.bind(projectURL);
        workspace.onAuditEvent = auditTrailHook(workspace, projectURL);
        sources.bind(projectURL);
        sources.setLastError(std::nullopt);
    }

    TeskAnalysisCorpus corpus() const { return {sources.sources(), sources.transcripts(), workspace.workspace()}; }

    std::optional<std::string> lastError() const { return workspace.lastError() ? workspace.lastError() : sources.lastError(); }
    void clearLastError() {
        workspace.setLastError(std::nullopt);
        sources.setLastError(std::nullopt);
    }
};

} // namespace mibrel::cli
