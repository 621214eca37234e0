#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include <QObject>

#include "MibrelCore/Storage/TeskProjectManifest.h"

class QSettings;

namespace mibrel {

class MibrelPanels;

// Which project is open. A project is open when both a location and a manifest are
// held. Failures are published in lastError for the window's alert; only open() throws.
class MibrelProjectSession : public QObject {
    Q_OBJECT

public:
    MibrelProjectSession(MibrelPanels& panels, QSettings& settings, QObject* parent = nullptr);

    const std::optional<std::filesystem::path>& projectURL() const { return m_projectURL; }
    const std::optional<TeskProjectManifest>& manifest() const { return m_manifest; }
    bool hasProject() const { return m_projectURL && m_manifest; }

    const std::optional<std::string>& lastError() const { return m_lastError; }
    void setLastError(std::optional<std::string> message);

    // A data file waiting for the project created for it to be bound.
    const std::optional<std::filesystem::path>& pendingDataImport() const { return m_pendingDataImport; }
    std::optional<std::filesystem::path> takePendingDataImport();

    // Save dialog, then a new empty project, opened.
    void newProject();
    // Open dialog; a data file starts a new project for it, anything else opens.
    void openProject();
    // Reads the manifest and opens the project, remembering it among the recents. A failure
    // throws and changes nothing.
    void open(const std::filesystem::path& url);
    // A location from outside (the file manager, a drop, a link): a data file starts a new
    // project for it; anything else opens, with a friendly message for a data file.
    void openExternal(const std::filesystem::path& url);
    // Save dialog, then a new project with the data file queued for import.
    void createProjectFromData(const std::filesystem::path& dataFile);
    // Writes the manifest back.
    void save();
    void close();

    // Writes an export of the open project to `output`; throws what goes wrong.
    using Exporter = std::function<void(const std::filesystem::path& output, const std::filesystem::path& projectURL,
                                        const std::string& title, const std::string& appVersion)>;
    void setHandoffExporter(Exporter exporter) { m_handoffExporter = std::move(exporter); }
    void setFindingsPacketExporter(Exporter exporter) { m_findingsPacketExporter = std::move(exporter); }
    bool canExport() const { return m_handoffExporter && m_findingsPacketExporter; }

    // Save dialog, then the export, then the result shown in the file manager.
    void exportHandoff();
    void exportFindingsPacket();

signals:
    void projectURLChanged();
    void manifestChanged();
    void lastErrorChanged();

private:
    // Creates the project the dialog chose and opens it; returns false after publishing an error.
    bool createAndOpen(const std::filesystem::path& chosen);
    void setProject(std::optional<std::filesystem::path> url, std::optional<TeskProjectManifest> manifest);
    void runExport(const Exporter& exporter, const std::string& title, const std::string& message,
                   const std::string& extension);

    MibrelPanels& m_panels;
    QSettings& m_settings;
    std::optional<std::filesystem::path> m_projectURL;
    std::optional<TeskProjectManifest> m_manifest;
    std::optional<std::string> m_lastError;
    std::optional<std::filesystem::path> m_pendingDataImport;
    Exporter m_handoffExporter;
    Exporter m_findingsPacketExporter;
};

} // namespace mibrel
