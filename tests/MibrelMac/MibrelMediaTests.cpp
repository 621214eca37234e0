#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelMac/Media/MibrelAudioDecoder.h"
#include "MibrelMac/Media/MibrelAudioExport.h"
#include "MibrelMac/Media/MibrelMediaAsset.h"
#include "MibrelMac/Media/MibrelMediaError.h"
#include "tests/support/TestSupport.h"

namespace mibrel::media {
namespace {

namespace fs = std::filesystem;
using mibrel::testing::TemporaryDirectory;
using mibrel::testing::folderListing;
using mibrel::testing::readText;
using mibrel::testing::writeText;

constexpr int speechRate = 16000;
// How long the spoken sentence in the speech fixtures is, and the long fixture as a whole.
constexpr double speechSeconds = 3.73;
constexpr double longSeconds = 38.04;
constexpr int aacFrame = 1024;
// Close enough for durations: a few milliseconds more or less of encoder padding.
constexpr double durationTolerance = 0.05;

fs::path fixture(const std::string& name) { return fs::path(MIBREL_MEDIA_FIXTURES) / name; }

std::vector<std::int16_t> decodeAll(const fs::path& file, int sampleRate = speechRate) {
    std::vector<std::int16_t> samples;
    decodeMonoPcm16(file, sampleRate, [&](std::span<const std::int16_t> block) {
        samples.insert(samples.end(), block.begin(), block.end());
    });
    return samples;
}

int peakOf(const std::vector<std::int16_t>& samples) {
    int peak = 0;
    for (const std::int16_t sample : samples) {
        peak = std::max(peak, std::abs(static_cast<int>(sample)));
    }
    return peak;
}

// A 16-bit PCM WAV file: `frames` holds the channels' samples interleaved.
void writeWav(const fs::path& file, const std::vector<std::int16_t>& frames, int channels, int sampleRate) {
    std::string bytes;
    const auto put = [&](std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) {
            bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xff));
        }
    };
    const auto dataSize = static_cast<std::uint32_t>(frames.size() * 2);
    bytes += "RIFF";
    put(36 + dataSize, 4);
    bytes += "WAVEfmt ";
    put(16, 4);
    put(1, 2);
    put(static_cast<std::uint32_t>(channels), 2);
    put(static_cast<std::uint32_t>(sampleRate), 4);
    put(static_cast<std::uint32_t>(sampleRate * channels * 2), 4);
    put(static_cast<std::uint32_t>(channels * 2), 2);
    put(16, 2);
    bytes += "data";
    put(dataSize, 4);
    for (const std::int16_t sample : frames) {
        put(static_cast<std::uint16_t>(sample), 2);
    }
    writeText(file, bytes);
}

// The shift, in samples, at which `part` best lines up with `whole` from `offset` on.
long bestShift(const std::vector<std::int16_t>& part, const std::vector<std::int16_t>& whole, long offset,
               long maxShift) {
    long best = 0;
    double bestScore = -1.0;
    for (long shift = -maxShift; shift <= maxShift; ++shift) {
        double score = 0;
        // Every eighth sample is plenty for speech, and keeps the search quick.
        for (std::size_t i = 0; i < part.size(); i += 8) {
            const long j = offset + shift + static_cast<long>(i);
            if (j >= 0 && j < static_cast<long>(whole.size())) {
                score += static_cast<double>(part[i]) * whole[static_cast<std::size_t>(j)];
            }
        }
        if (score > bestScore) {
            bestScore = score;
            best = shift;
        }
    }
    return best;
}

// A copy of the speech M4A whose sound data is overwritten in the middle; its index is intact.
void writeCorruptM4A(const fs::path& file) {
    std::string bytes = readText(fixture("speech.m4a"));
    std::fill(bytes.begin() + 4000, bytes.begin() + 12000, '\xff');
    writeText(file, bytes);
}

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const MibrelMediaLayerError& error) {
        return error.what();
    }
    return "(nothing thrown)";
}

struct FixtureDuration {
    const char* name;
    double seconds;
};

constexpr FixtureDuration fixtureDurations[] = {
    {"speech.wav", 3.73},
    {"speech.m4a", 3.73},
    {"speech.mp3", 3.82},
    {"speech.caf", 3.73},
    {"video-with-sound.mp4", 3.8},
    {"video-silent.mp4", 3.0},
    {"long-with-silence.m4a", 38.04},
};

// Decoding for the speech recogniser.

