#pragma once

#include <memory>

#include <QWidget>

#include "MibrelMac/State/MibrelTool.h"

class QModelIndex;

namespace mibrel {

class MibrelInspectorView;
class MibrelProjectSession;
class MibrelShellDialogs;
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
                    MibrelWorkspaceState& workspaceState, MibrelShellUIState& shellUI, bool playsAudio = false,
                    QWidget* parent = nullptr);
    ~MibrelShellView() override;

    QWidget* toolPage(MibrelTool tool) const;
    MibrelInspectorView& inspector() const;
    MibrelShellDialogs& dialogs() const;

private:
    void buildSidebar();
    void buildColumns();
    void connectSourceList();
    void showSelectedTool();
    void showSourceList();
    void showImportToast();
    void showRowMenu(const QModelIndex& index, const QPoint& globalPosition);

    bool m_playsAudio;
    struct Parts;
    std::unique_ptr<Parts> m_parts; // pointers to the child widgets, which Qt owns
    MibrelProjectSession& m_session;
    MibrelSourcesState& m_sourcesState;
    MibrelWorkspaceState& m_workspaceState;
    MibrelShellUIState& m_shellUI;
};

} // namespace mibrel
