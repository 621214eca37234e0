#pragma once

#include <QWidget>

class QLabel;
class QSlider;
class QToolButton;
class QVideoWidget;

namespace mibrel {

class MibrelAudioPlayer;

// The player's surface: the picture for a video, and a row of controls (play or pause,
// the position, the time) for any recording. A file that cannot be played says why.
class MibrelInlineMediaPlayer : public QWidget {
    Q_OBJECT

public:
    MibrelInlineMediaPlayer(MibrelAudioPlayer& player, bool showsVideo, QWidget* parent = nullptr);

    bool showsVideo() const { return m_showsVideo; }
    void setShowsVideo(bool showsVideo);

private:
    QLayout* makeControls();
    void connectControls();
    void seekToSlider();
    void showPlaying();
    void showTime();
    void showError();

    MibrelAudioPlayer& m_player;
    bool m_showsVideo = false;
    QVideoWidget* m_video = nullptr;
    QToolButton* m_playButton = nullptr;
    QSlider* m_position = nullptr;
    QLabel* m_time = nullptr;
    QLabel* m_error = nullptr;
};

} // namespace mibrel
