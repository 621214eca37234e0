// The helper program driven through its pipes, as the application drives it.
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <rapidjson/document.h>

#include "tests/AppleHelper/FakeChatServer.h"
#include "tests/AppleHelper/HelperProcess.h"
#include "tests/support/TestSupport.h"

namespace mibrel::testing {
namespace {

const std::string fixtures = MIBREL_MEDIA_FIXTURES;
const std::string noSpeech = "No speech was recognized in this recording.";
const HelperProcess::Environment noLanguageModel = {{"MIBREL_LLM_ENDPOINT", std::nullopt}};

std::string transcribeRequest(const std::string& path, const std::string& locale = "en-US") {
    return R"({"id":7,"op":"speech.transcribe","args":{"path":")" + path + R"(","locale":")" + locale + R"("}})";
}

std::string generateRequest(const std::string& prompt = "Suggest a code.") {
    return R"({"id":3,"op":"ai.generate","args":{"task":"Qualitative code suggestion","prompt":")" + prompt +
           R"(","context":"Interview 4","max_tokens":220}})";
}

const std::string statusRequest = R"({"id":2,"op":"ai.status","args":{}})";

std::string errorOf(const rapidjson::Document& answer) {
    if (!answer.IsObject() || !answer.HasMember("ok") || answer["ok"].GetBool() || !answer["error"].IsString()) {
        return "<not a failure>";
    }
    return answer["error"].GetString();
}

const rapidjson::Value& resultOf(const rapidjson::Document& answer) {
    static const rapidjson::Value none;
    if (!answer.IsObject() || !answer.HasMember("ok") || !answer["ok"].GetBool()) return none;
    return answer["result"];
}

void writeSilentWav(const std::filesystem::path& path, int seconds) {
    const std::uint32_t dataBytes = static_cast<std::uint32_t>(seconds) * 16000 * 2;
    const auto u32 = [](std::uint32_t v) { return std::string{char(v), char(v >> 8), char(v >> 16), char(v >> 24)}; };
    const auto u16 = [](std::uint16_t v) { return std::string{char(v), char(v >> 8)}; };
    const std::string header = "RIFF" + u32(36 + dataBytes) + "WAVEfmt " + u32(16) + u16(1) + u16(1) + u32(16000) +
                               u32(32000) + u16(2) + u16(16) + "data" + u32(dataBytes);
    writeText(path, header + std::string(dataBytes, '\0'));
}

// Words from real speech: some, in order, inside the recording, no markers.
void expectPlausibleWords(const rapidjson::Value& result, double recordingSeconds) {
    ASSERT_TRUE(result.IsObject());
    const auto& segments = result["segments"];
    ASSERT_TRUE(segments.IsArray());
    ASSERT_GE(segments.Size(), 3u);
    std::string joined;
    double previousStart = 0;
    for (const auto& segment : segments.GetArray()) {
        const std::string text = segment["text"].GetString();
        const double start = segment["start"].GetDouble(), duration = segment["duration"].GetDouble();
        EXPECT_EQ(text.find_first_of("<>[]()+ "), std::string::npos) << text;
        EXPECT_GE(start, previousStart) << text;
        EXPECT_GT(duration, 0) << text;
        EXPECT_LE(start + duration, recordingSeconds + 0.2) << text;
        previousStart = start;
        joined += (joined.empty() ? "" : " ") + text;
    }
    EXPECT_EQ(result["text"].GetString(), joined);
    // Each fixture starts speaking at once.
    EXPECT_LT(segments[0]["start"].GetDouble(), 1.0);
}

TEST(AppleHelperTests, EveryBadLineGetsOneFailureAndTheHelperGoesOn) {
    HelperProcess helper(noLanguageModel);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"this is not json", "The request is not valid JSON."},
        {"{\"id\": 1, \"op\": \"ai.status\"", "The request is not valid JSON."},
        {"[1, 2]", "The request must be a JSON object."},
        {"42", "The request must be a JSON object."},
        {"", "The request is empty."},
        {R"({"id":1,"args":{}})", "The request names no operation (\"op\" is missing)."},
        {R"({"id":1,"op":17})", "The request's \"op\" must be a string."},
        {R"({"id":1,"op":"foo","args":{}})", "Unknown operation: foo."},
        {R"({"id":1,"op":"ai.status","args":[1]})", "The request's \"args\" must be a JSON object."},
        {R"({"id":1,"op":"speech.transcribe","args":{"path":5,"locale":"en-US"}})",
         "The argument \"path\" must be a string."},
        {R"({"id":1,"op":"speech.transcribe","args":{"path":"/a.m4a"}})", "The argument \"locale\" is missing."},
        {R"({"id":1,"op":"ai.generate","args":{"task":"t","prompt":"p","context":"c","max_tokens":"220"}})",
         "The argument \"max_tokens\" must be a whole number."},
        {std::string(200000, '['), "The request is not valid JSON."},
        {"{\"id\":1,\"op\":\"a\xff\"}", "The request is not valid JSON."},
        {std::string(17 * 1024 * 1024, ' ') + "{}", "The request is too long."},
    };
    for (const auto& [line, error] : cases) {
        EXPECT_EQ(errorOf(helper.ask(line)), error) << line.substr(0, 60);
    }
    EXPECT_TRUE(resultOf(helper.ask(statusRequest)).IsObject());
}

