#include "MibrelMac/State/Tools/Coding/MibrelCodingInspectorPresenter.h"

#include <algorithm>

#include "MibrelMac/State/MibrelShellUIState.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "MibrelMac/State/Tools/Coding/MibrelCodingPresenter.h"
#include "Platform/Text/Text.h"

namespace mibrel {

MibrelCodingInspectorPresenter::MibrelCodingInspectorPresenter(MibrelSourcesState& sources,
                                                               MibrelWorkspaceState& workspace,
                                                               MibrelShellUIState& shellUI, QObject* parent)
    : QObject(parent), m_sources(sources), m_workspace(workspace), m_shellUI(shellUI) {
    connect(&m_shellUI, &MibrelShellUIState::selectionChanged, this, [this] {
        const auto selection = selectedReference();
        if (selection != m_shownSelection) {
            m_shownSelection = selection;
            resetFields();
        }
        emit changed();
    });
    connect(&m_workspace, &MibrelWorkspaceState::workspaceChanged, this, &MibrelCodingInspectorPresenter::changed);
    connect(&m_sources, &MibrelSourcesState::sourcesChanged, this, &MibrelCodingInspectorPresenter::changed);
    m_shownSelection = selectedReference();
}

std::optional<TeskResponseRef> MibrelCodingInspectorPresenter::selectedReference() const {
    const auto& selection = m_shellUI.codingSelection;
    if (!selection) return std::nullopt;
    return TeskResponseRef{selection->sourceID, selection->segmentID};
}

const TranscriptSegment* MibrelCodingInspectorPresenter::segment() const {
    const auto reference = selectedReference();
    if (!reference) return nullptr;
    const auto found = m_sources.transcripts().find(reference->sourceID);
    if (found == m_sources.transcripts().end()) return nullptr;
    const auto& segments = found->second.segments;
    const auto match = std::find_if(segments.begin(), segments.end(),
                                    [&](const TranscriptSegment& s) { return s.id == reference->segmentID; });
    return match == segments.end() ? nullptr : &*match;
}

std::vector<TeskCodeApplication> MibrelCodingInspectorPresenter::appliedCodes() const {
    if (segment() == nullptr) return {};
    return m_workspace.applications(*selectedReference());
}

void MibrelCodingInspectorPresenter::takeSelection(const std::string& selected, const std::string& before) {
    const std::string trimmed = platform::text::trimmed(selected);
    if (trimmed.empty()) return;
    // Blanks trimmed off the front move the start.
    const std::size_t lead = selected.find(trimmed);
    const auto start = static_cast<std::int64_t>(platform::text::characterCount(before) +
                                                 platform::text::characterCount(selected.substr(0, lead)));
    excerpt = trimmed;
    m_selectedExcerpt = std::pair{trimmed, start};
    emit changed();
}

void MibrelCodingInspectorPresenter::resetFields() {
    m_selectedExcerpt.reset();
    selectedCodeID.reset();
    excerpt.clear();
    memo.clear();
    newCodeName.clear();
}

std::optional<std::pair<std::int64_t, std::int64_t>> MibrelCodingInspectorPresenter::characterRange(
    const std::string& text, const std::string& excerpt) {
    if (excerpt.empty() || excerpt == text) return std::nullopt;
    const std::size_t at = text.find(excerpt);
    if (at == std::string::npos) return std::nullopt;
    const auto start = static_cast<std::int64_t>(platform::text::characterCount(std::string_view(text).substr(0, at)));
    return std::pair{start, start + static_cast<std::int64_t>(platform::text::characterCount(excerpt))};
}

void MibrelCodingInspectorPresenter::apply() {
    const TranscriptSegment* current = segment();
    if (current == nullptr) return;
    std::optional<Uuid> codeID = selectedCodeID;
    if (const std::string name = platform::text::trimmed(newCodeName); !name.empty()) {
        m_workspace.addCode(name, "");
        const auto& codes = m_workspace.workspace().codes;
        const auto made = std::find_if(codes.begin(), codes.end(), [&](const TeskCode& c) { return c.name == name; });
        codeID = made == codes.end() ? std::nullopt : std::optional(made->id);
    }
    if (!codeID || m_workspace.code(*codeID) == nullptr) return;
    TeskResponseRef reference = *selectedReference();
    const std::string trimmed = platform::text::trimmed(excerpt);
    std::optional<std::string> stored;
    if (!trimmed.empty()) {
        stored = trimmed;
        if (m_selectedExcerpt && m_selectedExcerpt->first == trimmed && trimmed != current->text) {
            reference.charStart = m_selectedExcerpt->second;
            reference.charEnd = m_selectedExcerpt->second +
                                static_cast<std::int64_t>(platform::text::characterCount(trimmed));
        } else if (const auto range = characterRange(current->text, trimmed)) {
            reference.charStart = range->first;
            reference.charEnd = range->second;
        }
    }
    m_workspace.addApplication(reference, *codeID, stored, memo);
    m_shellUI.codingSelection = MibrelCodingSelection{reference.sourceID, reference.segmentID};
    emit m_shellUI.selectionChanged();
    resetFields();
    emit changed();
}

void MibrelCodingInspectorPresenter::pinQuote() {
    const TranscriptSegment* current = segment();
    if (current == nullptr) return;
    const TeskResponseRef reference = *selectedReference();
    const std::vector<Uuid> codeIDs = MibrelCodingPresenter::uniqueCodeIDs(m_workspace.applications(reference));
    const std::vector<Uuid> themeIDs = m_workspace.themeIDs(codeIDs);
    const std::string trimmed = platform::text::trimmed(excerpt);
    const auto quoteID =
        m_workspace.addQuote(reference, trimmed.empty() ? current->text : trimmed, codeIDs, themeIDs, "",
                             MibrelCodingPresenter::quoteRationale(m_workspace, codeIDs, themeIDs), std::nullopt);
    if (quoteID) {
        m_shellUI.selectedQuoteID = quoteID;
        emit m_shellUI.selectionChanged();
    }
}

} // namespace mibrel
