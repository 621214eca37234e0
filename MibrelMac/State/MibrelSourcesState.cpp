#include "MibrelMac/State/MibrelSourcesState.h"

#include <algorithm>
#include <exception>

#include <QSettings>

#include "MibrelCore/Storage/TeskSourceStore.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

constexpr std::size_t kLongLabelLength = 49;

TeskTranscriptionStatus notStartedStatus(std::string message) {
    return {TeskTranscriptionStatusKind::notStarted, std::move(message), 0, std::nullopt, std::nullopt, platform::now()};
}

} // namespace

MibrelSourcesState::MibrelSourcesState(MibrelPanels& panels, QSettings* settings, QObject* parent)
    : QObject(parent), m_panels(panels), m_settings(settings) {}

MibrelSourcesState::~MibrelSourcesState() { cancelAllTranscriptions(); }

void MibrelSourcesState::bind(const std::optional<std::filesystem::path>& projectURL) {
    cancelAllTranscriptions();
    m_projectURL = projectURL;
    m_transcriptionProgress.clear();
    m_sources.clear();
    m_transcripts.clear();
    m_transcribing.clear();
    m_latestImportNotice.reset();
    m_pendingSpeechIntro.reset();
    m_selectedSourceID.reset();
    if (projectURL) loadSources(*projectURL);
    if (!m_sources.empty()) m_selectedSourceID = m_sources.front().id;
    if (projectURL) refreshLoadedMediaTranscriptionStatuses(*projectURL);
    emit sourcesChanged();
    emit transcriptionChanged();
    emit latestImportNoticeChanged();
    emit pendingSpeechIntroChanged();
    emit selectionChanged();
}

// A damaged transcript never keeps a project from opening: its source stays listed, empty.
void MibrelSourcesState::loadSources(const std::filesystem::path& projectURL) {
    try {
        m_sources = TeskSourceStore::loadIndex(projectURL);
    } catch (const std::exception& error) {
        setLastError(error.what());
        return;
    }
    for (const TeskSource& source : m_sources) {
        try {
            m_transcripts[source.id] = TeskSourceStore::loadTranscript(source.id, projectURL);
        } catch (const std::exception& error) {
            m_transcripts[source.id] = TeskTranscript{};
            setLastError(error.what());
        }
    }
}

const TeskSource* MibrelSourcesState::source(const std::optional<Uuid>& id) const {
    if (!id) return nullptr;
    const auto found = std::find_if(m_sources.begin(), m_sources.end(), [&](const TeskSource& s) { return s.id == *id; });
    return found == m_sources.end() ? nullptr : &*found;
}

const TeskTranscript& MibrelSourcesState::transcript(const Uuid& sourceID) const {
    static const TeskTranscript empty;
    const auto found = m_transcripts.find(sourceID);
    return found == m_transcripts.end() ? empty : found->second;
}

void MibrelSourcesState::select(const std::optional<Uuid>& sourceID) {
    if (sourceID == m_selectedSourceID) return;
    m_selectedSourceID = sourceID;
    emit selectionChanged();
}

void MibrelSourcesState::setLastError(std::optional<std::string> message) {
    m_lastError = std::move(message);
    emit lastErrorChanged();
}

void MibrelSourcesState::updateSource(const TeskSource& source) {
    if (!m_projectURL) return;
    auto sources = m_sources;
    const auto found = std::find_if(sources.begin(), sources.end(), [&](const TeskSource& s) { return s.id == source.id; });
    if (found == sources.end()) return;
    *found = source;
    try {
        TeskSourceStore::saveSource(source, *m_projectURL);
        TeskSourceStore::saveIndex(sources, *m_projectURL);
    } catch (const std::exception& error) {
        setLastError(error.what());
        return;
    }
    m_sources = std::move(sources);
    emit sourcesChanged();
}

void MibrelSourcesState::updateTranscript(const TeskTranscript& transcript, const Uuid& sourceID) {
    if (!m_projectURL) return;
    try {
        TeskSourceStore::saveTranscript(transcript, sourceID, *m_projectURL);
    } catch (const std::exception& error) {
        setLastError(error.what());
        return;
    }
    m_transcripts[sourceID] = transcript;
    emit sourcesChanged();
}

// Removes only the source and its folder. Applications and quotes that point at it stay
// in the workspace: the codebook keeps its counts, the excerpts are gone.
void MibrelSourcesState::deleteSource(Uuid sourceID) {
    if (!m_projectURL) return;
    auto sources = m_sources;
    std::erase_if(sources, [&](const TeskSource& s) { return s.id == sourceID; });
    try {
        TeskSourceStore::saveIndex(sources, *m_projectURL);
    } catch (const std::exception& error) {
        setLastError(error.what());
        return;
    }
    m_sources = std::move(sources);
    m_transcripts.erase(sourceID);
    emit sourcesChanged();
    if (m_selectedSourceID == sourceID) {
        select(m_sources.empty() ? std::nullopt : std::optional(m_sources.front().id));
    }
    try {
        TeskSourceStore::deleteSource(sourceID, *m_projectURL);
    } catch (const std::exception& error) {
        setLastError(error.what());
    }
}

std::optional<std::filesystem::path> MibrelSourcesState::mediaURL(const TeskSource& source) const {
    if (!m_projectURL || !source.mediaFilename) return std::nullopt;
    auto location = TeskSourceStore::sourceDirectory(*m_projectURL, source.id) / *source.mediaFilename;
    if (!platform::files::itemExists(location)) return std::nullopt;
    return location;
}

bool MibrelSourcesState::speechIntroShown() const {
    return m_settings && m_settings->value(QString::fromLatin1(kSpeechIntroShownKey), false).toBool();
}

void MibrelSourcesState::beginTranscription(const Uuid& sourceID, bool forceRefresh) {
    if (speechIntroShown()) {
        transcribeConfirmed(sourceID, forceRefresh);
        return;
    }
    m_pendingSpeechIntro = sourceID;
    emit pendingSpeechIntroChanged();
    setTranscriptionStatus(notStartedStatus("Waiting for approval to use on-device speech recognition."), sourceID);
}

void MibrelSourcesState::confirmSpeechIntro() {
    if (m_settings) m_settings->setValue(QString::fromLatin1(kSpeechIntroShownKey), true);
    if (!m_pendingSpeechIntro) return;
    const Uuid sourceID = *m_pendingSpeechIntro;
    m_pendingSpeechIntro.reset();
    emit pendingSpeechIntroChanged();
    transcribeConfirmed(sourceID, false);
}

void MibrelSourcesState::cancelSpeechIntro() {
    if (!m_pendingSpeechIntro) return;
    const Uuid sourceID = *m_pendingSpeechIntro;
    m_pendingSpeechIntro.reset();
    emit pendingSpeechIntroChanged();
    setTranscriptionStatus(
        notStartedStatus("Click Transcribe when you are ready. Mibrel uses on-device speech recognition."), sourceID);
}

std::string MibrelSourcesState::subtitle(const TeskSource& source) {
    if (source.mediaFilename && platform::text::characterCount(source.label) >= kLongLabelLength) {
        return "Original import: " + source.label +
               ". Edit the label in the inspector when you are ready to name this source.";
    }
    return "Edit metadata, transcribe, and review per-source stats in the inspector.";
}

} // namespace mibrel