TEST(MibrelAudioDecoderTest, EveryAudioFormatDecodesToItsLengthOfSpeech) {
    // Encoders pad the sound at both ends; what the containers say of the padding is
    // dropped, so every format gives the sentence alone (the MP3's and the video's stated
    // durations are longer).
    for (const char* name : {"speech.wav", "speech.m4a", "speech.mp3", "speech.caf", "video-with-sound.mp4"}) {
        const auto samples = decodeAll(fixture(name));
        EXPECT_NEAR(static_cast<double>(samples.size()) / speechRate, speechSeconds, 0.01) << name;
        EXPECT_GT(peakOf(samples), 1000) << name;
    }
}

TEST(MibrelAudioDecoderTest, ResamplesToTheRequestedRate) {
    for (const int rate : {8000, 22050, 48000}) {
        const auto samples = decodeAll(fixture("speech.wav"), rate);
        EXPECT_NEAR(static_cast<double>(samples.size()) / rate, speechSeconds, 0.01) << rate;
    }
}

TEST(MibrelAudioDecoderTest, SilenceStaysSilentAndStereoBecomesOneChannel) {
    TemporaryDirectory folder;
    writeWav(folder / "silence.wav", std::vector<std::int16_t>(2 * 44100, 0), 1, 44100);
    const auto silence = decodeAll(folder / "silence.wav");
    EXPECT_NEAR(static_cast<double>(silence.size()), 2.0 * speechRate, 2);
    EXPECT_EQ(peakOf(silence), 0);

    // The same level in both channels: one sample per frame, at that level.
    writeWav(folder / "stereo.wav", std::vector<std::int16_t>(2 * speechRate, 8000), 2, speechRate);
    const auto mono = decodeAll(folder / "stereo.wav");
    ASSERT_EQ(mono.size(), static_cast<std::size_t>(speechRate));
    EXPECT_NEAR(mono[speechRate / 2], 8000, 2);
}

TEST(MibrelAudioDecoderTest, RecordingsWithoutSoundOrNotMediaAreReportedInPlainWords) {
    TemporaryDirectory folder;
    writeText(folder / "notes.mp3", "These are interview notes, not a recording.\n");
    writeText(folder / "empty.wav", "");
    writeCorruptM4A(folder / "corrupt.m4a");

    EXPECT_EQ(messageOf([] { decodeAll(fixture("video-silent.mp4")); }), "The recording has no audio track.");
    EXPECT_EQ(messageOf([&] { decodeAll(folder / "missing.wav"); }), "The recording could not be opened.");
    EXPECT_EQ(messageOf([&] { decodeAll(folder / "empty.wav"); }), "The recording could not be opened.");
    EXPECT_EQ(messageOf([&] { decodeAll(folder.path()); }), "The recording could not be opened.");
    EXPECT_EQ(messageOf([&] { decodeAll(folder / "corrupt.m4a"); }), "The recording could not be decoded.");
    const std::string notMedia = messageOf([&] { decodeAll(folder / "notes.mp3"); });
    EXPECT_TRUE(notMedia == "The recording could not be opened." || notMedia == "The recording could not be decoded.")
        << notMedia;
    for (const int rate : {0, -16000, 100'000'000}) {
        EXPECT_NE(messageOf([&] { decodeAll(fixture("speech.wav"), rate); }), "(nothing thrown)") << rate;
    }
}

// What a recording holds.

TEST(MibrelMediaAssetTest, DurationsOfEveryFixture) {
    for (const auto& [name, seconds] : fixtureDurations) {
        const auto duration = mediaDurationSeconds(fixture(name));
        ASSERT_TRUE(duration) << name;
        EXPECT_NEAR(*duration, seconds, durationTolerance) << name;
        EXPECT_EQ(probeMedia(fixture(name)).durationSeconds, duration) << name;
    }
}

TEST(MibrelMediaAssetTest, NoDurationForWhatIsNotMedia) {
    TemporaryDirectory folder;
    writeText(folder / "notes.mp3", "These are interview notes, not a recording.\n");
    writeText(folder / "empty.m4a", "");
    const std::string whole = readText(fixture("speech.m4a"));
    writeText(folder / "truncated.m4a", whole.substr(0, whole.size() / 2));

    for (const char* name : {"notes.mp3", "empty.m4a", "truncated.m4a", "missing.wav"}) {
        EXPECT_EQ(mediaDurationSeconds(folder / name), std::nullopt) << name;
        EXPECT_THROW(probeMedia(folder / name), MibrelMediaLayerError) << name;
    }
    EXPECT_EQ(mediaDurationSeconds(folder.path()), std::nullopt);
}

