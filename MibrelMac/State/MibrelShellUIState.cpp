#include "MibrelMac/State/MibrelShellUIState.h"

namespace mibrel {

MibrelShellUIState::MibrelShellUIState(QObject* parent) : QObject(parent) {}

void MibrelShellUIState::setSelectedTool(MibrelTool tool) {
    if (tool == m_selectedTool) return;
    m_selectedTool = tool;
    clearToolSelection();
    emit selectedToolChanged();
}

void MibrelShellUIState::clearToolSelection() {
    codingSelection.reset();
    selectedThemeID.reset();
    selectedContextualReviewID.reset();
    selectedQuoteID.reset();
    selectedCodeID.reset();
    selectedCategoryID.reset();
    auditEventFilter.clear();
    emit selectionChanged();
}

void MibrelShellUIState::setInspectorVisible(bool visible) {
    if (visible == m_isInspectorVisible) return;
    m_isInspectorVisible = visible;
    emit inspectorVisibilityChanged();
}

void MibrelShellUIState::setSelectedAnalysisLens(MibrelAnalysisLens lens) {
    if (lens == m_selectedAnalysisLens) return;
    m_selectedAnalysisLens = lens;
    emit selectedAnalysisLensChanged();
}

void MibrelShellUIState::requestAssistSuggestions() {
    m_assistSuggestToken = platform::Uuid::random();
    emit assistSuggestionsRequested();
}

} // namespace mibrel