TEST(AppleHelperTests, StdoutCarriesOnlyOneAnswerLinePerRequestAndEndOfInputEndsTheHelper) {
    HelperProcess helper(noLanguageModel);
    const std::vector<std::string> requests = {statusRequest, transcribeRequest(fixtures + "/speech.wav"), "junk",
                                               transcribeRequest(fixtures + "/missing.m4a"), generateRequest()};
    for (const auto& request : requests) helper.send(request);
    std::vector<std::string> answers;
    for (std::size_t i = 0; i < requests.size(); ++i) answers.push_back(helper.readLine().value_or(""));
    std::string laterOutput;
    EXPECT_EQ(helper.finish(laterOutput), 0);
    EXPECT_EQ(laterOutput, "");
    for (const auto& answer : answers) {
        rapidjson::Document parsed;
        parsed.Parse(answer.c_str());
        ASSERT_TRUE(parsed.IsObject() && parsed.HasMember("ok")) << answer;
    }
    rapidjson::Document speech;
    speech.Parse(answers[1].c_str());
    EXPECT_TRUE(speech["ok"].GetBool()) << answers[1];
    EXPECT_EQ(speech["id"].GetInt(), 7);
}

TEST(AppleHelperTests, WithoutAnAllowedEndpointTheLanguageModelIsUnavailableWithTheReason) {
    const std::string notConfigured = "No on-device language model is configured. Set MIBREL_LLM_ENDPOINT to a "
                                      "chat-completions server on this machine.";
    HelperProcess unset(noLanguageModel);
    const auto status = unset.ask(statusRequest);
    ASSERT_TRUE(resultOf(status).IsObject());
    EXPECT_FALSE(resultOf(status)["available"].GetBool());
    EXPECT_STREQ(resultOf(status)["model"].GetString(), "");
    EXPECT_EQ(resultOf(status)["reason"].GetString(), notConfigured);
    EXPECT_EQ(errorOf(unset.ask(generateRequest())), notConfigured);

    for (const auto& [endpoint, why] : std::vector<std::pair<std::string, std::string>>{
             {"https://127.0.0.1:8080", "https"}, {"http://example.com/v1/chat/completions", "this machine"}}) {
        HelperProcess refused(HelperProcess::Environment{{"MIBREL_LLM_ENDPOINT", endpoint}});
        const auto answer = refused.ask(statusRequest);
        EXPECT_FALSE(resultOf(answer)["available"].GetBool());
        const std::string reason = resultOf(answer)["reason"].GetString();
        EXPECT_NE(reason.find(why), std::string::npos) << reason;
        EXPECT_EQ(errorOf(refused.ask(generateRequest())), reason);
    }
}

TEST(AppleHelperTests, AServerThatDoesNotAnswerIsReportedUnavailable) {
    int closedPort = 0;
    { closedPort = FakeChatServer({}).port(); }
    const std::string endpoint = "http://127.0.0.1:" + std::to_string(closedPort);
    HelperProcess helper(HelperProcess::Environment{{"MIBREL_LLM_ENDPOINT", endpoint}});
    const auto status = helper.ask(statusRequest);
    EXPECT_FALSE(resultOf(status)["available"].GetBool());
    EXPECT_NE(std::string(resultOf(status)["reason"].GetString()).find("did not answer"), std::string::npos);
    EXPECT_NE(errorOf(helper.ask(generateRequest())).find("did not answer"), std::string::npos);
}

