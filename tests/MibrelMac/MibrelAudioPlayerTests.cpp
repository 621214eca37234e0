#include "MibrelMac/Views/Player/MibrelAudioPlayer.h"

#include <filesystem>

#include <QMediaPlayer>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

// Long enough for a media pipeline to start on a loaded machine; never a measure of speed.
constexpr int kWaitMs = 20'000;

QUrl fixture(const char* name) {
    return QUrl::fromLocalFile(QString::fromStdString((std::filesystem::path(MIBREL_MEDIA_FIXTURES) / name).string()));
}

// Waits, running the event loop, until `condition` holds; Qt Test's own macros would
// report a timeout outside a Qt Test run without failing the test.
template <class Condition>
bool eventually(Condition condition) {
    return QTest::qWaitFor(condition, kWaitMs);
}

bool loaded(const MibrelAudioPlayer& player) {
    const auto status = player.player()->mediaStatus();
    return status == QMediaPlayer::LoadedMedia || status == QMediaPlayer::BufferedMedia;
}

// No audio output is attached: the recordings play without a sound device.
class MibrelAudioPlayerTest : public ::testing::TestWithParam<const char*> {
protected:
    MibrelAudioPlayer player;
};

TEST_P(MibrelAudioPlayerTest, PlaysAFixtureAndTwoSeeksEndAtTheLater) {
    player.play(fixture(GetParam()));
    EXPECT_EQ(player.currentURL(), fixture(GetParam()));
    EXPECT_TRUE(player.pendingPlay() || player.isPlaying()); // asked before the file was ready
    ASSERT_TRUE(eventually([&] { return player.isPlaying(); }));
    EXPECT_FALSE(player.pendingPlay());
    EXPECT_TRUE(player.errorText().isEmpty()) << player.errorText().toStdString();
    ASSERT_TRUE(eventually([&] { return player.currentTimeSeconds() > 0.1; }));

    player.togglePlay();
    ASSERT_TRUE(eventually([&] { return !player.isPlaying(); }));
    player.seek(0.5, false);
    player.seek(1.25, false);
    ASSERT_TRUE(eventually([&] { return player.player()->position() == qint64(1250); })) << player.player()->position();
    EXPECT_DOUBLE_EQ(player.currentTimeSeconds(), 1.25);

    player.seek(0.4, true); // and play from there
    ASSERT_TRUE(eventually([&] { return player.isPlaying(); }));
    EXPECT_GE(player.currentTimeSeconds(), 0.4);
    EXPECT_LT(player.currentTimeSeconds(), 1.25); // went back, not on from the last position
}

INSTANTIATE_TEST_SUITE_P(Recordings, MibrelAudioPlayerTest,
                         ::testing::Values("speech.m4a", "speech.mp3", "video-with-sound.mp4"));

// Seeks asked for before the file has loaded are kept, and the later one lands.
TEST(MibrelAudioPlayerLoadTest, SeeksBeforeLoadingEndAtTheLater) {
    MibrelAudioPlayer player;
    player.load(fixture("speech.m4a"));
    player.seek(0.8, false);
    player.seek(1.5, false);
    EXPECT_DOUBLE_EQ(player.currentTimeSeconds(), 1.5);
    ASSERT_TRUE(eventually([&] { return loaded(player); }));
    ASSERT_TRUE(eventually([&] { return player.player()->position() == qint64(1500); })) << player.player()->position();
    EXPECT_FALSE(player.isPlaying());
}

// A missing file, or one that is not a recording, gives the player's error and nothing else.
TEST(MibrelAudioPlayerLoadTest, AFileThatCannotBePlayedReportsWhy) {
    testing::TemporaryDirectory folder;
    testing::writeText(folder / "notes.m4a", "These are not sounds.");
    for (const auto& location : {folder / "missing.m4a", folder / "notes.m4a"}) {
        MibrelAudioPlayer player;
        player.play(QUrl::fromLocalFile(QString::fromStdString(location.string())));
        ASSERT_TRUE(eventually([&] { return !player.errorText().isEmpty(); }));
        EXPECT_FALSE(player.isPlaying());
        EXPECT_FALSE(player.pendingPlay());
        player.togglePlay(); // harmless
        EXPECT_FALSE(player.isPlaying());
    }
}

} // namespace
} // namespace mibrel
