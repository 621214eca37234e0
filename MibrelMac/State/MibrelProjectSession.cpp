#include "MibrelMac/State/MibrelProjectSession.h"

#include <exception>

#include <QSettings>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/State/MibrelDataFiles.h"
#include "MibrelMac/State/MibrelPanels.h"
#include "MibrelMac/State/MibrelRecentProjectsStore.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel {

MibrelProjectSession::MibrelProjectSession(MibrelPanels& panels, QSettings& settings, QObject* parent)
    : QObject(parent), m_panels(panels), m_settings(settings) {}

void MibrelProjectSession::setLastError(std::optional<std::string> message) {
    if (message == m_lastError) return;
    m_lastError = std::move(message);
    emit lastErrorChanged();
}

std::optional<std::filesystem::path> MibrelProjectSession::takePendingDataImport() {
    return std::exchange(m_pendingDataImport, std::nullopt);
}

void MibrelProjectSession::setProject(std::optional<std::filesystem::path> url,
                                      std::optional<TeskProjectManifest> manifest) {
    const bool urlChanged = url != m_projectURL;
    m_projectURL = std::move(url);
    m_manifest = std::move(manifest);
    emit manifestChanged();
    // Only a change of location rebinds the project's state; reopening the same project does not.
    if (urlChanged) emit projectURLChanged();
}

void MibrelProjectSession::open(const std::filesystem::path& url) {
    TeskProjectManifest manifest = TeskProjectArchive::loadManifest(url);
    setLastError(std::nullopt);
    MibrelRecentProjectsStore::remember(m_settings, url);
    setProject(url, std::move(manifest));
}

bool MibrelProjectSession::createAndOpen(const std::filesystem::path& chosen) {
    const auto location = TeskProjectArchive::newProjectLocation(chosen);
    try {
        TeskProjectArchive::createEmpty(location.location, location.title, location.mayReplace);
        open(location.location);
        return true;
    } catch (const std::exception& error) {
        setLastError(error.what());
        return false;
    }
}

void MibrelProjectSession::newProject() {
    const auto chosen = m_panels.runSavePanel({"New Mibrel Project", "", "Untitled.mvibrl"});
    if (chosen) createAndOpen(*chosen);
}

void MibrelProjectSession::openProject() {
    const auto chosen = m_panels.runOpenPanel({"Open Mibrel Project", true, true});
    if (!chosen) return;
    openExternal(*chosen);
}

void MibrelProjectSession::openExternal(const std::filesystem::path& url) {
    if (MibrelDataFiles::isDataFile(url)) {
        createProjectFromData(url);
        return;
    }
    try {
        open(url);
    } catch (const std::exception& error) {
        setLastError(MibrelDataFiles::friendlyOpenError(url, error.what()));
    }
}

void MibrelProjectSession::createProjectFromData(const std::filesystem::path& dataFile) {
    const std::string fileName = platform::files::lastPathComponent(dataFile);
    const auto chosen =
        m_panels.runSavePanel({"New Mibrel Project", "Mibrel will create this project and import " + fileName + " into it.",
                               dataFile.stem().string() + ".mvibrl"});
    if (!chosen) return;
    // Set before opening: the change of project picks it up and starts the import.
    m_pendingDataImport = dataFile;
    if (!createAndOpen(*chosen)) m_pendingDataImport.reset();
}

void MibrelProjectSession::save() {
    if (!hasProject()) return;
    try {
        TeskProjectArchive::saveManifest(*m_manifest, *m_projectURL);
    } catch (const std::exception& error) {
        setLastError(error.what());
    }
}

void MibrelProjectSession::close() { setProject(std::nullopt, std::nullopt); }

void MibrelProjectSession::exportHandoff() {
    runExport(m_handoffExporter, "Send to Kessil Bench",
              "Kessil Bench opens this bundle and imports your coded qual strand.", ".mvibrl-handoff");
}

void MibrelProjectSession::exportFindingsPacket() {
    runExport(m_findingsPacketExporter, "Export Presentation Packet",
              "A .zvk packet opens in Orvane Deck on iPad with your themes, quotes, and trustworthiness summary.",
              ".zvk");
}

void MibrelProjectSession::runExport(const Exporter& exporter, const std::string& title, const std::string& message,
                                     const std::string& extension) {
    if (!hasProject() || !exporter) return;
    const auto output = m_panels.runSavePanel({title, message, m_projectURL->stem().string() + extension});
    if (!output) return;
    // No save first: the exporters read the package, and every workspace and source edit
    // is already on disk by the time a menu item can be chosen.
    try {
        exporter(*output, *m_projectURL, m_manifest->title, m_manifest->appVersion);
        m_panels.revealInFileManager(*output);
    } catch (const std::exception& error) {
        setLastError(error.what());
    }
}

} // namespace mibrel
