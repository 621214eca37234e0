#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "MibrelCore/Sources/TeskSource.h"

namespace mibrel {

// The open project's sources. Importing, editing and transcription arrive with those
// features; for now it binds to a project and reads its source list.
class MibrelSourcesState : public QObject {
    Q_OBJECT

public:
    explicit MibrelSourcesState(QObject* parent = nullptr);

    void bind(const std::optional<std::filesystem::path>& projectURL);

    const std::optional<std::filesystem::path>& projectURL() const { return m_projectURL; }
    const std::vector<TeskSource>& sources() const { return m_sources; }
    const std::optional<platform::Uuid>& selectedSourceID() const { return m_selectedSourceID; }

    const std::optional<std::string>& lastError() const { return m_lastError; }
    void setLastError(std::optional<std::string> message);

signals:
    void sourcesChanged();
    void lastErrorChanged();

private:
    std::optional<std::filesystem::path> m_projectURL;
    std::vector<TeskSource> m_sources;
    std::optional<platform::Uuid> m_selectedSourceID;
    std::optional<std::string> m_lastError;
};

} // namespace mibrel
