#include "MibrelMac/State/Tools/Coding/MibrelCodingPresenter.h"

#include <algorithm>

#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "Platform/Text/Text.h"

namespace mibrel {
namespace {

const std::vector<TeskCodeApplication> kNoApplications;

} // namespace

MibrelCodingPresenter::MibrelCodingPresenter(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                                             MibrelShellUIState& shellUI, QObject* parent)
    : QObject(parent), m_sources(sources), m_workspace(workspace), m_shellUI(shellUI) {
    connect(&m_sources, &MibrelSourcesState::sourcesChanged, this, &MibrelCodingPresenter::reindex);
    connect(&m_sources, &MibrelSourcesState::selectionChanged, this, &MibrelCodingPresenter::reindex);
    connect(&m_workspace, &MibrelWorkspaceState::workspaceChanged, this, [this] {
        ensureActiveCode();
        reindex();
    });
    connect(&m_shellUI, &MibrelShellUIState::selectionChanged, this, &MibrelCodingPresenter::selectionChanged);
    reindex();
}

const TeskSource* MibrelCodingPresenter::source() const { return m_sources.source(m_sources.selectedSourceID()); }

const TeskTranscript* MibrelCodingPresenter::transcript() const {
    const TeskSource* current = source();
    if (current == nullptr) return nullptr;
    const auto found = m_sources.transcripts().find(current->id);
    return found == m_sources.transcripts().end() ? nullptr : &found->second;
}

// One pass over the workspace per change, so rows read their evidence without a scan.
void MibrelCodingPresenter::reindex() {
    m_applications.clear();
    m_quotes.clear();
    if (const TeskSource* current = source()) {
        for (const TeskCodeApplication& application : m_workspace.workspace().applications) {
            if (application.response.sourceID == current->id) {
                m_applications[application.response.segmentID].push_back(application);
            }
        }
        for (const TeskQuote& quote : m_workspace.workspace().quotes) {
            if (quote.response.sourceID == current->id) m_quotes[quote.response.segmentID].push_back(quote);
        }
    }
    emit changed();
}

MibrelCodingPresenter::Summary MibrelCodingPresenter::summary() const {
    Summary result;
    if (const TeskTranscript* current = transcript()) result.segments = current->segments.size();
    for (const auto& [segmentID, applications] : m_applications) {
        ++result.coded;
        result.applications += applications.size();
    }
    for (const auto& [segmentID, quotes] : m_quotes) result.quotes += quotes.size();
    return result;
}

std::optional<std::filesystem::path> MibrelCodingPresenter::mediaLocation() const {
    const TeskSource* current = source();
    return current ? m_sources.mediaURL(*current) : std::nullopt;
}

void MibrelCodingPresenter::ensureActiveCode() {
    const auto& active = m_shellUI.activeCodeID;
    if (active && m_workspace.code(*active) != nullptr) return;
    const auto& codes = m_workspace.workspace().codes;
    const std::optional<Uuid> first = codes.isEmpty() ? std::nullopt : std::optional(codes[0].id);
    if (first == active) return;
    m_shellUI.activeCodeID = first;
    emit paletteChanged();
}

const TeskCode* MibrelCodingPresenter::activeCode() const {
    return m_shellUI.activeCodeID ? m_workspace.code(*m_shellUI.activeCodeID) : nullptr;
}

void MibrelCodingPresenter::setActiveCode(const Uuid& codeID) {
    if (m_workspace.code(codeID) == nullptr || m_shellUI.activeCodeID == codeID) return;
    m_shellUI.activeCodeID = codeID;
    emit paletteChanged();
}

void MibrelCodingPresenter::setPaletteFilter(std::string filter) {
    if (filter == m_paletteFilter) return;
    m_paletteFilter = std::move(filter);
    emit paletteChanged();
}

std::vector<const TeskCode*> MibrelCodingPresenter::paletteCodes() const {
    const std::string wanted = platform::text::trimmed(m_paletteFilter);
    std::vector<const TeskCode*> listed;
    for (const TeskCode& code : m_workspace.workspace().codes) {
        if (wanted.empty() || platform::text::localizedCaseInsensitiveContains(code.name, wanted)) {
            listed.push_back(&code);
        }
    }
    return listed;
}

bool MibrelCodingPresenter::activatePaletteCode(std::size_t position) {
    const auto listed = paletteCodes();
    if (position < 1 || position > listed.size()) return false;
    setActiveCode(listed[position - 1]->id);
    return true;
}

std::size_t MibrelCodingPresenter::rowCount() const {
    const TeskTranscript* current = transcript();
    return current == nullptr ? 0 : current->segments.size();
}

const TranscriptSegment& MibrelCodingPresenter::segmentAt(std::size_t row) const {
    return transcript()->segments.at(row);
}

const std::vector<TeskCodeApplication>& MibrelCodingPresenter::applicationsAt(std::size_t row) const {
    const auto found = m_applications.find(segmentAt(row).id);
    return found == m_applications.end() ? kNoApplications : found->second;
}

std::optional<TeskQuote> MibrelCodingPresenter::quoteAt(std::size_t row) const {
    const auto found = m_quotes.find(segmentAt(row).id);
    if (found == m_quotes.end() || found->second.empty()) return std::nullopt;
    return found->second.front();
}

MibrelCodingPresenter::RowActions MibrelCodingPresenter::actionsAt(std::size_t row) const {
    const bool hasActive = activeCode() != nullptr;
    return {hasActive ? "Apply active code" : "Select an active code", hasActive, quoteAt(row).has_value(),
            segmentAt(row).start.has_value() && source()->mediaFilename.has_value()};
}

std::vector<MibrelCodingPresenter::Chip> MibrelCodingPresenter::chipsAt(std::size_t row) const {
    std::vector<Chip> chips;
    for (const TeskCodeApplication& application : applicationsAt(row)) {
        const bool seen = std::any_of(chips.begin(), chips.end(), [&](const Chip& c) { return c.codeID == application.codeID; });
        if (seen) continue;
        if (const TeskCode* code = m_workspace.code(application.codeID)) chips.push_back({code->id, code->name});
    }
    return chips;
}

std::optional<Uuid> MibrelCodingPresenter::applicationOf(std::size_t row, const Uuid& codeID) const {
    for (const TeskCodeApplication& application : applicationsAt(row)) {
        if (application.codeID == codeID) return application.id;
    }
    return std::nullopt;
}

void MibrelCodingPresenter::removeCode(std::size_t row, const Uuid& codeID) {
    if (const auto id = applicationOf(row, codeID)) m_workspace.deleteApplication(*id);
}

std::string MibrelCodingPresenter::joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

TeskResponseRef MibrelCodingPresenter::reference(std::size_t row) const {
    return TeskResponseRef{source()->id, segmentAt(row).id};
}

std::optional<std::size_t> MibrelCodingPresenter::selectedRow() const {
    const auto& selection = m_shellUI.codingSelection;
    const TeskSource* current = source();
    if (!selection || current == nullptr || selection->sourceID != current->id) return std::nullopt;
    const TeskTranscript* segments = transcript();
    if (segments == nullptr) return std::nullopt;
    const auto found = std::find_if(segments->segments.begin(), segments->segments.end(),
                                    [&](const TranscriptSegment& s) { return s.id == selection->segmentID; });
    if (found == segments->segments.end()) return std::nullopt;
    return static_cast<std::size_t>(found - segments->segments.begin());
}

void MibrelCodingPresenter::select(std::size_t row) {
    if (row >= rowCount()) return;
    m_shellUI.codingSelection = MibrelCodingSelection{source()->id, segmentAt(row).id};
    emit m_shellUI.selectionChanged();
}

void MibrelCodingPresenter::moveSelection(int step) {
    const std::size_t count = rowCount();
    if (count == 0) return;
    const auto current = selectedRow();
    if (!current) return select(0);
    const auto moved = static_cast<long long>(*current) + step;
    select(static_cast<std::size_t>(std::clamp<long long>(moved, 0, static_cast<long long>(count) - 1)));
}

void MibrelCodingPresenter::applyActiveCode(std::size_t row) {
    const TeskCode* active = activeCode();
    if (active == nullptr || row >= rowCount()) return;
    const Uuid codeID = active->id;
    const auto& applied = applicationsAt(row);
    const bool already = std::any_of(applied.begin(), applied.end(),
                                     [&](const TeskCodeApplication& a) { return a.codeID == codeID; });
    if (!already) m_workspace.addApplication(reference(row), codeID, std::nullopt, "");
    select(row);
}

void MibrelCodingPresenter::pinQuote(std::size_t row) {
    if (row >= rowCount()) return;
    const std::vector<Uuid> codeIDs = uniqueCodeIDs(applicationsAt(row));
    const std::vector<Uuid> themeIDs = m_workspace.themeIDs(codeIDs);
    const std::string text = segmentAt(row).text;
    const auto quoteID = m_workspace.addQuote(reference(row), text, codeIDs, themeIDs, "",
                                              quoteRationale(m_workspace, codeIDs, themeIDs), std::nullopt);
    if (quoteID) {
        m_shellUI.selectedQuoteID = quoteID;
        emit m_shellUI.selectionChanged();
    }
}

void MibrelCodingPresenter::updatePinnedQuote(std::size_t row) {
    if (row >= rowCount()) return;
    auto quote = quoteAt(row);
    if (!quote) return;
    quote->codeIDs = uniqueCodeIDs(applicationsAt(row));
    quote->themeIDs = m_workspace.themeIDs(quote->codeIDs);
    quote->rationale = quoteRationale(m_workspace, quote->codeIDs, quote->themeIDs);
    m_workspace.updateQuote(*quote);
}

void MibrelCodingPresenter::openQuoteInEvidence(std::size_t row) {
    if (row >= rowCount()) return;
    const auto quote = quoteAt(row);
    if (!quote) return;
    m_shellUI.jumpTo(MibrelTool::evidence, [id = quote->id](MibrelShellUIState& shell) { shell.selectedQuoteID = id; });
}

std::vector<Uuid> MibrelCodingPresenter::uniqueCodeIDs(const std::vector<TeskCodeApplication>& applications) {
    std::vector<Uuid> ids;
    for (const TeskCodeApplication& application : applications) ids.push_back(application.codeID);
    // Byte order is the order of the fixed-width upper-case hex text.
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

std::string MibrelCodingPresenter::quoteRationale(const MibrelWorkspaceState& workspace,
                                                  const std::vector<Uuid>& codeIDs, const std::vector<Uuid>& themeIDs) {
    std::vector<std::string> names;
    for (const Uuid& id : themeIDs) {
        if (const TeskTheme* theme = workspace.theme(id)) names.push_back(theme->name);
    }
    if (names.empty()) {
        for (const Uuid& id : codeIDs) {
            if (const TeskCode* code = workspace.code(id)) names.push_back(code->name);
        }
    }
    return names.empty() ? std::string() : "Pinned during coding as evidence for " + joined(names) + ".";
}

} // namespace mibrel
