#include "MibrelMac/State/Tools/Sources/MibrelMediaNotesPresenter.h"

#include <algorithm>

#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"

namespace mibrel {

MibrelMediaNotesPresenter::MibrelMediaNotesPresenter(MibrelSourcesState& sources, QObject* parent)
    : QObject(parent), m_sources(sources) {
    connect(&m_sources, &MibrelSourcesState::sourcesChanged, this, &MibrelMediaNotesPresenter::changed);
    connect(&m_sources, &MibrelSourcesState::selectionChanged, this, &MibrelMediaNotesPresenter::changed);
}

bool MibrelMediaNotesPresenter::isAvailable() const {
    const TeskSource* source = m_sources.source(m_sources.selectedSourceID());
    return source != nullptr && source->mediaFilename.has_value();
}

// The state keeps the notes sorted by time, entry order breaking ties.
std::vector<MibrelMediaNotesPresenter::Row> MibrelMediaNotesPresenter::rows() const {
    std::vector<Row> rows;
    if (!isAvailable()) return rows;
    for (const TeskMediaNote& note : m_sources.source(m_sources.selectedSourceID())->mediaNotes) {
        rows.push_back({note.id, MibrelTranscriptPresenter::clockText(note.timestamp), note.timestamp, note.text});
    }
    return rows;
}

std::optional<std::string> MibrelMediaNotesPresenter::emptyText() const {
    if (!isAvailable()) return "Media notes are for recordings.";
    if (rows().empty()) return "No notes yet. Pause where something matters and add a note at that moment.";
    return std::nullopt;
}

void MibrelMediaNotesPresenter::add(double playerTime, const std::string& text) {
    if (!isAvailable()) return;
    m_sources.addMediaNote(*m_sources.selectedSourceID(), std::max(0.0, playerTime), text);
}

void MibrelMediaNotesPresenter::edit(const Uuid& noteID, const std::string& text) {
    if (isAvailable()) m_sources.updateMediaNote(*m_sources.selectedSourceID(), noteID, text);
}

void MibrelMediaNotesPresenter::remove(const Uuid& noteID) {
    if (isAvailable()) m_sources.deleteMediaNote(*m_sources.selectedSourceID(), noteID);
}

} // namespace mibrel
