#include "MibrelMac/State/MibrelSourcesState.h"

#include <exception>

#include "MibrelCore/Storage/TeskSourceStore.h"

namespace mibrel {

MibrelSourcesState::MibrelSourcesState(QObject* parent) : QObject(parent) {}

void MibrelSourcesState::bind(const std::optional<std::filesystem::path>& projectURL) {
    m_projectURL = projectURL;
    m_sources.clear();
    m_selectedSourceID.reset();
    if (projectURL) {
        try {
            m_sources = TeskSourceStore::loadIndex(*projectURL);
        } catch (const std::exception& error) {
            setLastError(error.what());
        }
    }
    if (!m_sources.empty()) m_selectedSourceID = m_sources.front().id;
    emit sourcesChanged();
}

void MibrelSourcesState::setLastError(std::optional<std::string> message) {
    if (message == m_lastError) return;
    m_lastError = std::move(message);
    emit lastErrorChanged();
}

} // namespace mibrel
