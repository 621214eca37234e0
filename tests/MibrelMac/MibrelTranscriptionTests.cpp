#include <filesystem>
#include <string>
#include <vector>

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/Helper/MibrelSidecarError.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelTranscriptionRun.h"
#include "tests/support/EventLoopWait.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryDirectory;
using Kind = TeskTranscriptionStatusKind;

const fs::path kFixtures = MIBREL_MEDIA_FIXTURES;

// Answers by the file it is sent: the second chunk is silent, other chunks and whole
// files have speech. Every request is logged.
const char* const kSpeakingHelper = R"(
while IFS= read -r request; do
  printf '%s\n' "$request" >> "$LOG"
  case "$request" in
    *chunk-1.m4a*) echo '{"ok":false,"error":"No speech was recognized in this recording."}' ;;
    *chunk-*) echo '{"ok":true,"result":{"segments":[{"text":"hello","start":1,"duration":0.5},{"text":"there","start":1.6,"duration":0.4}]}}' ;;
    *) echo '{"ok":true,"result":{"segments":[{"text":"we","start":0.2,"duration":0.3},{"text":"stayed","start":0.6,"duration":0.5}]}}' ;;
  esac
done
)";

const char* const kSilentHelper = R"(
while IFS= read -r request; do
  printf '%s\n' "$request" >> "$LOG"
  echo '{"ok":false,"error":"No speech was recognized in this recording."}'
done
)";

const char* const kDyingHelper = R"(
IFS= read -r request
printf '{"ok":tr'
)";

// Speaks only once the test has created the file "go" beside the log, so that a cancel
// surely comes while the run is under way.
const char* const kWaitingHelper = R"(
while IFS= read -r request; do
  printf '%s\n' "$request" >> "$LOG"
  while [ ! -e "$(dirname "$LOG")/go" ]; do sleep 0.01; done
  echo '{"ok":true,"result":{"segments":[{"text":"other","start":0.2,"duration":0.3}]}}'
done
)";

const char* const kRamblingHelper = R"(
while IFS= read -r request; do echo 'Loading model...'; done
)";

const char* const kMisshapenHelper = R"(
while IFS= read -r request; do echo '["ok",true]'; done
)";

class TranscriptionTest : public ::testing::Test {
protected:
    TranscriptionTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        settings.setValue(QStringLiteral("mibrel.speechIntroShown"), true);
        useHelper(kSpeakingHelper);
        state.bind(project);
    }

    void useHelper(const char* body) {
        const fs::path script = folder / ("helper-" + std::to_string(++helpers));
        testing::writeText(script, std::string("#!/bin/bash\nLOG='") + log().string() + "'\n" + body);
        fs::permissions(script, fs::perms::owner_all);
        helper = std::make_unique<MibrelAppleHelperSidecar>([script] { return script; });
        state.useHelper(*helper);
    }

    fs::path log() const { return folder / "requests.log"; }
    std::size_t requestCount() const {
        if (!fs::exists(log())) return 0;
        const std::string text = testing::readText(log());
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    // Runs the event loop until the copies and runs have reported back.
    void waitForIdle() {
        ASSERT_TRUE(testing::processEventsUntil(
            [this] { return state.mediaImportsInFlight() == 0 && state.transcribing().empty(); }))
            << "background work never reported back";
    }

    // Imports a fixture under another name and waits for its copy and transcription.
    Uuid importFixture(const std::string& fixture, const std::string& as, TeskMediaKind kind) {
        fs::copy_file(kFixtures / fixture, folder / as);
        state.importMedia(folder / as, kind);
        waitForIdle();
        return state.sources().back().id;
    }

    const TeskSource& source(const Uuid& id) const { return *state.source(id); }
    fs::path sourceFolder(const Uuid& id) const { return TeskSourceStore::sourceDirectory(project, id); }

    std::vector<std::string> texts(const Uuid& id) const {
        std::vector<std::string> result;
        for (const auto& segment : state.transcript(id).segments) result.push_back(segment.text);
        return result;
    }

    // Runs a transcription to its end with a failure expected; returns its status.
    TeskTranscriptionStatus failedRun(const Uuid& id) {
        state.transcribeConfirmed(id, false);
        waitForIdle();
        return *source(id).transcriptionStatus;
    }

    TemporaryDirectory folder;
    fs::path project = folder / "Study.mvibrl";
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState state{panels, &settings};
    std::unique_ptr<MibrelAppleHelperSidecar> helper;
    int helpers = 0;
};

