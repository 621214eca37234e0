#pragma once

#include <optional>

#include <QObject>
#include <QString>
#include <QUrl>

class QAudioOutput;
class QMediaPlayer;

namespace mibrel {

// Plays a source's recording: load or play a file, toggle, seek to a time (and play from
// there), and tell the current time for stamping notes. Owned by the view that shows it;
// everything runs on the main thread, where the media player reports too.
class MibrelAudioPlayer : public QObject {
    Q_OBJECT

public:
    explicit MibrelAudioPlayer(QObject* parent = nullptr);

    bool isPlaying() const { return m_isPlaying; }
    // The file loaded, or none.
    const std::optional<QUrl>& currentURL() const { return m_currentURL; }
    QMediaPlayer* player() const { return m_player; }
    // A play asked for before the recording was ready; it starts once the file is loaded.
    bool pendingPlay() const { return m_pendingPlay && m_errorText.isEmpty(); }
    // Why the recording cannot be played; empty while it can.
    const QString& errorText() const { return m_errorText; }

    // Sound reaches the speakers only when enabled. The window enables it; tests leave it
    // off and need no sound device.
    void setAudioOutputEnabled(bool enabled);
    bool audioOutputEnabled() const;

    // An empty location unloads.
    void load(const QUrl& url);
    void play(const QUrl& url);
    void togglePlay();
    // Seeks to `seconds` on a 1/600 s grid, then plays if `andPlay`. The last seek wins.
    void seek(double seconds, bool andPlay);
    double currentTimeSeconds() const;
    double durationSeconds() const;
    // Unloads the recording.
    void stop();

signals:
    void isPlayingChanged();
    void errorChanged();
    // The position or the duration moved.
    void timeChanged();

private:
    void connectPlayer();
    void replaceSource(const QUrl& url);
    void followStatus();
    void followPlayback();
    void settle();
    void fail(const QString& text);
    void setError(const QString& text);
    bool isReady() const;

    QMediaPlayer* m_player;
    QAudioOutput* m_audioOutput;
    std::optional<QUrl> m_currentURL;
    bool m_isPlaying = false;
    bool m_pendingPlay = false;
    std::optional<qint64> m_pendingSeek; // milliseconds, applied once the file is loaded
    bool m_sourceLoaded = false;         // the current file has loaded at least once
    QString m_errorText;
};

} // namespace mibrel