TEST(AppleHelperTests, GenerationGoesToTheLocalServerAndReturnsItsText) {
    const std::string answer = R"({"choices":[{"message":{"role":"assistant","content":"Peer \u2014 support"}}]})";
    FakeChatServer server({{200, R"({"data":[{"id":"tiny"}]})"},
                           {200, answer},
                           {500, R"({"error":{"message":"model not loaded"}})"},
                           {200, R"({"choices":[]})"}});
    // localhost must reach 127.0.0.1 without a name lookup.
    const std::string endpoint = "http://localhost:" + std::to_string(server.port());
    HelperProcess helper(HelperProcess::Environment{{"MIBREL_LLM_ENDPOINT", endpoint}, {"MIBREL_LLM_MODEL", "tiny"}});
    const auto status = helper.ask(statusRequest);
    EXPECT_TRUE(resultOf(status)["available"].GetBool());
    EXPECT_STREQ(resultOf(status)["model"].GetString(), "tiny");
    EXPECT_STREQ(resultOf(helper.ask(generateRequest("Say \\\"hi\\\"")))["text"].GetString(),
                 "Peer \xE2\x80\x94 support");
    EXPECT_NE(errorOf(helper.ask(generateRequest())).find("HTTP status 500: model not loaded"), std::string::npos);
    EXPECT_NE(errorOf(helper.ask(generateRequest())).find("could not be understood"), std::string::npos);

    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_TRUE(requests[0].starts_with("GET /v1/models ")) << requests[0];
    EXPECT_TRUE(requests[1].starts_with("POST /v1/chat/completions ")) << requests[1];
    rapidjson::Document body;
    body.Parse(requests[1].substr(requests[1].find("\r\n\r\n") + 4).c_str());
    ASSERT_TRUE(body.IsObject());
    EXPECT_STREQ(body["model"].GetString(), "tiny");
    EXPECT_EQ(body["max_tokens"].GetInt(), 220);
    EXPECT_STREQ(body["messages"][0]["role"].GetString(), "system");
    EXPECT_STREQ(body["messages"][0]["content"].GetString(), "Qualitative code suggestion");
    EXPECT_STREQ(body["messages"][1]["role"].GetString(), "user");
    EXPECT_STREQ(body["messages"][1]["content"].GetString(), "Interview 4\n\nSay \"hi\"");
}

TEST(AppleHelperTests, SpeechInEachFormatGivesTimedWords) {
    HelperProcess helper;
    for (const char* name : {"speech.wav", "speech.m4a", "video-with-sound.mp4"}) {
        SCOPED_TRACE(name);
        const auto answer = helper.ask(transcribeRequest(fixtures + "/" + name));
        EXPECT_EQ(answer["id"].GetInt(), 7);
        expectPlausibleWords(resultOf(answer), 3.8);
    }
}

TEST(AppleHelperTests, ARecordingGetsTheSameWordsWhateverCameBefore) {
    HelperProcess helper;
    const auto first = helper.ask(transcribeRequest(fixtures + "/speech.wav"));
    helper.ask(transcribeRequest(fixtures + "/speech.mp3"));
    const auto again = helper.ask(transcribeRequest(fixtures + "/speech.wav"));
    ASSERT_TRUE(resultOf(first).IsObject());
    ASSERT_TRUE(resultOf(again).IsObject());
    EXPECT_STREQ(resultOf(first)["text"].GetString(), resultOf(again)["text"].GetString());
    EXPECT_TRUE(resultOf(first)["segments"] == resultOf(again)["segments"]);
}

TEST(AppleHelperTests, WordsAfterLongSilenceKeepTheirPlaceInTime) {
    HelperProcess helper;
    const auto answer = helper.ask(transcribeRequest(fixtures + "/long-with-silence.m4a"));
    expectPlausibleWords(resultOf(answer), 38.1);
    const auto& segments = resultOf(answer)["segments"];
    // Speech at 0-3.7 s, 17.7-20 s and 34.4-38.1 s.
    EXPECT_GT(segments[segments.Size() - 1]["start"].GetDouble(), 34.0);
}

TEST(AppleHelperTests, RecordingsWithoutSpeechOrUnreadableOnesFailAndTheHelperGoesOn) {
    TemporaryDirectory folder;
    writeSilentWav(folder / "silence.wav", 3);
    writeText(folder / "damaged.m4a", "not a recording");
    HelperProcess helper;
    EXPECT_EQ(errorOf(helper.ask(transcribeRequest((folder / "silence.wav").string()))), noSpeech);
    const std::string unreadable = "The audio file could not be read: ";
    for (const auto& path : {fixtures + "/missing.m4a", (folder / "damaged.m4a").string(), folder.path().string(),
                             fixtures + "/video-silent.mp4"}) {
        EXPECT_TRUE(errorOf(helper.ask(transcribeRequest(path))).starts_with(unreadable)) << path;
    }
    EXPECT_NE(errorOf(helper.ask(transcribeRequest("speech.wav"))).find("absolute"), std::string::npos);
    const std::string french = errorOf(helper.ask(transcribeRequest(fixtures + "/speech.wav", "fr-FR")));
    EXPECT_NE(french.find("en-US"), std::string::npos) << french;
    EXPECT_TRUE(resultOf(helper.ask(statusRequest)).IsObject());
}

TEST(AppleHelperTests, AMissingSpeechModelIsReportedAndTheHelperGoesOn) {
    HelperProcess helper(HelperProcess::Environment{{"MIBREL_SPEECH_MODEL_DIR", "/nonexistent/model"}});
    const std::string error = errorOf(helper.ask(transcribeRequest(fixtures + "/speech.wav")));
    EXPECT_NE(error.find("The speech recognition model is not installed"), std::string::npos) << error;
    EXPECT_TRUE(resultOf(helper.ask(statusRequest)).IsObject());
}

} // namespace
} // namespace mibrel::testing
