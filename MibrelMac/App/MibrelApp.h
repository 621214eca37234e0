#pragma once

#include <filesystem>
#include <optional>

#include <QObject>
#include <QStringList>
#include <QUrl>

#include "MibrelMac/App/MibrelAppDelegate.h"
#include "MibrelMac/State/MibrelProjectSession.h"
#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"

class QSettings;

namespace mibrel {

class MibrelPanels;

// The application: owns the four state objects for the life of the process, binds the
// project's state when the open project changes, and routes open requests from outside.
class MibrelApp : public QObject {
    Q_OBJECT

public:
    MibrelApp(MibrelPanels& panels, QSettings& settings, QStringList arguments, QObject* parent = nullptr);

    MibrelProjectSession& session() { return m_session; }
    MibrelSourcesState& sourcesState() { return m_sourcesState; }
    MibrelWorkspaceState& workspaceState() { return m_workspaceState; }
    MibrelShellUIState& shellUI() { return m_shellUI; }
    MibrelAppDelegate& delegate() { return m_delegate; }

    // The window is up: open the launch project, then take requests, those that waited first.
    void rootDidAppear();

    // A file location, or a "merivante-mibrel:…?path=…" link; anything else is ignored.
    void handleExternalOpen(const QUrl& url);

private:
    void openLaunchProjectIfNeeded();
    void projectDidChange();
    void dispatchDataImport(const std::filesystem::path& dataFile);

    QStringList m_arguments;
    MibrelProjectSession m_session;
    MibrelSourcesState m_sourcesState;
    MibrelWorkspaceState m_workspaceState;
    MibrelShellUIState m_shellUI;
    MibrelAppDelegate m_delegate;
};

} // namespace mibrel