TEST(MibrelMediaAssetTest, CountsAudioAndVideoTracks) {
    const auto silent = probeMedia(fixture("video-silent.mp4"));
    EXPECT_EQ(silent.audioTrackCount, 0);
    EXPECT_EQ(silent.videoTrackCount, 1);
    const auto withSound = probeMedia(fixture("video-with-sound.mp4"));
    EXPECT_EQ(withSound.audioTrackCount, 1);
    EXPECT_EQ(withSound.videoTrackCount, 1);
    const auto speech = probeMedia(fixture("speech.mp3"));
    EXPECT_EQ(speech.audioTrackCount, 1);
    EXPECT_EQ(speech.videoTrackCount, 0);
}

// Exports to M4A.

using Status = MibrelAudioExportResult::Status;

MibrelAudioExportResult exportTo(const fs::path& source, const fs::path& destination,
                                 std::optional<double> start = std::nullopt,
                                 std::optional<double> duration = std::nullopt) {
    return exportAudioM4A({.source = source, .destination = destination, .start = start, .duration = duration});
}

// An M4A file holding one audio track and nothing else, of about this length.
void expectM4A(const fs::path& file, double seconds) {
    const std::string bytes = readText(file);
    ASSERT_GE(bytes.size(), 12u) << file;
    EXPECT_EQ(bytes.substr(4, 8), "ftypM4A ") << file;
    const auto info = probeMedia(file);
    EXPECT_EQ(info.audioTrackCount, 1) << file;
    EXPECT_EQ(info.videoTrackCount, 0) << file;
    ASSERT_TRUE(info.durationSeconds) << file;
    EXPECT_NEAR(*info.durationSeconds, seconds, durationTolerance) << file;
}

TEST(MibrelAudioExportTest, EveryAudioFormatAndAVideosSoundBecomeM4A) {
    TemporaryDirectory folder;
    for (const char* name : {"speech.wav", "speech.m4a", "speech.mp3", "speech.caf", "video-with-sound.mp4"}) {
        const auto destination = folder / (std::string(name) + ".m4a");
        ASSERT_EQ(exportTo(fixture(name), destination), MibrelAudioExportResult{Status::completed}) << name;
        expectM4A(destination, speechSeconds);
        EXPECT_GT(peakOf(decodeAll(destination)), 1000) << name;
    }
}

TEST(MibrelAudioExportTest, TracksAreCountedAmongAudioTracksAlone) {
    TemporaryDirectory folder;
    writeText(folder / "notes.mp3", "These are interview notes, not a recording.\n");
    const auto video = fixture("video-with-sound.mp4");
    const auto exportTrack = [&](const fs::path& source, std::optional<int> track) {
        return exportAudioM4A({.source = source, .destination = folder / "out.m4a", .audioTrack = track});
    };
    const MibrelAudioExportResult unavailable{Status::unavailable};

    EXPECT_EQ(exportTrack(video, 1), unavailable);
    EXPECT_EQ(exportTrack(video, -1), unavailable);
    EXPECT_EQ(exportTrack(fixture("video-silent.mp4"), std::nullopt), unavailable);
    EXPECT_EQ(exportTrack(folder / "notes.mp3", std::nullopt), unavailable);
    EXPECT_EQ(exportTrack(folder / "missing.wav", std::nullopt), unavailable);
    EXPECT_EQ(folderListing(folder.path()), "notes.mp3");
    EXPECT_FALSE(fs::exists(folder / "out.m4a"));

    // The video's sound is its second stream, and its first audio track.
    ASSERT_EQ(exportTrack(video, 0), MibrelAudioExportResult{Status::completed});
    expectM4A(folder / "out.m4a", speechSeconds);
}

TEST(MibrelAudioExportTest, BackToBackSlicesCoverTheRecordingWithoutOverlapOrGap) {
    TemporaryDirectory folder;
    const auto source = fixture("long-with-silence.m4a");
    const auto whole = decodeAll(source);
    std::size_t sliced = 0;
    for (const double start : {0.0, 12.0, 24.0, 36.0}) {
        const auto destination = folder / ("slice-" + std::to_string(static_cast<int>(start)) + ".m4a");
        ASSERT_EQ(exportTo(source, destination, start, 12.0), MibrelAudioExportResult{Status::completed}) << start;
        expectM4A(destination, std::min(12.0, longSeconds - start));
        const auto slice = decodeAll(destination);
        sliced += slice.size();
        // Each slice holds the sound from its own start: not a frame early or late.
        const long offset = std::lround(start * speechRate);
        EXPECT_LE(std::abs(bestShift(slice, whole, offset, aacFrame + 100)), 2) << start;
    }
    EXPECT_NEAR(static_cast<double>(sliced), static_cast<double>(whole.size()), 2 * aacFrame);
}

