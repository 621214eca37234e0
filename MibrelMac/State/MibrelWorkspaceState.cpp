#include "MibrelMac/State/MibrelWorkspaceState.h"

#include <exception>

#include "MibrelCore/Storage/TeskWorkspaceStore.h"

namespace mibrel {

MibrelWorkspaceState::MibrelWorkspaceState(QObject* parent) : QObject(parent) {}

void MibrelWorkspaceState::bind(const std::optional<std::filesystem::path>& projectURL) {
    m_projectURL = projectURL;
    m_loadFailureMessage.reset();
    m_workspace = TeskWorkspace{};
    ++m_undoTick;
    if (projectURL) {
        try {
            if (auto loaded = TeskWorkspaceStore::load(*projectURL)) m_workspace = std::move(*loaded);
        } catch (const std::exception& error) {
            m_loadFailureMessage = error.what();
        }
    }
    emit loadFailureChanged();
    emit workspaceChanged();
}

void MibrelWorkspaceState::setLastError(std::optional<std::string> message) {
    if (message == m_lastError) return;
    m_lastError = std::move(message);
    emit lastErrorChanged();
}

} // namespace mibrel
