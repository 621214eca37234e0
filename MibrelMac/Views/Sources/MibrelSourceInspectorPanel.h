#pragma once

#include <QWidget>

class QFormLayout;
class QLabel;
class QLineEdit;

namespace mibrel {

class MibrelSourceInspectorPresenter;
class MibrelSourcesState;
class MibrelWorkspaceState;

// The inspector beside the Sources tool: the source's name, to edit, and its details and counts.
class MibrelSourceInspectorPanel : public QWidget {
    Q_OBJECT

public:
    MibrelSourceInspectorPanel(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, QWidget* parent = nullptr);

private:
    void refresh();

    MibrelSourceInspectorPresenter* m_presenter = nullptr;
    QLabel* m_empty = nullptr;
    QWidget* m_content = nullptr;
    QLineEdit* m_label = nullptr;
    QFormLayout* m_details = nullptr;
    QFormLayout* m_counts = nullptr;
};

} // namespace mibrel
