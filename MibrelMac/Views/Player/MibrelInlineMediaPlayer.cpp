#include "MibrelMac/Views/Player/MibrelInlineMediaPlayer.h"

#include <algorithm>
#include <cmath>

#include <QHBoxLayout>
#include <QLabel>
#include <QMediaPlayer>
#include <QSlider>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <QVideoWidget>

#include "MibrelMac/State/Tools/Sources/MibrelTranscriptPresenter.h"
#include "MibrelMac/Views/Kit/MibrelDesign.h"
#include "MibrelMac/Views/Kit/MibrelKitText.h"
#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"

namespace mibrel {
namespace {

// Times read as the transcript's rows read them.
QString clock(double seconds) { return kit::qtText(MibrelTranscriptPresenter::clockText(seconds)); }

int milliseconds(double seconds) { return static_cast<int>(std::lround(std::clamp(seconds, 0.0, 2e6) * 1000)); }

} // namespace

MibrelInlineMediaPlayer::MibrelInlineMediaPlayer(MibrelAudioPlayer& player, bool showsVideo, QWidget* parent)
    : QWidget(parent), m_player(player) {
    setObjectName(QStringLiteral("inlineMediaPlayer"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addLayout(makeControls());
    m_error = new QLabel(this);
    m_error->setObjectName(QStringLiteral("playerError"));
    m_error->setWordWrap(true);
    m_error->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_error->setStyleSheet(QStringLiteral("color: %1;").arg(design::toneColor(design::Tone::error).name()));
    layout->addWidget(m_error);
    connectControls();
    setShowsVideo(showsVideo);
    showPlaying();
    showTime();
    showError();
}

QLayout* MibrelInlineMediaPlayer::makeControls() {
    auto* controls = new QHBoxLayout;
    m_playButton = new QToolButton(this);
    m_playButton->setObjectName(QStringLiteral("playerPlay"));
    m_playButton->setFocusPolicy(Qt::StrongFocus);
    controls->addWidget(m_playButton);
    m_position = new QSlider(Qt::Horizontal, this);
    m_position->setObjectName(QStringLiteral("playerPosition"));
    m_position->setAccessibleName(QStringLiteral("Playback position"));
    m_position->setFocusPolicy(Qt::StrongFocus);
    m_position->setSingleStep(5'000); // the arrow keys move five seconds
    m_position->setPageStep(30'000);
    controls->addWidget(m_position, 1);
    m_time = new QLabel(this);
    m_time->setObjectName(QStringLiteral("playerTime"));
    m_time->setForegroundRole(QPalette::PlaceholderText);
    controls->addWidget(m_time);
    return controls;
}

void MibrelInlineMediaPlayer::connectControls() {
    connect(m_playButton, &QToolButton::clicked, &m_player, &MibrelAudioPlayer::togglePlay);
    // A drag seeks where it is let go; a key or a click on the groove seeks at once.
    connect(m_position, &QSlider::sliderReleased, this, &MibrelInlineMediaPlayer::seekToSlider);
    connect(m_position, &QSlider::valueChanged, this, [this] {
        if (!m_position->isSliderDown()) seekToSlider();
    });
    connect(&m_player, &MibrelAudioPlayer::isPlayingChanged, this, &MibrelInlineMediaPlayer::showPlaying);
    connect(&m_player, &MibrelAudioPlayer::timeChanged, this, &MibrelInlineMediaPlayer::showTime);
    connect(&m_player, &MibrelAudioPlayer::errorChanged, this, &MibrelInlineMediaPlayer::showError);
}

void MibrelInlineMediaPlayer::seekToSlider() { m_player.seek(m_position->value() / 1000.0, m_player.isPlaying()); }

void MibrelInlineMediaPlayer::setShowsVideo(bool showsVideo) {
    m_showsVideo = showsVideo;
    if (showsVideo && m_video == nullptr) {
        m_video = new QVideoWidget(this);
        m_video->setObjectName(QStringLiteral("playerVideo"));
        m_video->setAccessibleName(QStringLiteral("Video"));
        m_video->setMinimumHeight(180);
        m_video->setMaximumHeight(320);
        static_cast<QVBoxLayout*>(layout())->insertWidget(0, m_video);
    }
    if (m_video == nullptr) return;
    m_video->setVisible(showsVideo);
    if (showsVideo) {
        m_player.player()->setVideoOutput(m_video);
    } else if (m_player.player()->videoOutput() == m_video) {
        m_player.player()->setVideoOutput(nullptr);
    }
}

void MibrelInlineMediaPlayer::showPlaying() {
    const bool playing = m_player.isPlaying();
    const QString name = playing ? QStringLiteral("Pause") : QStringLiteral("Play");
    m_playButton->setIcon(style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    m_playButton->setAccessibleName(name);
    m_playButton->setToolTip(name);
}

void MibrelInlineMediaPlayer::showTime() {
    const double duration = m_player.durationSeconds();
    const double now = m_player.currentTimeSeconds();
    // Moving the slider to follow the player is not a seek.
    const QSignalBlocker quiet(m_position);
    m_position->setRange(0, milliseconds(duration));
    if (!m_position->isSliderDown()) m_position->setValue(milliseconds(now));
    m_time->setText(clock(now) + QStringLiteral(" / ") + clock(duration));
    m_time->setAccessibleName(QStringLiteral("Time %1 of %2").arg(clock(now), clock(duration)));
}

void MibrelInlineMediaPlayer::showError() {
    const QString& error = m_player.errorText();
    m_error->setText(error);
    m_error->setAccessibleName(error);
    m_error->setVisible(!error.isEmpty());
    m_playButton->setEnabled(error.isEmpty());
    m_position->setEnabled(error.isEmpty());
}

} // namespace mibrel