TEST_F(TranscriptionTest, AnImportedRecordingIsCopiedAnnouncedAndTranscribed) {
    const Uuid id = importFixture("speech.mp3", "Interview 3.MP3", TeskMediaKind::audio);
    EXPECT_EQ(source(id).label, "Interview 3");
    EXPECT_EQ(source(id).mediaFilename, "media.mp3");
    EXPECT_EQ(source(id).mediaKind, TeskMediaKind::audio);
    EXPECT_TRUE(fs::exists(sourceFolder(id) / "media.mp3"));
    EXPECT_EQ(state.latestImportNotice()->title, "Audio imported into Sources");
    EXPECT_EQ(state.latestImportNotice()->detail, "Interview 3 is selected. Transcription will start on this computer.");
    EXPECT_EQ(state.selectedSourceID(), id);

    EXPECT_EQ(texts(id), std::vector<std::string>{"we stayed"});
    EXPECT_EQ(source(id).transcriptionStatus->kind, Kind::complete);
    EXPECT_EQ(source(id).transcriptionStatus->message, "Coverage 0s-1s of 4s; 2 words; 1 segment");
    EXPECT_EQ(source(id).transcriptionMediaFilename, "transcription-audio.m4a");
    EXPECT_NE(testing::readText(log()).find("transcription-audio.m4a"), std::string::npos);
    EXPECT_EQ(TeskSourceStore::loadTranscript(id, project), state.transcript(id));
    EXPECT_EQ(TeskSourceStore::loadIndex(project).back().transcriptionStatus->message,
              source(id).transcriptionStatus->message);
    EXPECT_FALSE(state.lastError());
    EXPECT_EQ(testing::folderListing(sourceFolder(id)), "media.mp3 meta.json transcript.json transcription-audio.m4a");

    // The derived audio is reused, unless a fresh one is asked for; every run brings new ids.
    const auto firstIDs = state.transcript(id).segments[0].id;
    const auto made = fs::last_write_time(sourceFolder(id) / "transcription-audio.m4a");
    state.transcribeConfirmed(id, false);
    waitForIdle();
    EXPECT_EQ(fs::last_write_time(sourceFolder(id) / "transcription-audio.m4a"), made);
    EXPECT_NE(state.transcript(id).segments[0].id, firstIDs);
    state.transcribeConfirmed(id, true);
    waitForIdle();
    EXPECT_NE(fs::last_write_time(sourceFolder(id) / "transcription-audio.m4a"), made);
    EXPECT_EQ(requestCount(), 3u);
}

TEST_F(TranscriptionTest, TheFirstImportWaitsForApproval) {
    settings.setValue(QStringLiteral("mibrel.speechIntroShown"), false);
    const Uuid id = importFixture("video-with-sound.mp4", "Focus group.mp4", TeskMediaKind::video);
    EXPECT_EQ(state.latestImportNotice()->title, "Video imported into Sources");
    EXPECT_EQ(state.latestImportNotice()->detail,
              "Focus group is ready. Approve on-device speech recognition when prompted to start transcription.");
    EXPECT_EQ(state.pendingSpeechIntro(), id);
    EXPECT_EQ(source(id).transcriptionStatus->message, "Waiting for approval to use on-device speech recognition.");
    EXPECT_EQ(state.transcriptionSummary(source(id))->title, "Approval needed");
    EXPECT_EQ(requestCount(), 0u);

    state.confirmSpeechIntro();
    EXPECT_EQ(state.transcriptionSummary(source(id))->title, "Transcribing");
    waitForIdle();
    EXPECT_EQ(texts(id), std::vector<std::string>{"we stayed"});
    EXPECT_EQ(source(id).transcriptionMediaFilename, "transcription-audio.m4a");
    EXPECT_EQ(state.transcriptionSummary(source(id))->title, "Transcribed");
}

