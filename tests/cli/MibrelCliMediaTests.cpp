#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tests/cli/CliTestSupport.h"
#include "tests/support/TestSupport.h"

namespace mibrel::cli {
namespace {

namespace fs = std::filesystem;
using mibrel::testing::TemporaryDirectory;

const fs::path kFixtures = MIBREL_MEDIA_FIXTURES;

// The command line finds its helper as the window does; this one answers every request
// with the same two words, or with its status.
fs::path fakeHelper(const TemporaryDirectory& folder) {
    const fs::path script = folder / "apple-helper";
    mibrel::testing::writeText(script, R"(#!/bin/bash
while IFS= read -r request; do
  case "$request" in
    *ai.status*) echo '{"ok":true,"result":{"available":false,"model":"","reason":"None here."}}' ;;
    *) echo '{"ok":true,"result":{"segments":[{"text":"we","start":0.2,"duration":0.3},{"text":"stayed","start":0.6,"duration":0.5}]}}' ;;
  esac
done
)");
    fs::permissions(script, fs::perms::owner_all);
    return script;
}

std::string idIn(const std::string& json, const std::string& after) {
    const auto at = json.find("\"id\": \"", json.find(after)) + 7;
    return json.substr(at, 36);
}

TEST(MibrelCliMediaTest, RecordingsAreImportedTranscribedAndCorrectedFromTheCommandLine) {
    TemporaryDirectory folder;
    ::setenv("MIBREL_APPLE_HELPER", fakeHelper(folder).c_str(), 1);
    const std::string project = (folder / "study.mvibrl").string();
    ASSERT_EQ(run({"project", "create", project, "--title", "Study"}).status, kExitSuccess);

    const CliResult waiting = run({"import", "media", project, (kFixtures / "speech.wav").string()});
    ASSERT_EQ(waiting.status, kExitSuccess) << waiting.err;
    EXPECT_NE(waiting.out.find("Waiting for approval to use on-device speech recognition."), std::string::npos);

    const CliResult imported = run({"import", "media", project, (kFixtures / "speech.m4a").string(), "--approve-speech"});
    ASSERT_EQ(imported.status, kExitSuccess) << imported.err;
    EXPECT_NE(imported.out.find("\"text\": \"we stayed\""), std::string::npos) << imported.out;
    EXPECT_NE(imported.out.find("\"transcriptionMediaFilename\": \"transcription-audio.m4a\""), std::string::npos);
    const std::string sourceID = idIn(imported.out, "\"source\"");

    const CliResult again = run({"transcribe", project, sourceID, "--force"});
    ASSERT_EQ(again.status, kExitSuccess) << again.err;
    const std::string segmentID = idIn(again.out, "\"segments\"");
    ASSERT_EQ(run({"edit", project, "updateTranscriptSegmentText",
                   R"({"sourceID":")" + sourceID + R"(","segmentID":")" + segmentID + R"(","text":" We stayed. "})"})
                  .status,
              kExitSuccess);
    ASSERT_EQ(run({"edit", project, "markTranscriptReviewed", R"({"sourceID":")" + sourceID + "\"}"}).status, kExitSuccess);
    ASSERT_EQ(run({"edit", project, "addMediaNote", R"({"sourceID":")" + sourceID + R"(","timestamp":1.5,"text":"Laughs"})"})
                  .status,
              kExitSuccess);
    const std::string folderOfSource = (folder / "study.mvibrl" / "sources" / sourceID).string();
    EXPECT_NE(mibrel::testing::readText(folderOfSource + "/transcript.json").find("\"We stayed.\""), std::string::npos);
    const std::string meta = mibrel::testing::readText(folderOfSource + "/meta.json");
    EXPECT_NE(meta.find("Reviewed by researcher. Coverage 0s-1s of 4s; 2 words; 1 segment."), std::string::npos) << meta;
    EXPECT_NE(meta.find("\"Laughs\""), std::string::npos);

    EXPECT_EQ(run({"transcribe", project, "not-an-id"}).status, kExitUsage);
    EXPECT_EQ(run({"import", "media", project, (folder / "gone.m4a").string()}).status, kExitFailure);
    EXPECT_EQ(run({"import", "media", project, (folder / "notes.txt").string()}).status, kExitUsage);

    const CliResult status = run({"helper", "call", "ai.status"});
    ASSERT_EQ(status.status, kExitSuccess) << status.err;
    EXPECT_EQ(status.out, "{\"available\":false,\"model\":\"\",\"reason\":\"None here.\"}\n");
    EXPECT_EQ(run({"helper", "call", "ai.status", "[1]"}).status, kExitUsage);
    ::unsetenv("MIBREL_APPLE_HELPER");
}

TEST(MibrelCliMediaTest, DurationsAreReadOrRefused) {
    const CliResult duration = run({"media", "duration", (kFixtures / "long-with-silence.m4a").string()});
    ASSERT_EQ(duration.status, kExitSuccess) << duration.err;
    EXPECT_NEAR(std::stod(duration.out), 38.04, 0.05);
    const CliResult refused = run({"media", "duration", (kFixtures / "make-fixtures.sh").string()});
    EXPECT_EQ(refused.status, kExitFailure);
    EXPECT_EQ(refused.err, "Mibrel could not read the duration of this file.\n");
}

// The program itself, with the real helper and speech model: what a researcher's script gets.
std::string runProgram(const std::string& arguments) {
    const std::string command = "env -u MIBREL_APPLE_HELPER '" MIBREL_CLI_EXECUTABLE "' " + arguments + " 2>&1";
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return output;
    char buffer[4096];
    for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, read);
    ::pclose(pipe);
    return output;
}

TEST(MibrelCliMediaTest, ALongRecordingIsTranscribedOnThisMachineEndToEnd) {
    TemporaryDirectory folder;
    const std::string project = (folder / "study.mvibrl").string();
    runProgram("project create '" + project + "'");
    const std::string output =
        runProgram("import media '" + project + "' '" + (kFixtures / "long-with-silence.m4a").string() + "' --approve-speech");
    ASSERT_NE(output.find("\"segments\""), std::string::npos) << output;
    // Speech recognised from espeak-ng's voice is rough, but some of the spoken words come through.
    std::set<std::string> heard;
    for (const char* word : {"teachers", "teacher", "stayed", "because", "mentor", "helped", "principal", "supported",
                             "support", "school"}) {
        if (output.find(std::string(" ") + word) != std::string::npos ||
            output.find(std::string("\"") + word) != std::string::npos) {
            heard.insert(word);
        }
    }
    EXPECT_GE(heard.size(), 2u) << output;
    EXPECT_NE(output.find("\"start\": 3"), std::string::npos) << "speech after the first 30 seconds: " << output;
    EXPECT_NE(output.find("\"kind\": \"complete\""), std::string::npos) << output;
}

} // namespace
} // namespace mibrel::cli
