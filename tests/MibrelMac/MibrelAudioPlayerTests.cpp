#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"

#include <functional>
#include <limits>
#include <memory>
#include <optional>

#include <QFile>
#include <QLabel>
#include <QMediaPlayer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QUrl>
#include <QVideoWidget>
#include <gtest/gtest.h>

#include "MibrelMac/Views/Player/MibrelInlineMediaPlayer.h"
#include "tests/support/EventLoopWait.h"

namespace mibrel {
namespace {

// Long enough for a media pipeline to start on a loaded machine; never a measure of speed.
constexpr int kWaitMs = 20'000;
// How far playback may run between a seek landing and the player's next report of its
// position. Smaller than the gaps between the times the tests seek to, so a lost seek shows.
constexpr qint64 kSlackMs = 600;

QUrl fixture(const char* name) {
    return QUrl::fromLocalFile(QStringLiteral(MIBREL_MEDIA_FIXTURES "/") + QString::fromUtf8(name));
}

bool eventually(const std::function<bool()>& condition) { return testing::processEventsUntil(condition, kWaitMs); }

bool loaded(const MibrelAudioPlayer& player) {
    const auto status = player.player()->mediaStatus();
    return status == QMediaPlayer::LoadedMedia || status == QMediaPlayer::BufferedMedia;
}

// The next position the playing pipeline reports, in milliseconds. Asking for a position
// reports it back at once, so only a later report shows where playback really is.
std::optional<qint64> nextReportedPosition(const MibrelAudioPlayer& player) {
    QSignalSpy reports(player.player(), &QMediaPlayer::positionChanged);
    if (!reports.wait(kWaitMs)) return std::nullopt;
    return reports.first().first().toLongLong();
}

// Playback went on from `ms`, not from anywhere else.
void expectPlayingFrom(const MibrelAudioPlayer& player, qint64 ms) {
    const auto position = nextReportedPosition(player);
    ASSERT_TRUE(position.has_value()) << "no position while playing from " << ms;
    EXPECT_GE(*position, ms);
    EXPECT_LT(*position, ms + kSlackMs);
}

// No audio output is enabled: the recordings play without a sound device.
class MibrelAudioPlayerPlaybackTest : public ::testing::TestWithParam<const char*> {
protected:
    MibrelAudioPlayer player;
};

TEST_P(MibrelAudioPlayerPlaybackTest, PlaysOnceLoadedPausesAndSeeksToTheLaterOfTwoTimes) {
    const QUrl url = fixture(GetParam());
    player.play(url);
    EXPECT_EQ(player.currentURL(), url);
    ASSERT_EQ(player.player()->mediaStatus(), QMediaPlayer::LoadingMedia);
    EXPECT_TRUE(player.pendingPlay());
    EXPECT_FALSE(player.isPlaying());
    ASSERT_TRUE(eventually([&] { return player.isPlaying(); })) << player.errorText().toStdString();
    EXPECT_FALSE(player.pendingPlay());
    EXPECT_TRUE(player.errorText().isEmpty()) << player.errorText().toStdString();
    ASSERT_TRUE(eventually([&] { return player.currentTimeSeconds() > 0.2; }));

    player.togglePlay();
    ASSERT_TRUE(eventually([&] { return !player.isPlaying(); }));
    EXPECT_EQ(player.player()->playbackState(), QMediaPlayer::PausedState);
    player.seek(0.5, false);
    player.seek(1.25, false);
    EXPECT_DOUBLE_EQ(player.currentTimeSeconds(), 1.25);
    player.togglePlay();
    expectPlayingFrom(player, 1250);

    // Seeking back while playing, twice without waiting: the later time wins.
    player.seek(2.0, false);
    player.seek(0.25, false);
    expectPlayingFrom(player, 250);

    // From a pause, on to a time and playing from there.
    player.togglePlay();
    ASSERT_TRUE(eventually([&] { return !player.isPlaying(); }));
    player.seek(1.75, true);
    ASSERT_TRUE(eventually([&] { return player.isPlaying(); }));
    expectPlayingFrom(player, 1750);
}

INSTANTIATE_TEST_SUITE_P(Recordings, MibrelAudioPlayerPlaybackTest,
                         ::testing::Values("speech.m4a", "speech.mp3", "video-with-sound.mp4"));

// Seeks asked for while the file loads are kept (the pipeline would drop them), and the
// later one lands; a note stamped meanwhile gets the time asked for.
TEST(MibrelAudioPlayerSeekTest, SeeksBeforeLoadingEndAtTheLater) {
    MibrelAudioPlayer player;
    player.load(fixture("speech.m4a"));
    ASSERT_FALSE(loaded(player));
    player.seek(0.8, false);
    player.seek(1.5, false);
    EXPECT_DOUBLE_EQ(player.currentTimeSeconds(), 1.5);
    ASSERT_TRUE(eventually([&] { return loaded(player); }));
    EXPECT_FALSE(player.isPlaying());
    EXPECT_FALSE(player.pendingPlay());
    player.togglePlay();
    expectPlayingFrom(player, 1500);
}

// Times land on the 1/600 s grid; a time that is no time goes to the start, one past the
// end to the end.
TEST(MibrelAudioPlayerSeekTest, TimesAreOnTheGridAndKeptInsideTheRecording) {
    MibrelAudioPlayer player;
    player.load(fixture("speech.m4a"));
    ASSERT_TRUE(eventually([&] { return loaded(player) && player.player()->duration() > 0; }));
    player.seek(1.0012, false); // 600.72 ticks: 601, or 1001.67 ms
    EXPECT_EQ(player.player()->position(), 1002);
    player.seek(std::numeric_limits<double>::quiet_NaN(), false);
    EXPECT_EQ(player.player()->position(), 0);
    player.seek(1.0, false);
    player.seek(-3.0, false);
    EXPECT_EQ(player.player()->position(), 0);
    player.seek(1e12, false);
    EXPECT_EQ(player.player()->position(), player.player()->duration());
}

// Play at the end of a recording starts it over.
TEST(MibrelAudioPlayerSeekTest, PlayingAgainAtTheEndStartsOver) {
    MibrelAudioPlayer player;
    player.load(fixture("speech.mp3"));
    ASSERT_TRUE(eventually([&] { return loaded(player) && player.player()->duration() > 0; }));
    player.seek(player.durationSeconds() - 0.2, true);
    ASSERT_TRUE(eventually([&] { return player.player()->mediaStatus() == QMediaPlayer::EndOfMedia; }));
    ASSERT_TRUE(eventually([&] { return !player.isPlaying(); }));
    player.togglePlay();
    ASSERT_TRUE(eventually([&] { return player.isPlaying(); }));
    expectPlayingFrom(player, 0);
}

// A missing file, or one that is not a recording, gives the player's error and nothing
// else; the next good file clears it and plays.
TEST(MibrelAudioPlayerErrorTest, AFileThatCannotBePlayedReportsWhy) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    for (const char* name : {"notes.m4a", "notes.txt"}) {
        QFile file(folder.filePath(QString::fromUtf8(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("These are not sounds.\n");
    }
    for (const char* name : {"missing.m4a", "notes.m4a", "notes.txt"}) {
        SCOPED_TRACE(name);
        MibrelAudioPlayer player;
        player.play(QUrl::fromLocalFile(folder.filePath(QString::fromUtf8(name))));
        ASSERT_TRUE(eventually([&] { return !player.errorText().isEmpty(); }));
        EXPECT_FALSE(player.isPlaying());
        EXPECT_FALSE(player.pendingPlay());
        player.togglePlay(); // harmless
        player.seek(1.0, true);
        EXPECT_FALSE(player.isPlaying());
        EXPECT_FALSE(player.pendingPlay());

        player.play(fixture("speech.m4a"));
        EXPECT_TRUE(player.errorText().isEmpty());
        ASSERT_TRUE(eventually([&] { return player.isPlaying(); })) << player.errorText().toStdString();
    }
}

template <class Widget>
Widget* child(const QWidget& parent, const char* name) {
    return parent.findChild<Widget*>(QString::fromUtf8(name));
}

// The surface is driven from the keyboard and says what the player is doing.
TEST(MibrelInlineMediaPlayerTest, ControlsFollowThePlayerAndWorkFromTheKeyboard) {
    MibrelAudioPlayer player;
    auto surface = std::make_unique<MibrelInlineMediaPlayer>(player, true);
    surface->show();
    auto* video = surface->findChild<QVideoWidget*>();
    auto* button = child<QToolButton>(*surface, "playerPlay");
    auto* position = child<QSlider>(*surface, "playerPosition");
    auto* time = child<QLabel>(*surface, "playerTime");
    auto* error = child<QLabel>(*surface, "playerError");
    ASSERT_TRUE(video && button && position && time && error);
    EXPECT_EQ(player.player()->videoOutput(), video);
    EXPECT_EQ(button->accessibleName(), QStringLiteral("Play"));
    EXPECT_EQ(position->accessibleName(), QStringLiteral("Playback position"));
    button->setFocus(Qt::TabFocusReason);
    QTest::keyClick(button, Qt::Key_Tab);
    EXPECT_EQ(surface->focusWidget(), position);

    player.load(fixture("video-with-sound.mp4"));
    ASSERT_TRUE(eventually([&] { return loaded(player) && player.player()->duration() > 0; }));
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^0:00 / 0:0[1-9]$")).match(time->text()).hasMatch())
        << time->text().toStdString();

    QTest::keyClick(button, Qt::Key_Space);
    ASSERT_TRUE(eventually([&] { return player.isPlaying(); }));
    EXPECT_EQ(button->accessibleName(), QStringLiteral("Pause"));
    EXPECT_EQ(button->toolTip(), QStringLiteral("Pause"));
    QTest::keyClick(button, Qt::Key_Space);
    ASSERT_TRUE(eventually([&] { return !player.isPlaying(); }));
    EXPECT_EQ(button->accessibleName(), QStringLiteral("Play"));

    player.seek(1.25, false);
    EXPECT_EQ(position->value(), 1250);
    QTest::keyClick(position, Qt::Key_Home);
    EXPECT_EQ(player.player()->position(), 0);

    surface->setShowsVideo(false);
    EXPECT_EQ(player.player()->videoOutput(), nullptr);

    player.load(fixture("missing.m4a"));
    ASSERT_TRUE(eventually([&] { return !error->isHidden(); }));
    EXPECT_EQ(error->text(), player.errorText());
    EXPECT_EQ(error->accessibleName(), player.errorText());
    EXPECT_FALSE(button->isEnabled());

    // The player outlives its surface and plays on without it.
    surface->setShowsVideo(true);
    surface.reset();
    player.play(fixture("video-with-sound.mp4"));
    ASSERT_TRUE(eventually([&] { return player.isPlaying(); }));
}

} // namespace
} // namespace mibrel
