#include "MibrelMac/Views/Shell/MibrelInspectorView.h"

#include "MibrelMac/State/MibrelShellUIState.h"

namespace mibrel {

MibrelInspectorView::MibrelInspectorView(MibrelShellUIState& shellUI, const std::array<QWidget*, toolCount>& panels,
                                         QWidget* parent)
    : QStackedWidget(parent), m_shellUI(shellUI) {
    setObjectName(QStringLiteral("shellInspector"));
    setAccessibleName(QStringLiteral("Inspector"));
    setBackgroundRole(QPalette::Window);
    setAutoFillBackground(true);
    setMinimumWidth(220);
    for (QWidget* panel : panels) addWidget(panel);
    connect(&shellUI, &MibrelShellUIState::selectedToolChanged, this, &MibrelInspectorView::follow);
    connect(&shellUI, &MibrelShellUIState::inspectorVisibilityChanged, this, &MibrelInspectorView::follow);
    follow();
}

void MibrelInspectorView::follow() {
    setCurrentIndex(static_cast<int>(m_shellUI.selectedTool()));
    setVisible(m_shellUI.isInspectorVisible());
}

} // namespace mibrel