TEST_F(TranscriptionTest, LongRecordingsGoInChunksWhereSilenceLeavesAGap) {
    const Uuid id = importFixture("long-with-silence.m4a", "Long.m4a", TeskMediaKind::audio);
    EXPECT_EQ(requestCount(), 4u); // 12 + 12 + 12 + 2 seconds
    ASSERT_EQ(texts(id), (std::vector<std::string>{"hello there", "hello there", "hello there"}));
    const auto& segments = state.transcript(id).segments;
    EXPECT_DOUBLE_EQ(*segments[0].start, 1.0);
    EXPECT_DOUBLE_EQ(*segments[1].start, 25.0); // the second chunk was silent
    EXPECT_DOUBLE_EQ(*segments[2].end, 38.0);
    EXPECT_EQ(source(id).transcriptionStatus->kind, Kind::complete);
    EXPECT_NEAR(*source(id).transcriptionStatus->mediaDuration, 38.04, 0.1);
    EXPECT_FALSE(state.lastError());
}

TEST_F(TranscriptionTest, FailuresKeepTheOldTranscriptAndSayWhy) {
    const Uuid id = importFixture("long-with-silence.m4a", "Long.m4a", TeskMediaKind::audio);
    const TeskTranscript before = state.transcript(id);

    useHelper(kSilentHelper);
    auto status = failedRun(id);
    EXPECT_EQ(status.kind, Kind::failed);
    EXPECT_EQ(status.message, "No speech was recognized in this recording.");
    EXPECT_EQ(state.lastError(), "No speech was recognized in this recording.");

    useHelper(kDyingHelper);
    EXPECT_EQ(failedRun(id).message, "Transcription helper stopped unexpectedly.");
    useHelper(kMisshapenHelper);
    EXPECT_EQ(failedRun(id).message, "Invalid helper response.");
    useHelper(kRamblingHelper);
    status = failedRun(id);
    EXPECT_EQ(status.kind, Kind::failed);
    EXPECT_FALSE(status.message.empty()); // the JSON parser's own words

    // A helper that cannot be run fails to start with "Permission denied", which reads as
    // the permission problem it is.
    useHelper(kSpeakingHelper);
    fs::permissions(folder / ("helper-" + std::to_string(helpers)), fs::perms::owner_read);
    EXPECT_EQ(failedRun(id).message.substr(0, 36), "Speech Recognition is not allowed. O");

    helper = std::make_unique<MibrelAppleHelperSidecar>([]() -> fs::path { throw MibrelSidecarError::missingAppleHelper(); });
    state.useHelper(*helper);
    EXPECT_EQ(failedRun(id).message,
              "The on-device transcription helper was not found. Reinstall Merivante Mibrel or run from a fresh build.");
    EXPECT_EQ(state.transcriptionSummary(source(id))->title, "Transcription failed");

    fs::remove(sourceFolder(id) / "media.m4a");
    fs::remove(sourceFolder(id) / "transcription-audio.m4a");
    EXPECT_EQ(failedRun(id).message, "The media file for this source could not be found.");
    EXPECT_EQ(state.transcript(id), before);
    EXPECT_EQ(TeskSourceStore::loadTranscript(id, project), before);
}

TEST_F(TranscriptionTest, AVideoWithoutSoundSaysSo) {
    const Uuid id = importFixture("video-silent.mp4", "Silent.mp4", TeskMediaKind::video);
    EXPECT_EQ(source(id).transcriptionStatus->kind, Kind::failed);
    EXPECT_EQ(source(id).transcriptionStatus->message, "This video does not contain an audio track to transcribe.");
    EXPECT_FALSE(source(id).transcriptionMediaFilename);
    EXPECT_EQ(requestCount(), 0u);
}

