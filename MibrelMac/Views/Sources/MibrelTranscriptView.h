#pragma once

#include <optional>

#include <QWidget>

class QLabel;
class QListView;
class QProgressBar;
class QPushButton;

namespace mibrel {

class MibrelAudioPlayer;
class MibrelInlineMediaPlayer;
class MibrelKitEmptyState;
class MibrelKitPill;
class MibrelMediaNotesPanel;
class MibrelSourcesState;
class MibrelTranscriptModel;
class MibrelTranscriptPresenter;
class MibrelWorkspaceState;

// The Sources tool: the selected source's transcript, a row per segment with its time,
// corrected in place; each row's menu splits it, merges it with the next or plays the
// recording from there. The header tells how transcription stands and runs it; the
// recording's player and its timed notes stand beside the rows.
class MibrelTranscriptView : public QWidget {
    Q_OBJECT

public:
    MibrelTranscriptView(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, MibrelAudioPlayer& player,
                         QWidget* parent = nullptr);

    MibrelTranscriptPresenter& presenter() const { return *m_presenter; }

    // Saves an edited segment, asking first when the edit would delete coded evidence.
    void commitEdit(const QString& segmentID, const QString& text);
    void splitSegment(const QString& segmentID);
    // Plays the recording from the row's start.
    void playRow(int row);

private:
    QWidget* makeHeader();
    QWidget* makeTranscriptionBar();
    void connectControls();
    void refresh();
    void refreshTranscription();
    void loadMedia();
    void showRowMenu(const QPoint& position);

    MibrelTranscriptPresenter* m_presenter = nullptr;
    MibrelTranscriptModel* m_model = nullptr;
    MibrelAudioPlayer& m_player;
    QLabel* m_title = nullptr;
    MibrelKitPill* m_status = nullptr;
    QPushButton* m_transcribe = nullptr;
    QPushButton* m_review = nullptr;
    QLabel* m_statusDetail = nullptr;
    QWidget* m_running = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_cancel = nullptr;
    MibrelInlineMediaPlayer* m_playerView = nullptr;
    MibrelKitEmptyState* m_empty = nullptr;
    QListView* m_list = nullptr;
    MibrelMediaNotesPanel* m_notes = nullptr;
    std::optional<QString> m_loadedMedia;
};

} // namespace mibrel
