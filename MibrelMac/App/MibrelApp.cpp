#include "MibrelMac/App/MibrelApp.h"

#include <exception>

#include <QUrlQuery>

#include "MibrelCore/Export/TeskFindingsExporter.h"
#include "MibrelCore/Export/TeskHandoffExporter.h"
#include "MibrelMac/App/MibrelAuditHook.h"
#include "MibrelMac/App/MibrelLaunchArguments.h"
#include "MibrelCore/Import/TeskMediaImport.h"
#include "MibrelMac/State/MibrelDataFiles.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel {
namespace {

const QString kURLScheme = QStringLiteral("merivante-mibrel");

} // namespace

MibrelApp::MibrelApp(MibrelPanels& panels, QSettings& settings, QStringList arguments, QObject* parent)
    : QObject(parent), m_arguments(std::move(arguments)), m_session(panels, settings), m_sourcesState(panels, &settings) {
    connect(&m_session, &MibrelProjectSession::projectURLChanged, this, &MibrelApp::projectDidChange);
    m_session.setHandoffExporter([](const std::filesystem::path& output, const std::filesystem::path& projectURL,
                                    const std::string& title, const std::string& appVersion) {
        TeskHandoffExporter::exportBundle(projectURL, title, appVersion, output);
    });
    m_session.setFindingsPacketExporter([](const std::filesystem::path& output, const std::filesystem::path& projectURL,
                                           const std::string& title, const std::string& appVersion) {
        TeskFindingsExporter::exportPacket(projectURL, title, appVersion, output);
    });
}

void MibrelApp::rootDidAppear() {
    openLaunchProjectIfNeeded();
    m_delegate.setHandler([this](const std::vector<QUrl>& urls) {
        for (const QUrl& url : urls) handleExternalOpen(url);
    });
    for (const QUrl& url : m_delegate.takePending()) handleExternalOpen(url);
}

void MibrelApp::openLaunchProjectIfNeeded() {
    if (m_session.projectURL()) return;
    const auto project = MibrelLaunchArguments::projectToOpen(m_arguments);
    if (!project) return;
    try {
        m_session.open(*project);
    } catch (const std::exception& error) {
        m_session.setLastError(error.what());
    }
}

void MibrelApp::handleExternalOpen(const QUrl& url) {
    if (url.isLocalFile()) {
        m_session.openExternal(url.toLocalFile().toStdString());
        return;
    }
    if (url.scheme() != kURLScheme || !url.hasQuery()) return;
    const QUrlQuery query(url);
    for (const auto& [name, value] : query.queryItems(QUrl::FullyDecoded)) {
        if (name != QStringLiteral("path")) continue;
        if (!value.isEmpty()) m_session.openExternal(std::filesystem::absolute(value.toStdString()));
        return;
    }
}

void MibrelApp::projectDidChange() {
    const auto projectURL = m_session.projectURL();
    m_sourcesState.bind(projectURL);
    m_workspaceState.bind(projectURL);
    m_workspaceState.onAuditEvent = auditTrailHook(m_workspaceState, projectURL);
    if (projectURL) {
        if (auto dataFile = m_session.takePendingDataImport()) dispatchDataImport(*dataFile);
    }
}

void MibrelApp::dispatchDataImport(const std::filesystem::path& dataFile) {
    if (MibrelDataFiles::isSpreadsheet(dataFile)) {
        m_sourcesState.openResponsesTable(dataFile);
    } else if (MibrelDataFiles::isDocument(dataFile)) {
        m_sourcesState.importTranscript(dataFile);
    } else if (const auto kind = TeskMediaImport::mediaKind(platform::files::lowercasedExtension(dataFile))) {
        m_sourcesState.importMedia(dataFile, *kind);
    }
}

} // namespace mibrel
