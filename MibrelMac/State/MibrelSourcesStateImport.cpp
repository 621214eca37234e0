#include <exception>

#include "MibrelCore/Import/TeskTranscriptImport.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "Platform/Files/BatchedDurability.h"
#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

// A source as every import starts it; the media fields stay absent for text.
TeskSource newSource(std::string label) {
    TeskSource source;
    source.label = std::move(label);
    return source;
}

// The response's label: the label column's text where there is some, else its row number.
std::string rowLabel(const std::vector<std::string>& row, std::int64_t number, std::optional<std::int64_t> labelColumn) {
    if (labelColumn && *labelColumn >= 0 && static_cast<std::size_t>(*labelColumn) < row.size()) {
        std::string label = platform::text::trimmed(row[static_cast<std::size_t>(*labelColumn)]);
        if (!label.empty()) return label;
    }
    return "Row " + std::to_string(number);
}

} // namespace

void MibrelSourcesState::importTranscriptFile() {
    if (!m_projectURL) return;
    const auto chosen = m_panels.runOpenPanel({"Import Transcript", true, false,
                                               {{"Plain text", {"txt", "text", "md"}},
                                                {"PDF document", {"pdf"}},
                                                {"Word document", {"docx"}}}});
    if (chosen) importTranscript(*chosen);
}

void MibrelSourcesState::importResponsesFile() {
    if (!m_projectURL) return;
    const auto chosen = m_panels.runOpenPanel({"Import Responses", true, false,
                                               {{"Comma-separated text", {"csv"}},
                                                {"Tab-separated text", {"tsv"}},
                                                {"Excel workbook", {"xlsx"}}}});
    if (chosen) openResponsesTable(*chosen);
}

void MibrelSourcesState::importTranscript(const std::filesystem::path& location) {
    if (!m_projectURL) return;
    const TeskSource source = newSource(location.stem().string());
    TeskTranscript transcript;
    try {
        transcript = TeskTranscript::fromPlainText(TeskTranscriptImport::text(location));
    } catch (const std::exception& error) {
        setLastError(error.what());
        return;
    }
    if (!addSource(source, transcript)) return;
    setNotice(source.id, source.label + " is selected and ready to review.");
}

bool MibrelSourcesState::addSource(const TeskSource& source, const TeskTranscript& transcript) {
    try {
        auto sources = m_sources;
        sources.push_back(source);
        TeskSourceStore::saveSource(source, *m_projectURL);
        TeskSourceStore::saveTranscript(transcript, source.id, *m_projectURL);
        TeskSourceStore::saveIndex(sources, *m_projectURL);
        m_sources = std::move(sources);
        m_transcripts[source.id] = transcript;
    } catch (const std::exception& error) {
        setLastError(error.what());
        return false;
    }
    emit sourcesChanged();
    select(source.id);
    return true;
}

void MibrelSourcesState::openResponsesTable(const std::filesystem::path& location) {
    if (!m_projectURL) return;
    try {
        m_pendingResponsesImport = PendingResponsesImport{Uuid::random(), location.filename().string(),
                                                          TeskResponsesImport::table(location)};
    } catch (const std::exception& error) {
        setLastError(error.what());
        return;
    }
    emit pendingResponsesImportChanged();
}

void MibrelSourcesState::cancelResponsesImport() {
    if (!m_pendingResponsesImport) return;
    m_pendingResponsesImport.reset();
    emit pendingResponsesImportChanged();
}

// Rows are numbered as in the file, skipped ones included, so "Row 7" is the file's
// seventh data row. Each source is written as it is made; the index once, at the end.
std::int64_t MibrelSourcesState::importResponses(const TeskResponsesImport::Table& table, std::int64_t textColumn,
                                                 std::optional<std::int64_t> labelColumn) {
    if (!m_projectURL) return 0;
    const std::size_t before = m_sources.size();
    const auto made = [&] { return static_cast<std::int64_t>(m_sources.size() - before); };
    try {
        appendResponseSources(table, textColumn, labelColumn);
        TeskSourceStore::saveIndex(m_sources, *m_projectURL);
    } catch (const std::exception& error) {
        if (made() > 0) emit sourcesChanged();
        setLastError(error.what());
        return made();
    }
    if (made() == 0) return 0;
    emit sourcesChanged();
    select(m_sources.back().id);
    setNotice(m_sources.back().id, std::to_string(made()) + " response source" + (made() == 1 ? "" : "s") +
                                       " imported. The newest source is selected.");
    return made();
}

// Thousands of rows: their files reach the disk with one flush, before the index names them.
void MibrelSourcesState::appendResponseSources(const TeskResponsesImport::Table& table, std::int64_t textColumn,
                                               std::optional<std::int64_t> labelColumn) {
    platform::files::BatchedDurability batch(*m_projectURL);
    std::int64_t number = 0;
    for (const auto& row : table.rows) {
        ++number;
        if (textColumn < 0 || static_cast<std::size_t>(textColumn) >= row.size()) continue;
        const std::string text = platform::text::trimmed(row[static_cast<std::size_t>(textColumn)]);
        if (text.empty()) continue;
        const TeskSource source = newSource(rowLabel(row, number, labelColumn));
        const TeskTranscript transcript = TeskTranscript::fromPlainText(text);
        TeskSourceStore::saveSource(source, *m_projectURL);
        TeskSourceStore::saveTranscript(transcript, source.id, *m_projectURL);
        m_sources.push_back(source);
        m_transcripts[source.id] = transcript;
    }
    batch.flush();
}

void MibrelSourcesState::setNotice(const Uuid& sourceID, std::string detail, std::string title) {
    m_latestImportNotice = MibrelImportNotice{Uuid::random(), sourceID, std::move(title), std::move(detail)};
    emit latestImportNoticeChanged();
}

} // namespace mibrel
