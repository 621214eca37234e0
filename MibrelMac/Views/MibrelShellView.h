#pragma once

#include <memory>
#include <optional>

#include <QWidget>

#include "Platform/Foundation/Uuid.h"

class QListWidgetItem;

namespace mibrel {

class MibrelProjectSession;
class MibrelShellUIState;
class MibrelSourcesState;
class MibrelWorkspaceState;

// The workspace of an open project, in three columns: the sidebar (the eleven tools under
// "Workflow", the project's sources under "Sources"), the current tool's page, and the
// inspector for that tool, shown or hidden by the shell state.
class MibrelShellView : public QWidget {
    Q_OBJECT

public:
    MibrelShellView(MibrelProjectSession& session, MibrelSourcesState& sourcesState,
                    MibrelWorkspaceState& workspaceState, MibrelShellUIState& shellUI, QWidget* parent = nullptr);
    ~MibrelShellView() override;

private:
    void showSourceList();
    void showImportToast();
    std::optional<platform::Uuid> sourceID(const QListWidgetItem* item) const;
    void showRowMenu(const platform::Uuid& sourceID, const QPoint& globalPosition);
    void confirmPendingDelete();

    struct Parts;
    std::unique_ptr<Parts> m_parts; // pointers to the child widgets, which Qt owns
    MibrelProjectSession& m_session;
    MibrelSourcesState& m_sourcesState;
    MibrelWorkspaceState& m_workspaceState;
    MibrelShellUIState& m_shellUI;
};

} // namespace mibrel
