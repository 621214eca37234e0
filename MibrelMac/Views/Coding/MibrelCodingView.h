#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include <QWidget>

#include "Platform/Foundation/Uuid.h"

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QListView;

namespace mibrel {

class MibrelAudioPlayer;
class MibrelCodingPresenter;
class MibrelCodingSegmentModel;
class MibrelInlineMediaPlayer;
class MibrelKitEmptyState;
class MibrelKitTile;
class MibrelShellUIState;
class MibrelSourcesState;
class MibrelWorkspaceState;

// Read & Code: the selected source's segments with their codes, the active-code palette
// and the figures of the source. Keyboard first: Up/Down or J/K move, 1–9 choose a code,
// Enter applies it, P pins, Space plays or pauses.
class MibrelCodingView : public QWidget {
    Q_OBJECT

public:
    MibrelCodingView(MibrelSourcesState& sources, MibrelWorkspaceState& workspace, MibrelShellUIState& shellUI,
                     MibrelAudioPlayer& player, QWidget* parent = nullptr);

    MibrelCodingPresenter& presenter() const { return *m_presenter; }
    QListView* segmentList() const { return m_list; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makePalette();
    void refresh();
    void refreshPalette();
    void rebuildPalette();
    void followSelection();
    void loadMedia();
    void playRow(int row);
    void showRowMenu(const QPoint& position);
    bool handleKey(int key, Qt::KeyboardModifiers modifiers);

    MibrelCodingPresenter* m_presenter;
    MibrelCodingSegmentModel* m_model;
    MibrelAudioPlayer& m_player;
    QLabel* m_title = nullptr;
    std::array<MibrelKitTile*, 4> m_tiles{};
    QLineEdit* m_paletteFilter = nullptr;
    QHBoxLayout* m_paletteRow = nullptr;
    QLabel* m_paletteEmpty = nullptr;
    std::vector<std::pair<platform::Uuid, std::string>> m_paletteShown; // the codes the buttons stand for
    MibrelInlineMediaPlayer* m_playerView = nullptr;
    MibrelKitEmptyState* m_empty = nullptr;
    QWidget* m_content = nullptr;
    QListView* m_list = nullptr;
};

} // namespace mibrel
