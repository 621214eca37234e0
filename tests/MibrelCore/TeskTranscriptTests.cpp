#include "MibrelCore/Sources/TeskTranscript.h"

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace mibrel;
using Texts = std::vector<std::string>;

namespace {

Texts texts(const TeskTranscript& transcript) {
    Texts result;
    for (const auto& segment : transcript.segments) result.push_back(segment.text);
    return result;
}

} // namespace

TEST(TeskTranscriptFromPlainText, BlankLinesSeparateTrimmedSegments) {
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("a\r\n\r\nb")), (Texts{"a", "b"}));
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("a\nb")), Texts{"a\nb"});
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("a\r\nb")), Texts{"a\nb"});
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("\n\nfirst\n\n\n\n\nsecond\n\n")), (Texts{"first", "second"}));
    EXPECT_TRUE(TeskTranscript::fromPlainText(" \t\r\n\r\n\u00A0\u3000\n\n ").segments.empty());
    EXPECT_EQ(texts(TeskTranscript::fromPlainText("\u00A0 Hello there\u3000\n\n\u2003Yes.\u202F")),
              (Texts{"Hello there", "Yes."}));
}

TEST(TeskTranscriptFromPlainText, SegmentsGetDistinctUuidIdsAndNoTimes) {
    const auto transcript = TeskTranscript::fromPlainText("one\n\ntwo\n\nthree");
    std::set<std::string> ids;
    for (const auto& segment : transcript.segments) {
        EXPECT_TRUE(Uuid::parse(segment.id)) << segment.id;
        EXPECT_FALSE(segment.start || segment.end);
        ids.insert(segment.id);
    }
    EXPECT_EQ(ids.size(), 3u);
}
