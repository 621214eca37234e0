#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include <QObject>

#include "MibrelCore/Model/TeskWorkspace.h"

namespace mibrel {

// The one owner of the open project's workspace. Editing, undo and saving arrive with
// the editing operations; for now it binds to a project and reads its workspace.
class MibrelWorkspaceState : public QObject {
    Q_OBJECT

public:
    using AuditHook = std::function<void(const std::string& event, const std::string& detail)>;

    explicit MibrelWorkspaceState(QObject* parent = nullptr);

    // Reads the project's workspace; an unreadable file is reported in loadFailureMessage
    // and leaves an empty workspace that is never written over it.
    void bind(const std::optional<std::filesystem::path>& projectURL);

    const std::optional<std::filesystem::path>& projectURL() const { return m_projectURL; }
    const TeskWorkspace& workspace() const { return m_workspace; }
    const std::optional<std::string>& loadFailureMessage() const { return m_loadFailureMessage; }
    std::int64_t undoTick() const { return m_undoTick; }

    const std::optional<std::string>& lastError() const { return m_lastError; }
    void setLastError(std::optional<std::string> message);

    // Set by the application after each bind; called after each edit with its audit event.
    AuditHook onAuditEvent;

signals:
    void workspaceChanged();
    void lastErrorChanged();
    void loadFailureChanged();

private:
    std::optional<std::filesystem::path> m_projectURL;
    TeskWorkspace m_workspace;
    std::optional<std::string> m_loadFailureMessage;
    std::optional<std::string> m_lastError;
    std::int64_t m_undoTick = 0;
};

} // namespace mibrel
