#include "MibrelCore/Sources/TeskTranscript.h"

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace mibrel;
namespace json = platform::json;

namespace {

std::vector<std::string> texts(const TeskTranscript& transcript) {
    std::vector<std::string> result;
    for (const auto& segment : transcript.segments) result.push_back(segment.text);
    return result;
}

} // namespace

TEST(TeskTranscriptFromPlainText, BlankLinesSeparateSegments) {
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("a\r\n\r\nb")), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("a\nb")), std::vector<std::string>{"a\nb"});
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("a\r\nb")), std::vector<std::string>{"a\nb"});
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("\n\nfirst\n\n\n\n\nsecond\n\n")),
              (std::vector<std::string>{"first", "second"}));
}

TEST(TeskTranscriptFromPlainText, TrimsPartsAndDropsEmptyOnes) {
    EXPECT_TRUE(TeskTranscript::fromPlainText("").segments.empty());
    EXPECT_TRUE(TeskTranscript::fromPlainText(" \t\r\n\r\n\u00A0\u3000\n\n ").segments.empty());
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("\u00A0 Hello there\u3000\n\n\u2003Yes.\u202F")),
              (std::vector<std::string>{"Hello there", "Yes."}));
}

TEST(TeskTranscriptFromPlainText, SegmentsGetDistinctUuidIdsAndNoTimes) {
    const auto transcript = TeskTranscript::fromPlainText("one\n\ntwo\n\nthree");
    ASSERT_EQ(transcript.segments.size(), 3u);
    std::set<std::string> ids;
    for (const auto& segment : transcript.segments) {
        EXPECT_TRUE(Uuid::parse(segment.id)) << segment.id;
        EXPECT_FALSE(segment.start);
        EXPECT_FALSE(segment.end);
        ids.insert(segment.id);
    }
    EXPECT_EQ(ids.size(), 3u);
    EXPECT_EQ(transcript.fullText(), "one\n\ntwo\n\nthree");
    EXPECT_EQ(TeskTranscript{}.fullText(), "");
}

TEST(TeskTranscriptCoding, SegmentsRequireIdAndText) {
    EXPECT_THROW(json::decode<TeskTranscript>(R"({"segments":[{"text":"no id"}]})"), json::DecodingError);
    EXPECT_THROW(json::decode<TeskTranscript>(R"({"segments":[{"id":"s1"}]})"), json::DecodingError);
    EXPECT_THROW(json::decode<TeskTranscript>("{}"), json::DecodingError);
}
