#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"

#include <cmath>

#include <QAudioOutput>
#include <QMediaPlayer>

namespace mibrel {
namespace {

constexpr double kTimescale = 600.0;

// Seconds on the 1/600 s grid, in the player's milliseconds.
qint64 positionFor(double seconds) {
    if (!std::isfinite(seconds) || seconds < 0) seconds = 0;
    const double ticks = std::round(seconds * kTimescale);
    return static_cast<qint64>(std::llround(ticks / kTimescale * 1000.0));
}

} // namespace

MibrelAudioPlayer::MibrelAudioPlayer(QObject* parent)
    : QObject(parent), m_player(new QMediaPlayer(this)), m_audioOutput(new QAudioOutput(this)) {
    // The media pipeline stops with "Internal data stream error" on a file with sound and
    // nowhere to send it, so there is always an output; muted, it needs no sound device
    // (the pipeline falls back on a silent sink when the machine has none).
    m_audioOutput->setMuted(true);
    m_player->setAudioOutput(m_audioOutput);
    connect(m_player, &QMediaPlayer::mediaStatusChanged, this, &MibrelAudioPlayer::followStatus);
    connect(m_player, &QMediaPlayer::playbackStateChanged, this, &MibrelAudioPlayer::followPlayback);
    connect(m_player, &QMediaPlayer::positionChanged, this, &MibrelAudioPlayer::timeChanged);
    connect(m_player, &QMediaPlayer::durationChanged, this, &MibrelAudioPlayer::timeChanged);
    // A seek lands only once the file can seek, which comes after it has loaded.
    connect(m_player, &QMediaPlayer::seekableChanged, this, &MibrelAudioPlayer::applyPendingSeek);
    connect(m_player, &QMediaPlayer::errorOccurred, this, [this](QMediaPlayer::Error error, const QString& text) {
        if (error == QMediaPlayer::NoError) return;
        m_pendingPlay = false;
        setError(text.isEmpty() ? QStringLiteral("The file is not a recording this computer can play.") : text);
    });
}

void MibrelAudioPlayer::setAudioOutputEnabled(bool enabled) { m_audioOutput->setMuted(!enabled); }

void MibrelAudioPlayer::load(const QUrl& url) {
    if (m_currentURL != url) replaceSource(url);
}

void MibrelAudioPlayer::play(const QUrl& url) {
    load(url);
    if (!m_errorText.isEmpty()) return;
    if (isReady()) {
        m_player->play();
    } else {
        m_pendingPlay = true;
    }
}

void MibrelAudioPlayer::togglePlay() {
    if (m_isPlaying) {
        m_pendingPlay = false;
        m_player->pause();
    } else if (m_currentURL) {
        play(*m_currentURL);
    }
}

void MibrelAudioPlayer::seek(double seconds, bool andPlay) {
    const qint64 target = positionFor(seconds);
    // The later of two early seeks is the one that lands.
    m_pendingSeek = target;
    applyPendingSeek();
    if (andPlay && m_currentURL) play(*m_currentURL);
}

double MibrelAudioPlayer::currentTimeSeconds() const {
    return static_cast<double>(m_pendingSeek.value_or(m_player->position())) / 1000.0;
}

double MibrelAudioPlayer::durationSeconds() const { return static_cast<double>(m_player->duration()) / 1000.0; }

void MibrelAudioPlayer::stop() {
    if (!m_currentURL) return;
    m_player->stop();
    replaceSource(QUrl());
    m_currentURL.reset();
}

void MibrelAudioPlayer::replaceSource(const QUrl& url) {
    m_pendingPlay = false;
    m_pendingSeek.reset();
    setError(QString());
    m_currentURL = url;
    m_player->setSource(url);
}

void MibrelAudioPlayer::followStatus() {
    switch (m_player->mediaStatus()) {
    case QMediaPlayer::LoadedMedia:
    case QMediaPlayer::BufferedMedia:
        applyPendingSeek();
        if (m_pendingPlay) {
            m_pendingPlay = false;
            m_player->play();
        }
        break;
    case QMediaPlayer::InvalidMedia:
        m_pendingPlay = false;
        if (m_errorText.isEmpty()) setError(QStringLiteral("The file is not a recording this computer can play."));
        break;
    default: break;
    }
    emit timeChanged();
}

void MibrelAudioPlayer::followPlayback() {
    const bool playing = m_player->playbackState() == QMediaPlayer::PlayingState;
    if (playing == m_isPlaying) return;
    m_isPlaying = playing;
    emit isPlayingChanged();
}

void MibrelAudioPlayer::applyPendingSeek() {
    if (!m_pendingSeek || !isReady() || !m_player->isSeekable()) return;
    m_player->setPosition(*m_pendingSeek);
    m_pendingSeek.reset();
}

void MibrelAudioPlayer::setError(const QString& text) {
    if (text == m_errorText) return;
    m_errorText = text;
    emit errorChanged();
}

bool MibrelAudioPlayer::isReady() const {
    switch (m_player->mediaStatus()) {
    case QMediaPlayer::LoadedMedia:
    case QMediaPlayer::BufferingMedia:
    case QMediaPlayer::BufferedMedia:
    case QMediaPlayer::EndOfMedia: return true;
    default: return false;
    }
}

} // namespace mibrel
