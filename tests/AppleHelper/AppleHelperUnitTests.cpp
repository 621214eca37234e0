// The helper's parts in-process: URL checks, token cleaning, the line protocol and
// transcription with a stand-in decoder and recogniser.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "tests/support/TestSupport.h"
#include "tools/apple-helper/HelperServer.h"
#include "tools/apple-helper/JsonText.h"
#include "tools/apple-helper/LoopbackEndpoint.h"
#include "tools/apple-helper/PocketSphinxRecognizer.h"
#include "tools/apple-helper/RequestError.h"
#include "tools/apple-helper/SpeechTranscriber.h"

namespace mibrel::applehelper {
namespace {

TEST(AppleHelperUnitTests, LoopbackEndpointsAreAcceptedAndAddressedWithoutNames) {
    const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
        {"http://127.0.0.1:8080", "http://127.0.0.1:8080/v1/chat/completions", "http://127.0.0.1:8080/v1/models"},
        {" HTTP://LocalHost:11434/ ", "http://127.0.0.1:11434/v1/chat/completions", "http://127.0.0.1:11434/v1/models"},
        {"http://[::1]:5000/api/v1/chat/completions?x=1#top", "http://[::1]:5000/api/v1/chat/completions?x=1",
         "http://[::1]:5000/api/v1/models"},
        {"http://localhost/generate", "http://127.0.0.1:80/generate", "http://127.0.0.1:80/v1/models"},
    };
    for (const auto& [url, chat, models] : cases) {
        const auto check = parseLoopbackEndpoint(url);
        ASSERT_TRUE(check.endpoint) << url << ": " << check.refusal;
        EXPECT_EQ(check.endpoint->chatCompletionsUrl(), chat);
        EXPECT_EQ(check.endpoint->modelsUrl(), models);
    }
}

TEST(AppleHelperUnitTests, EndpointsOffThisMachineOrNotPlainHttpAreRefusedWithAReason) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"https://127.0.0.1:8080", "https:// is not supported"},
        {"ftp://127.0.0.1/x", "must be an http:// URL"},
        {"127.0.0.1:8080", "is not a URL"},
        {"http://example.com:8080", "not \"example.com\""},
        {"http://127.0.0.1.example.com/", "must be on this machine"},
        {"http://127.0.0.2/", "must be on this machine"},
        {"http://localhost./", "must be on this machine"},
        {"http://127.0.0.1@example.com/", "user name or password"},
        {"http://user:pw@localhost/", "user name or password"},
        {"http://127.0.0.1:99999/", "invalid port"},
        {"http://127.0.0.1:80:81/", "invalid port"},
        {"http://[::1/", "not a valid URL"},
        {"http://[::1]x/", "not a valid URL"},
        {"http://127.0.0.1/a b", "spaces or control characters"},
        {"", "is empty"},
    };
    for (const auto& [url, reason] : cases) {
        const auto check = parseLoopbackEndpoint(url);
        EXPECT_FALSE(check.endpoint) << url;
        EXPECT_NE(check.refusal.find(reason), std::string::npos) << url << ": " << check.refusal;
    }
}

TEST(AppleHelperUnitTests, RecognizerTokensBecomeWordsWithoutMarkersOrVariants) {
    EXPECT_EQ(spokenWord("read(2)"), "read");
    EXPECT_EQ(spokenWord("because(3)"), "because");
    EXPECT_EQ(spokenWord("don't"), "don't");
    EXPECT_EQ(spokenWord("(paren)"), "(paren)"); // not a variant number
    for (const char* marker : {"<s>", "</s>", "<sil>", "[NOISE]", "[SPEECH]", "++BREATH++", "++", "", "(2)"}) {
        EXPECT_EQ(spokenWord(marker), std::nullopt) << marker;
    }
}

TEST(AppleHelperUnitTests, TextThatIsNotUtf8IsRepairedForJson) {
    EXPECT_EQ(validUtf8("caf\xC3\xA9 \xF0\x9F\x8E\x99"), "caf\xC3\xA9 \xF0\x9F\x8E\x99");
    EXPECT_EQ(validUtf8("a\xFF" "b"), "a\xEF\xBF\xBD" "b");
    EXPECT_EQ(validUtf8("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");     // overlong "/"
    EXPECT_EQ(validUtf8("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"); // surrogate
    EXPECT_EQ(validUtf8("\xE2\x82"), "\xEF\xBF\xBD\xEF\xBF\xBD");     // cut short
    EXPECT_EQ(shortened("abcdef", 3), "abc\xE2\x80\xA6");
}

struct AppleHelperProtocolTests : ::testing::Test {
    AppleHelperProtocolTests() : server(64) {
        server.add("echo", [](const RequestArgs& args, rapidjson::Document& result) {
            result.SetString(args.string("text").c_str(), result.GetAllocator());
        });
        server.add("fails", [](const RequestArgs&, rapidjson::Document&) { throw std::runtime_error("disk full"); });
        server.add("nan", [](const RequestArgs&, rapidjson::Document& result) { result.SetDouble(std::nan("")); });
    }
    std::vector<std::string> serve(const std::string& input) {
        std::istringstream stream(input);
        std::vector<std::string> lines;
        server.serve(stream, [&](std::string_view line) {
            lines.emplace_back(line);
            return true;
        });
        return lines;
    }
    HelperServer server;
};

TEST_F(AppleHelperProtocolTests, LinesAreAnsweredInOrderWhateverTheirEnding) {
    const std::string tooLong = R"({"op":"echo","args":{"text":")" + std::string(100, 'x') + "\"}}";
    const auto lines = serve("{\"id\":18446744073709551615,\"op\":\"echo\",\"args\":{\"text\":\"a\"}}\r\n" + tooLong +
                             "\n{\"id\":\"x\",\"op\":\"echo\",\"args\":{\"text\":\"b\"}}\n{\"op\":\"fails\"}");
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], R"({"id":18446744073709551615,"ok":true,"result":"a"})");
    EXPECT_EQ(lines[1], R"({"ok":false,"error":"The request is too long."})");
    EXPECT_EQ(lines[2], R"({"ok":true,"result":"b"})"); // only whole-number ids are echoed
    EXPECT_EQ(lines[3], R"({"ok":false,"error":"The operation failed: disk full"})");
}