TEST_F(TranscriptionTest, ACancelEndsTheRunAtItsNextCheckAndASecondStartIsIgnored) {
    const Uuid id = importFixture("speech.wav", "Talk.wav", TeskMediaKind::audio);
    useHelper(kWaitingHelper);
    state.transcribeConfirmed(id, false);
    state.transcribeConfirmed(id, true); // already running: not even the derived audio is touched
    state.cancelTranscription(id);
    state.cancelTranscription(Uuid::random());
    testing::writeText(folder / "go", "");
    waitForIdle();
    EXPECT_EQ(source(id).transcriptionStatus->message, "Transcription canceled. Click Transcribe to run it again.");
    EXPECT_EQ(source(id).transcriptionStatus->kind, Kind::notStarted);
    EXPECT_EQ(texts(id), std::vector<std::string>{"we stayed"});
    EXPECT_LE(requestCount(), 2u); // the helper may or may not have been asked before the cancel
    EXPECT_TRUE(fs::exists(sourceFolder(id) / "transcription-audio.m4a"));
}

TEST_F(TranscriptionTest, AFailedCopyLeavesNothingBehind) {
    state.importMedia(folder / "missing.m4a", TeskMediaKind::audio);
    waitForIdle();
    EXPECT_TRUE(state.lastError());
    EXPECT_TRUE(state.sources().empty());
    for (const auto& entry : fs::directory_iterator(project / "sources")) {
        EXPECT_FALSE(entry.is_directory()) << "left behind: " << entry.path();
    }
}

TEST_F(TranscriptionTest, OldProjectsGetStatusesForTheirTranscribedRecordings) {
    const Uuid id = importFixture("speech.m4a", "Old.m4a", TeskMediaKind::audio);
    TeskSource old = source(id);
    old.transcriptionStatus.reset();
    state.updateSource(old);
    EXPECT_EQ(state.transcriptionSummary(source(id))->detail, "1 segment available.");
    state.refreshLoadedMediaTranscriptionStatuses(project);
    testing::processEventsUntil([&] { return source(id).transcriptionStatus.has_value(); });
    ASSERT_TRUE(source(id).transcriptionStatus);
    EXPECT_EQ(source(id).transcriptionStatus->kind, Kind::complete);
    EXPECT_NEAR(*source(id).transcriptionStatus->mediaDuration, 3.73, 0.1);
}

// A WAV of silence, exactly `samples` long at 16 kHz, so that its duration is exact.
void writeSilentWav(const fs::path& file, std::uint32_t samples) {
    const std::uint32_t bytes = samples * 2;
    std::string wav = "RIFF";
    const auto put = [&wav](std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) wav += static_cast<char>((value >> (8 * i)) & 0xFF);
    };
    put(36 + bytes, 4);
    wav += "WAVEfmt ";
    put(16, 4), put(1, 2), put(1, 2), put(16000, 4), put(32000, 4), put(2, 2), put(16, 2);
    wav += "data";
    put(bytes, 4);
    wav.append(bytes, '\0');
    testing::writeText(file, wav);
}

TEST_F(TranscriptionTest, ThirtySecondsGoWholeAndAnyMoreInTwelveSecondChunks) {
    const std::atomic<bool> running{false};
    std::vector<double> progress;
    writeSilentWav(folder / "thirty.wav", 480'000);
    const auto whole = MibrelTranscription::transcribeCompleteMedia(folder / "thirty.wav", *helper, running,
                                                                    [&](double p) { progress.push_back(p); });
    EXPECT_EQ(requestCount(), 1u);
    EXPECT_NE(testing::readText(log()).find("thirty.wav"), std::string::npos);
    EXPECT_EQ(whole.segments[0].start, 0.2); // times as the helper gave them
    EXPECT_TRUE(progress.empty());

    writeSilentWav(folder / "longer.wav", 481'600);
    const auto chunked = MibrelTranscription::transcribeCompleteMedia(folder / "longer.wav", *helper, running,
                                                                      [&](double p) { progress.push_back(p); });
    EXPECT_EQ(requestCount(), 4u);
    ASSERT_EQ(chunked.segments.size(), 2u); // the second chunk was silent
    EXPECT_DOUBLE_EQ(*chunked.segments[0].start, 1.0);
    EXPECT_DOUBLE_EQ(*chunked.segments[1].start, 25.0);
    ASSERT_EQ(progress.size(), 3u);
    EXPECT_DOUBLE_EQ(progress[1], 12.0 / 30.1);
}

} // namespace
} // namespace mibrel
