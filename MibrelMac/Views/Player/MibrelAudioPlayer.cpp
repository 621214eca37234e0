#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"

#include <algorithm>
#include <cmath>

#include <QAudioOutput>
#include <QMediaPlayer>

namespace mibrel {
namespace {

// Seeks land on a 1/600 s grid, which holds the frame boundaries of every common frame
// rate (24, 25, 30, 50, 60), so a time taken from a video lands on its frame.
constexpr double kTimescale = 600.0;

// Seconds on the grid, in the player's milliseconds; a nonsense time is the start.
qint64 positionFor(double seconds, qint64 durationMs) {
    if (!std::isfinite(seconds) || seconds < 0) seconds = 0;
    const double ticks = std::round(std::min(seconds, 1e9) * kTimescale);
    const qint64 position = std::llround(ticks / kTimescale * 1000.0);
    return durationMs > 0 ? std::min(position, durationMs) : position;
}

QString unplayableText() { return QStringLiteral("The file is not a recording this computer can play."); }

} // namespace

MibrelAudioPlayer::MibrelAudioPlayer(QObject* parent)
    : QObject(parent), m_player(new QMediaPlayer(this)), m_audioOutput(new QAudioOutput(this)) {
    // The GStreamer back end stops a file with sound on "Internal data stream error" when
    // the sound has nowhere to go, so an output is always attached. Muted, it needs no
    // sound device: with none, the pipeline's automatic sink falls back on a silent one.
    m_audioOutput->setMuted(true);
    m_player->setAudioOutput(m_audioOutput);
    connectPlayer();
}

void MibrelAudioPlayer::connectPlayer() {
    connect(m_player, &QMediaPlayer::mediaStatusChanged, this, &MibrelAudioPlayer::followStatus);
    connect(m_player, &QMediaPlayer::playbackStateChanged, this, &MibrelAudioPlayer::followPlayback);
    connect(m_player, &QMediaPlayer::seekableChanged, this, &MibrelAudioPlayer::settle);
    connect(m_player, &QMediaPlayer::positionChanged, this, &MibrelAudioPlayer::timeChanged);
    connect(m_player, &QMediaPlayer::durationChanged, this, &MibrelAudioPlayer::timeChanged);
    connect(m_player, &QMediaPlayer::errorOccurred, this, [this](QMediaPlayer::Error error, const QString& text) {
        if (error != QMediaPlayer::NoError) fail(text.isEmpty() ? unplayableText() : text);
    });
}

void MibrelAudioPlayer::setAudioOutputEnabled(bool enabled) { m_audioOutput->setMuted(!enabled); }

bool MibrelAudioPlayer::audioOutputEnabled() const { return !m_audioOutput->isMuted(); }

void MibrelAudioPlayer::load(const QUrl& url) {
    if (url.isEmpty()) return stop();
    if (m_currentURL != url) replaceSource(url);
}

void MibrelAudioPlayer::play(const QUrl& url) {
    load(url);
    if (!m_currentURL || !m_errorText.isEmpty()) return;
    m_pendingPlay = true;
    settle();
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
    if (!m_currentURL || !m_errorText.isEmpty()) return;
    m_pendingSeek = positionFor(seconds, m_player->duration());
    m_pendingPlay = m_pendingPlay || andPlay;
    settle();
    emit timeChanged();
}

double MibrelAudioPlayer::currentTimeSeconds() const {
    return static_cast<double>(m_pendingSeek.value_or(m_player->position())) / 1000.0;
}

double MibrelAudioPlayer::durationSeconds() const {
    return static_cast<double>(std::max<qint64>(0, m_player->duration())) / 1000.0;
}

void MibrelAudioPlayer::stop() {
    if (!m_currentURL) return;
    replaceSource(QUrl());
}

void MibrelAudioPlayer::replaceSource(const QUrl& url) {
    m_pendingPlay = false;
    m_pendingSeek.reset();
    m_sourceLoaded = false;
    setError(QString());
    m_currentURL = url.isEmpty() ? std::nullopt : std::optional(url);
    // A missing file can fail inside setSource, so the new location is set before it.
    m_player->setSource(url);
}

void MibrelAudioPlayer::followStatus() {
    switch (m_player->mediaStatus()) {
    case QMediaPlayer::LoadedMedia:
    case QMediaPlayer::BufferingMedia:
    case QMediaPlayer::BufferedMedia:
        if (!m_sourceLoaded) {
            // The file before this one can still report its failure after this one was set;
            // this one loading shows the failure was not about it.
            m_sourceLoaded = true;
            setError(QString());
        }
        // The player learns that the file can be sought just after it reports it loaded,
        // and drops a seek until then; playing waits for that seek.
        QMetaObject::invokeMethod(this, &MibrelAudioPlayer::settle, Qt::QueuedConnection);
        break;
    case QMediaPlayer::InvalidMedia: fail(unplayableText()); break;
    default: break;
    }
    emit timeChanged();
}

// Carries out a seek and a play asked for before the file could take them: the seek
// first, so that playing starts from there.
void MibrelAudioPlayer::settle() {
    if (!isReady() || !m_errorText.isEmpty()) return;
    if (m_pendingSeek && m_player->isSeekable()) {
        const qint64 target = *m_pendingSeek;
        m_pendingSeek.reset();
        m_player->setPosition(target);
    }
    if (m_pendingPlay) {
        m_pendingPlay = false;
        m_player->play();
    }
}

void MibrelAudioPlayer::followPlayback() {
    const bool playing = m_player->playbackState() == QMediaPlayer::PlayingState;
    if (playing == m_isPlaying) return;
    m_isPlaying = playing;
    emit isPlayingChanged();
}

// The first reason given is the telling one; the pipeline's later ones follow from it.
// Before the file has loaded, the failure may yet prove to be the previous file's, so
// what was asked of this one is kept; with no file, it can only be the previous one's.
void MibrelAudioPlayer::fail(const QString& text) {
    if (!m_currentURL) return;
    if (m_sourceLoaded) {
        m_pendingPlay = false;
        m_pendingSeek.reset();
    }
    if (m_errorText.isEmpty()) setError(text);
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