TEST_F(AppleHelperProtocolTests, AnAnswerThatCannotBeWrittenBecomesAFailureLine) {
    EXPECT_EQ(server.respond(R"({"op":"nan"})"),
              R"({"ok":false,"error":"The helper produced an answer that could not be written as JSON."})");
}

TEST_F(AppleHelperProtocolTests, ServingStopsWhenAnswersCannotBeDelivered) {
    std::istringstream input("{\"op\":\"nan\"}\n{\"op\":\"nan\"}\n");
    int sent = 0;
    EXPECT_FALSE(server.serve(input, [&](std::string_view) {
        ++sent;
        return false;
    }));
    EXPECT_EQ(sent, 1);
}

class ScriptedRecognizer : public SpeechRecognizer {
public:
    explicit ScriptedRecognizer(std::vector<RecognizedWord> words) : m_words(std::move(words)) {}
    std::vector<RecognizedWord> recognize(std::span<const std::int16_t>) override { return m_words; }

private:
    std::vector<RecognizedWord> m_words;
};

struct AppleHelperTranscriberTests : ::testing::Test {
    SpeechTranscriber transcriber(std::vector<RecognizedWord> words, std::size_t decodedSamples = 1600) {
        return SpeechTranscriber(
            [this, decodedSamples](const auto&, int, const SpeechTranscriber::SampleConsumer& consume) {
                if (!decoderError.empty()) throw std::runtime_error(decoderError);
                const std::vector<std::int16_t> block(decodedSamples);
                for (int i = 0; i < 60; ++i) consume(block);
            },
            [this, words] {
                ++loads;
                if (loadFails) throw RequestError("The model is gone.");
                return std::make_unique<ScriptedRecognizer>(words);
            },
            1);
    }
    std::string failure(SpeechTranscriber& subject, const std::string& path) {
        try {
            subject.transcribe(path, "en-US");
        } catch (const RequestError& error) {
            return error.what();
        }
        return "<no failure>";
    }
    testing::TemporaryDirectory folder;
    std::string file = (folder / "talk.m4a").string();
    std::string decoderError;
    bool loadFails = false;
    int loads = 0;
    void SetUp() override { testing::writeText(file, "x"); }
};

TEST_F(AppleHelperTranscriberTests, TheRecognizerIsLoadedOnceAndAFailedLoadIsRetried) {
    auto subject = transcriber({{.text = "hello", .start = 0.1, .duration = 0.3}});
    loadFails = true;
    EXPECT_EQ(failure(subject, file), "The model is gone.");
    loadFails = false;
    EXPECT_EQ(subject.transcribe(file, "en_us").at(0).text, "hello");
    EXPECT_EQ(subject.transcribe(file, "en-US").size(), 1u);
    EXPECT_EQ(loads, 2);
}

TEST_F(AppleHelperTranscriberTests, FailuresAreExplainedInPlainWords) {
    auto silent = transcriber({});
    EXPECT_EQ(failure(silent, file), "No speech was recognized in this recording.");
    decoderError = "Invalid data found when processing input";
    EXPECT_EQ(failure(silent, file), "The audio file could not be read: Invalid data found when processing input.");
    auto tooLong = transcriber({{.text = "hi"}}, 16001); // 60 blocks of just over a second
    decoderError.clear();
    EXPECT_EQ(failure(tooLong, file),
              "The recording is longer than the 1-minute limit; transcribe it in shorter parts.");
    EXPECT_EQ(failure(silent, ""), "The audio file path is empty.");
    EXPECT_EQ(failure(silent, std::string("/a\0b", 4)), "The audio file path is not valid.");
    EXPECT_EQ(failure(silent, folder.path().string()), "The audio file could not be read: " + folder.path().string() +
                                                           " is a folder.");
    EXPECT_EQ(loads, 1); // and only the silent recording got as far as the recogniser
}

TEST(AppleHelperUnitTests, AModelFolderWithoutTheModelIsReportedBeforeLoading) {
    testing::TemporaryDirectory folder;
    std::filesystem::create_directories(folder / "en-us");
    try {
        PocketSphinxRecognizer recognizer(PocketSphinxModel::englishIn(folder.path()));
        FAIL() << "loaded a model that is not there";
    } catch (const RequestError& error) {
        EXPECT_NE(std::string(error.what()).find((folder / "en-us" / "mdef").string() + " is missing"),
                  std::string::npos)
            << error.what();
    }
}

} // namespace
} // namespace mibrel::applehelper
