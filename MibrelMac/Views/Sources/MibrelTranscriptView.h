#pragma once

#include <QWidget>

class QLabel;
class QListView;
class QPushButton;

namespace mibrel {

class MibrelSourcesState;
class MibrelTranscriptModel;
class MibrelTranscriptPresenter;
class MibrelWorkspaceState;

// The Sources tool: the selected source's transcript, a row per segment with its time,
// corrected in place; each row's menu splits it or merges it with the next.
class MibrelTranscriptView : public QWidget {
    Q_OBJECT

public:
    MibrelTranscriptView(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, QWidget* parent = nullptr);

    MibrelTranscriptPresenter& presenter() const { return *m_presenter; }

    // Saves an edited segment, asking first when the edit would delete coded evidence.
    void commitEdit(const QString& segmentID, const QString& text);
    void splitSegment(const QString& segmentID);

private:
    void refresh();
    void showRowMenu(const QPoint& position);

    MibrelTranscriptPresenter* m_presenter = nullptr;
    MibrelTranscriptModel* m_model = nullptr;
    QLabel* m_title = nullptr;
    QLabel* m_empty = nullptr;
    QPushButton* m_review = nullptr;
    QListView* m_list = nullptr;
};

} // namespace mibrel
