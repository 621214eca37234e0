#include "MibrelMac/State/Tools/Shell/MibrelSourceListPresenter.h"

#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "Platform/Text/Text.h"

namespace mibrel {

MibrelSourceListPresenter::MibrelSourceListPresenter(MibrelSourcesState& sources, MibrelShellUIState& shellUI,
                                                     QObject* parent)
    : QObject(parent), m_sources(sources), m_shellUI(shellUI) {
    connect(&m_sources, &MibrelSourcesState::sourcesChanged, this, &MibrelSourceListPresenter::refilter);
    connect(&m_sources, &MibrelSourcesState::selectionChanged, this, &MibrelSourceListPresenter::refilter);
    refilter();
}

void MibrelSourceListPresenter::refilter() {
    const TeskSource* current = currentSource();
    const std::string trimmed = platform::text::trimmed(m_filter);
    m_otherSources.clear();
    for (const TeskSource& source : m_sources.sources()) {
        if (&source == current) continue;
        if (trimmed.empty() || platform::text::localizedCaseInsensitiveContains(source.label, trimmed)) {
            m_otherSources.push_back(&source);
        }
    }
    emit changed();
}

void MibrelSourceListPresenter::setFilter(std::string filter) {
    if (filter == m_filter) return;
    m_filter = std::move(filter);
    refilter();
}

const TeskSource* MibrelSourceListPresenter::currentSource() const {
    return m_sources.source(m_sources.selectedSourceID());
}

std::optional<MibrelSourceListPresenter::EmptyText> MibrelSourceListPresenter::emptyText() const {
    if (m_sources.sources().empty()) {
        return EmptyText{"No sources yet", "Import transcripts, audio, documents, or open-ended responses."};
    }
    if (!otherSources().empty()) return std::nullopt;
    const std::string trimmed = platform::text::trimmed(m_filter);
    if (!trimmed.empty()) return EmptyText{"No sources match “" + m_filter + "”", ""};
    if (currentSource() != nullptr) return EmptyText{"No other sources", ""};
    return std::nullopt;
}

bool MibrelSourceListPresenter::sourceMatchesFilter(const TeskSource& source, const std::string& filter) {
    const std::string trimmed = platform::text::trimmed(filter);
    return trimmed.empty() || platform::text::localizedCaseInsensitiveContains(source.label, trimmed);
}

std::string MibrelSourceListPresenter::displayLabel(const TeskSource& source) {
    return platform::text::trimmed(source.label).empty() ? "Untitled source" : source.label;
}

std::string_view MibrelSourceListPresenter::symbol(const TeskSource& source) {
    if (!source.mediaFilename) return "doc.text";
    return source.mediaKind == TeskMediaKind::video ? "video" : "waveform";
}

MibrelSourceListPresenter::RowMenu MibrelSourceListPresenter::rowMenu(const platform::Uuid& sourceID) const {
    const TeskSource* source = m_sources.source(sourceID);
    return {source != nullptr && source->mediaFilename.has_value()};
}

void MibrelSourceListPresenter::reviewTranscript(const platform::Uuid& sourceID) {
    m_sources.select(sourceID);
    m_shellUI.setSelectedTool(MibrelTool::sources);
    m_shellUI.setInspectorVisible(true);
}

void MibrelSourceListPresenter::transcribeAgain(const platform::Uuid& sourceID) {
    if (rowMenu(sourceID).canTranscribeAgain) m_sources.beginTranscription(sourceID, true);
}

void MibrelSourceListPresenter::requestDelete(const platform::Uuid& sourceID) {
    const TeskSource* source = m_sources.source(sourceID);
    if (source == nullptr) return;
    m_sourcePendingDelete = *source;
    emit pendingDeleteChanged();
}

std::string MibrelSourceListPresenter::deleteTitle() const {
    return m_sourcePendingDelete ? "Delete “" + m_sourcePendingDelete->label + "”?" : std::string();
}

void MibrelSourceListPresenter::confirmDelete() {
    if (!m_sourcePendingDelete) return;
    const platform::Uuid id = m_sourcePendingDelete->id;
    m_sourcePendingDelete.reset();
    emit pendingDeleteChanged();
    m_sources.deleteSource(id);
}

void MibrelSourceListPresenter::cancelDelete() {
    if (!m_sourcePendingDelete) return;
    m_sourcePendingDelete.reset();
    emit pendingDeleteChanged();
}

} // namespace mibrel
