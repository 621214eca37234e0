#pragma once

#include <optional>
#include <string>

#include <QObject>

#include "MibrelMac/State/MibrelAnalysisLens.h"
#include "MibrelMac/State/MibrelCodingSelection.h"
#include "MibrelMac/State/MibrelTool.h"
#include "Platform/Foundation/Uuid.h"

namespace mibrel {

// The navigation of the workspace window: which tool shows, what is selected in it, and
// whether the inspector is open. Not saved; it outlives a change of project.
//
// Changing the tool clears the tools' selections. A jump to another tool that selects
// something there (jumpTo) changes the tool first and selects after, so the clearing
// can never undo the jump.
class MibrelShellUIState : public QObject {
    Q_OBJECT

public:
    explicit MibrelShellUIState(QObject* parent = nullptr);

    MibrelTool selectedTool() const { return m_selectedTool; }
    // A change of tool clears the selections; choosing the current tool changes nothing.
    void setSelectedTool(MibrelTool tool);

    // Shows `tool`, then runs `select` to set the selection the jump is for.
    template <class Select>
    void jumpTo(MibrelTool tool, Select&& select) {
        setSelectedTool(tool);
        select(*this);
        emit selectionChanged();
    }

    // Clears every tool's selection and the audit filter; the tool, the inspector, the
    // analysis lens, the suggestion token and the armed code stay.
    void clearToolSelection();

    bool isInspectorVisible() const { return m_isInspectorVisible; }
    void setInspectorVisible(bool visible);

    MibrelAnalysisLens selectedAnalysisLens() const { return m_selectedAnalysisLens; }
    void setSelectedAnalysisLens(MibrelAnalysisLens lens);

    // A new value asks the Assist tool for a run.
    const platform::Uuid& assistSuggestToken() const { return m_assistSuggestToken; }
    void requestAssistSuggestions();

    // Plain selections; views call selectionChanged() after setting them directly.
    std::optional<MibrelCodingSelection> codingSelection;
    std::optional<platform::Uuid> selectedThemeID;
    std::optional<platform::Uuid> selectedContextualReviewID;
    std::optional<platform::Uuid> selectedQuoteID;
    std::optional<platform::Uuid> selectedCodeID;
    std::optional<platform::Uuid> selectedCategoryID;
    std::optional<platform::Uuid> activeCodeID; // the code one click applies in Read & Code
    std::string auditEventFilter;

signals:
    void selectedToolChanged();
    void inspectorVisibilityChanged();
    void selectedAnalysisLensChanged();
    void assistSuggestionsRequested();
    void selectionChanged();

private:
    MibrelTool m_selectedTool = MibrelTool::firstRead;
    bool m_isInspectorVisible = true;
    MibrelAnalysisLens m_selectedAnalysisLens = MibrelAnalysisLens::overview;
    platform::Uuid m_assistSuggestToken = platform::Uuid::random();
};

} // namespace mibrel
