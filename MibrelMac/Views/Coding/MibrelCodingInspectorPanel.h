#pragma once

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QVBoxLayout;

namespace mibrel {

class MibrelCodingInspectorPresenter;
class MibrelKitEmptyState;
class MibrelShellUIState;
class MibrelSourcesState;
class MibrelWorkspaceState;

// Read & Code's inspector: the selected segment coded with a trimmed excerpt, a memo and a
// chosen or new code, or pinned as a quote; and the codes already on it.
class MibrelCodingInspectorPanel : public QWidget {
    Q_OBJECT

public:
    MibrelCodingInspectorPanel(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                               MibrelShellUIState& shellUI, QWidget* parent = nullptr);

    MibrelCodingInspectorPresenter& presenter() const { return *m_presenter; }

private:
    void refresh();
    void showDrafts();
    void takeDrafts();
    void fillCodes();
    void fillApplied();
    void takeSelection();

    MibrelCodingInspectorPresenter* m_presenter;
    MibrelWorkspaceState& m_workspace;
    MibrelKitEmptyState* m_empty = nullptr;
    QWidget* m_content = nullptr;
    QLabel* m_noCodes = nullptr;
    QComboBox* m_code = nullptr;
    QLineEdit* m_newCode = nullptr;
    QPlainTextEdit* m_segmentText = nullptr;
    QPlainTextEdit* m_excerpt = nullptr;
    QPlainTextEdit* m_memo = nullptr;
    QPushButton* m_apply = nullptr;
    QPushButton* m_pin = nullptr;
    QVBoxLayout* m_applied = nullptr;
};

} // namespace mibrel
