#pragma once

#include <vector>

#include <QWidget>

class QFormLayout;
class QGridLayout;
class QLabel;
class QLineEdit;

namespace mibrel {

class MibrelAudioPlayer;
class MibrelKitEmptyState;
class MibrelKitTile;
class MibrelSourceInspectorPresenter;
class MibrelSourcesState;
class MibrelWorkspaceState;

// The inspector beside the Sources tool: the source's name, to edit, its details, counts,
// and what went wrong if its recording cannot be played.
class MibrelSourceInspectorPanel : public QWidget {
    Q_OBJECT

public:
    MibrelSourceInspectorPanel(MibrelSourcesState& sources, MibrelWorkspaceState& workspace,
                               const MibrelAudioPlayer& player, QWidget* parent = nullptr);

private:
    void refresh();
    void showPlaybackError();

    MibrelSourceInspectorPresenter* m_presenter = nullptr;
    const MibrelAudioPlayer& m_player;
    MibrelKitEmptyState* m_empty = nullptr;
    QWidget* m_content = nullptr;
    QLineEdit* m_label = nullptr;
    QFormLayout* m_details = nullptr;
    QGridLayout* m_counts = nullptr;
    std::vector<MibrelKitTile*> m_tiles;
    QLabel* m_playbackError = nullptr;
};

} // namespace mibrel