TEST(MibrelAudioExportTest, SlicesComeFromTheirPlaceInTheRecording) {
    TemporaryDirectory folder;
    const auto source = fixture("long-with-silence.m4a");
    // Speech, then silence from 3.7 s to 17.7 s, speech again, silence from about 20 s.
    ASSERT_EQ(exportTo(source, folder / "silence.m4a", 8.0, 2.0), MibrelAudioExportResult{Status::completed});
    ASSERT_EQ(exportTo(source, folder / "speech.m4a", 17.8, 1.5), MibrelAudioExportResult{Status::completed});
    EXPECT_LT(peakOf(decodeAll(folder / "silence.m4a")), 50);
    EXPECT_GT(peakOf(decodeAll(folder / "speech.m4a")), 1000);
    // A slice's first moments are as faithful as the rest: the decoder is run in before its start.
    const auto whole = decodeAll(fixture("speech.m4a"));
    for (const double start : {2.0, 2.5}) {
        ASSERT_EQ(exportTo(fixture("speech.m4a"), folder / "part.m4a", start, 1.0),
                  MibrelAudioExportResult{Status::completed});
        const auto part = decodeAll(folder / "part.m4a");
        ASSERT_GE(part.size(), 512u);
        const auto offset = static_cast<std::size_t>(std::lround(start * speechRate));
        double signal = 0;
        double error = 0;
        for (std::size_t i = 0; i < 512; ++i) {
            const double expected = whole[offset + i];
            signal += expected * expected;
            error += (expected - part[i]) * (expected - part[i]);
        }
        EXPECT_GT(10 * std::log10(signal / error), 15.0) << "signal to error in dB, from " << start;
    }
    // Without a duration the slice runs to the end.
    ASSERT_EQ(exportTo(source, folder / "tail.m4a", 30.0), MibrelAudioExportResult{Status::completed});
    expectM4A(folder / "tail.m4a", longSeconds - 30.0);
}

TEST(MibrelAudioExportTest, DestinationIsReplacedOnlyBySuccess) {
    TemporaryDirectory folder;
    const auto destination = folder / "interview.m4a";
    writeText(destination, "the earlier export");

    const auto beyond = exportTo(fixture("speech.wav"), destination, 5.0);
    EXPECT_EQ(beyond.status, Status::failed);
    EXPECT_EQ(readText(destination), "the earlier export");

    ASSERT_EQ(exportTo(fixture("speech.wav"), destination), MibrelAudioExportResult{Status::completed});
    expectM4A(destination, speechSeconds);
    EXPECT_EQ(folderListing(folder.path()), "interview.m4a");
}

TEST(MibrelAudioExportTest, FailuresSayWhyAndLeaveNoFileBehind) {
    TemporaryDirectory folder;
    const std::string whole = readText(fixture("speech.m4a"));
    writeText(folder / "truncated.m4a", whole.substr(0, whole.size() / 2));
    writeCorruptM4A(folder / "corrupt.m4a");
    fs::create_directory(folder / "taken.m4a");
    const auto speech = fixture("speech.wav");
    const auto out = folder / "out.m4a";

    struct Case {
        const char* what;
        MibrelAudioExportResult result;
    };
    const Case failures[] = {
        {"start beyond the end", exportTo(speech, out, 4.5, 1.0)},
        {"start at the very end", exportTo(speech, out, 3.730625)},
        {"start past the sound in a longer video", exportTo(fixture("video-with-sound.mp4"), out, 3.75)},
        {"negative start", exportTo(speech, out, -1.0, 1.0)},
        {"empty duration", exportTo(speech, out, 1.0, 0.0)},
        {"no number", exportTo(speech, out, std::nan(""))},
        {"missing folder", exportTo(speech, folder / "missing" / "out.m4a")},
        {"a folder in the way", exportTo(speech, folder / "taken.m4a")},
        {"damaged sound data", exportTo(folder / "corrupt.m4a", out)},
    };
    for (const auto& [what, result] : failures) {
        EXPECT_EQ(result.status, Status::failed) << what;
        EXPECT_TRUE(result.error && !result.error->empty()) << what;
    }
    EXPECT_NE(failures[0].result.error.value_or("").find("nothing to export"), std::string::npos);
    EXPECT_EQ(failures[8].result.error.value_or("").rfind("The recording could not be decoded.", 0), 0u);
    // Cut off before its index, the file is no longer media at all.
    EXPECT_EQ(exportTo(folder / "truncated.m4a", out).status, Status::unavailable);
    EXPECT_EQ(folderListing(folder.path()), "corrupt.m4a taken.m4a truncated.m4a");
}

} // namespace
} // namespace mibrel::media
