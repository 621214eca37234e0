#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelMac/Helper/MibrelAppleHelperSidecar.h"
#include "MibrelMac/Helper/MibrelResourcePaths.h"
#include "MibrelMac/Helper/MibrelSidecarError.h"
#include "MibrelMac/Helper/TranscriptSegmenter.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryDirectory;

// A fake helper: answers each request with the next line of `answers`, logging requests.
fs::path cannedHelper(const TemporaryDirectory& dir, const std::string& answers, const std::string& name = "helper") {
    testing::writeText(dir / (name + ".answers"), answers);
    const fs::path script = dir / name;
    testing::writeText(script, "#!/bin/bash\nexec 3<'" + (dir / (name + ".answers")).string() +
                                   "'\nwhile IFS= read -r request; do\n  printf '%s\\n' \"$request\" >> '" +
                                   (dir / (name + ".log")).string() +
                                   "'\n  IFS= read -r answer <&3 || exit 0\n  printf '%s\\n' \"$answer\"\ndone\n");
    fs::permissions(script, fs::perms::owner_all);
    return script;
}

std::string errorOf(const std::function<void()>& run) {
    try {
        run();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no error";
}

rapidjson::Document emptyArgs() { return rapidjson::Document(rapidjson::kObjectType); }

class SidecarTest : public ::testing::Test {
protected:
    MibrelAppleHelperSidecar client(const fs::path& helper) {
        return MibrelAppleHelperSidecar([helper] { return helper; });
    }
    std::string call(MibrelAppleHelperSidecar& sidecar) {
        return errorOf([&] { sidecar.call("ai.status", emptyArgs()); });
    }
    TemporaryDirectory dir;
};

TEST_F(SidecarTest, FailedResponsesSayWhyAndKeepTheHelper) {
    const auto helper = cannedHelper(dir, "{\"ok\":false}\n{\"ok\":\"true\"}\n{\"ok\":false,\"error\":\"Model busy.\"}\n"
                                          "{\"ok\":true}\n{\"ok\":true,\"result\":{\"available\":true}}\n");
    MibrelAppleHelperSidecar sidecar([helper] { return helper; });
    EXPECT_EQ(call(sidecar), "Transcription helper error.");
    EXPECT_EQ(call(sidecar), "Transcription helper error."); // "true" is not a boolean
    EXPECT_EQ(call(sidecar), "Model busy.");
    EXPECT_FALSE(sidecar.call("ai.status", emptyArgs()).has_value());
    const auto result = sidecar.call("ai.status", emptyArgs());
    ASSERT_TRUE(result && result->IsObject());
    EXPECT_TRUE((*result)["available"].GetBool());
    // One process answered all five, with ids counting up.
    EXPECT_EQ(testing::readText(dir / "helper.log"),
              "{\"id\":1,\"op\":\"ai.status\",\"args\":{}}\n{\"id\":2,\"op\":\"ai.status\",\"args\":{}}\n"
              "{\"id\":3,\"op\":\"ai.status\",\"args\":{}}\n{\"id\":4,\"op\":\"ai.status\",\"args\":{}}\n"
              "{\"id\":5,\"op\":\"ai.status\",\"args\":{}}\n");
}

// Not JSON at all keeps the process (the next answer is the file's next line); JSON of
// the wrong shape restarts it (the answers start over).
TEST_F(SidecarTest, NonJsonKeepsTheHelperWhileWrongShapedJsonResetsIt) {
    const auto helper = cannedHelper(dir, "not json\n{\"ok\":false,\"error\":\"second\"}\n[1,2]\n");
    MibrelAppleHelperSidecar sidecar([helper] { return helper; });
    EXPECT_NE(call(sidecar), "no error");
    EXPECT_EQ(call(sidecar), "second");
    EXPECT_EQ(call(sidecar), "Invalid helper response.");
    EXPECT_NE(call(sidecar), "no error"); // "not json" again, from a new process
    EXPECT_EQ(call(sidecar), "second");
    const std::string log = testing::readText(dir / "helper.log");
    EXPECT_NE(log.find("{\"id\":4,"), std::string::npos) << "ids never restart";
}

TEST_F(SidecarTest, AHelperThatDiesOrGarblesIsReplacedAndIdsGoOn) {
    const fs::path script = dir / "dies";
    testing::writeText(script, "#!/bin/bash\nIFS= read -r request\nprintf '%s\\n' \"$request\" >> '" +
                                   (dir / "dies.log").string() + "'\nprintf '{\"ok\":tr'\n");
    fs::permissions(script, fs::perms::owner_all);
    MibrelAppleHelperSidecar sidecar([script] { return script; });
    EXPECT_EQ(call(sidecar), "Transcription helper stopped unexpectedly.");
    EXPECT_EQ(call(sidecar), "Transcription helper stopped unexpectedly.");
    EXPECT_EQ(testing::readText(dir / "dies.log"),
              "{\"id\":1,\"op\":\"ai.status\",\"args\":{}}\n{\"id\":2,\"op\":\"ai.status\",\"args\":{}}\n");

    const fs::path garbled = dir / "garbled";
    testing::writeText(garbled, "#!/bin/bash\nwhile IFS= read -r request; do printf '\\xff\\xfe\\n'; done\n");
    fs::permissions(garbled, fs::perms::owner_all);
    MibrelAppleHelperSidecar other([garbled] { return garbled; });
    EXPECT_EQ(call(other), "Invalid UTF-8 from transcription helper.");
}

TEST_F(SidecarTest, AMissingHelperIsLookedForAgainOnEachCall) {
    int searches = 0;
    MibrelAppleHelperSidecar sidecar([&searches]() -> fs::path {
        ++searches;
        throw MibrelSidecarError::missingAppleHelper();
    });
    EXPECT_EQ(call(sidecar), "The on-device transcription helper was not found. Reinstall Merivante Mibrel.");
    call(sidecar);
    EXPECT_EQ(searches, 2);

    const fs::path plain = dir / "not-executable";
    testing::writeText(plain, "#!/bin/bash\n");
    fs::permissions(plain, fs::perms::owner_read | fs::perms::owner_write);
    MibrelAppleHelperSidecar cannotStart([plain] { return plain; });
    EXPECT_NE(call(cannotStart), "no error");
}

TEST_F(SidecarTest, TranscribeTurnsWordsOrTextIntoSegments) {
    const auto helper = cannedHelper(
        dir, "{\"ok\":true,\"result\":{\"segments\":[{\"text\":\"we\",\"start\":1,\"duration\":0.5},{\"start\":2},"
             "{\"text\":\"stayed\",\"start\":1.6,\"duration\":0.4},{\"text\":\"later\",\"start\":3}],\"text\":\"x\"}}\n"
             "{\"ok\":true,\"result\":{\"segments\":[{\"text\":\"alone\"}],\"text\":\"\"}}\n"
             "{\"ok\":true,\"result\":{\"segments\":[],\"text\":\"   \"}}\n"
             "{\"ok\":true,\"result\":{\"segments\":[\"loose\"],\"text\":\"First part.\\n\\nSecond part.\"}}\n"
             "{\"ok\":true,\"result\":{\"segments\":[],\"text\":\"\"}}\n"
             "{\"ok\":true}\n{\"ok\":true,\"result\":[]}\n");
    MibrelAppleHelperSidecar sidecar([helper] { return helper; });
    const fs::path audio = "/tmp/interview 1.m4a";
    const TeskTranscript timed = sidecar.transcribe(audio, "en-US");
    ASSERT_EQ(timed.segments.size(), 2u);
    EXPECT_EQ(timed.segments[0].text, "we stayed");
    EXPECT_EQ(timed.segments[0].start, 1.0);
    EXPECT_EQ(timed.segments[0].end, 2.0);
    EXPECT_EQ(timed.segments[1].text, "later");
    EXPECT_EQ(timed.segments[1].end, 3.0);

    const TeskTranscript untimed = sidecar.transcribe(audio, "en-US");
    ASSERT_EQ(untimed.segments.size(), 1u);
    EXPECT_EQ(untimed.segments[0].start, 0.0);
    EXPECT_EQ(untimed.segments[0].end, 0.0);

    EXPECT_TRUE(sidecar.transcribe(audio, "en-US").segments.empty()); // blank text is still text
    EXPECT_EQ(sidecar.transcribe(audio, "en-US").segments.size(), 2u); // paragraphs, not the loose units
    EXPECT_EQ(errorOf([&] { sidecar.transcribe(audio, "en-US"); }), "No speech was recognized in this recording.");
    EXPECT_EQ(errorOf([&] { sidecar.transcribe(audio, "en-US"); }), "Transcription returned no result.");
    EXPECT_EQ(errorOf([&] { sidecar.transcribe(audio, "en-US"); }), "Transcription returned no result.");
    EXPECT_NE(testing::readText(dir / "helper.log")
                  .find("\"op\":\"speech.transcribe\",\"args\":{\"path\":\"/tmp/interview 1.m4a\",\"locale\":\"en-US\"}"),
              std::string::npos);
}

TEST(ResourcePathsTest, TheEnvironmentNamesTheHelperOnlyWhenItIsExecutable) {
    TemporaryDirectory dir;
    const fs::path script = dir / "apple-helper";
    testing::writeText(script, "#!/bin/bash\n");
    const char* saved = std::getenv("MIBREL_APPLE_HELPER");
    const std::string savedValue = saved ? saved : "";
    const auto fallback = [] {
        try {
            return MibrelResourcePaths::appleHelperExecutable();
        } catch (const MibrelSidecarError&) {
            return fs::path("missing");
        }
    };
    ::unsetenv("MIBREL_APPLE_HELPER");
    const fs::path withoutVariable = fallback();
    ::setenv("MIBREL_APPLE_HELPER", script.c_str(), 1);
    EXPECT_EQ(fallback(), withoutVariable) << "a file that cannot be run is passed over";
    fs::permissions(script, fs::perms::owner_all);
    EXPECT_EQ(fallback(), script);
    ::setenv("MIBREL_APPLE_HELPER", "", 1);
    EXPECT_EQ(fallback(), withoutVariable);
    if (saved) ::setenv("MIBREL_APPLE_HELPER", savedValue.c_str(), 1); else ::unsetenv("MIBREL_APPLE_HELPER");
}

std::vector<SpokenWord> evenWords(std::size_t count) {
    std::vector<SpokenWord> words;
    for (std::size_t i = 0; i < count; ++i) words.push_back({"w" + std::to_string(i), 0.5 * i, 0.4});
    return words;
}

TEST(TranscriptSegmenterTest, CutsAtSixtyWordsAndAtPausesOfAtLeastEightTenths) {
    EXPECT_TRUE(TranscriptSegmenter::segments({}).empty());
    EXPECT_EQ(TranscriptSegmenter::segments(evenWords(60)).size(), 1u);
    const auto sixtyOne = TranscriptSegmenter::segments(evenWords(61));
    ASSERT_EQ(sixtyOne.size(), 2u);
    EXPECT_EQ(sixtyOne[1].text, "w60");
    EXPECT_EQ(sixtyOne[0].end, 0.5 * 59 + 0.4);

    const auto pause = TranscriptSegmenter::segments({{"a", 0.5, 0.5}, {"b", 1.8, 0.2}, {"c", 2.79, 0.1}});
    ASSERT_EQ(pause.size(), 2u); // 0.8 after "a" cuts; 0.79 after "b" does not
    EXPECT_EQ(pause[0].text, "a");
    EXPECT_EQ(pause[1].text, "b c");
    EXPECT_EQ(pause[1].start, 1.8);
    EXPECT_NE(pause[0].id, pause[1].id);
    EXPECT_EQ(pause[0].id.size(), 36u);

    // Overlaps never cut, words are not sorted, texts are joined as they are.
    const auto overlapping = TranscriptSegmenter::segments({{"late ", 5.0, 1.0}, {"", 4.0, 0.5}, {"x", 4.6, 0.1}});
    ASSERT_EQ(overlapping.size(), 1u);
    EXPECT_EQ(overlapping[0].text, "late   x");
    EXPECT_DOUBLE_EQ(*overlapping[0].end, 4.7);
}

} // namespace
} // namespace mibrel
