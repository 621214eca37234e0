#include "MibrelCore/Sources/TeskSource.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/TestSupport.h"

using namespace mibrel;
namespace json = platform::json;

namespace {

Date at(std::string_view iso) { return *platform::parseISO8601(iso); }

bool decodes(std::string_view text) {
    try {
        (void)json::decode<TeskSource>(std::string(text));
        return true;
    } catch (const json::DecodingError&) {
        return false;
    }
}

} // namespace

TEST(TeskSourceCoding, EmptyObjectIsAnUntitledSourceWithoutMedia) {
    const Date moment = at("2024-05-01T12:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    const auto source = json::decode<TeskSource>("{}");
    EXPECT_EQ(source.label, "Untitled source");
    EXPECT_NE(source.id, Uuid());
    EXPECT_EQ(source.date, moment);
    EXPECT_FALSE(source.mediaFilename || source.mediaKind || source.transcriptionStatus);
    EXPECT_EQ(json::decode<TeskSource>(json::encode(source)), source);
}

TEST(TeskSourceCoding, RecordingWithoutKindIsAudio) {
    EXPECT_EQ(json::decode<TeskSource>(R"({"mediaFilename":"a.m4a"})").mediaKind, TeskMediaKind::audio);
    EXPECT_EQ(json::decode<TeskSource>(R"({"mediaFilename":"v.mov","mediaKind":"video"})").mediaKind,
              TeskMediaKind::video);
    EXPECT_FALSE(json::decode<TeskSource>(R"({"label":"Notes"})").mediaKind);
}

TEST(TeskSourceCoding, StatusAndNotesRequireEveryKey) {
    const std::string status = R"("kind":"complete","segmentCount":1,"updatedAt":"2024-05-01T12:00:00Z")";
    EXPECT_TRUE(decodes(R"({"transcriptionStatus":{"message":"",)" + status + "}}"));
    EXPECT_FALSE(decodes(R"({"transcriptionStatus":{)" + status + "}}"));
    const std::string note = R"("id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","text":"laughs","timestamp":3.5)";
    EXPECT_TRUE(decodes(R"({"mediaNotes":[{"createdAt":"2024-05-01T12:00:00Z",)" + note + "}]}"));
    EXPECT_FALSE(decodes(R"({"mediaNotes":[{)" + note + "}]}"));
}

TEST(TeskSourceCoding, PopulatedSourceRoundTrips) {
    const platform::ScopedClockOverride clock([] { return at("2024-05-01T12:00:00Z"); });
    const TeskSource source{
        .label = "Interview 3", .tags = {"pilot", "café"}, .mediaFilename = "interview.mov",
        .mediaKind = TeskMediaKind::video, .transcriptionMediaFilename = "interview.wav",
        .transcriptionStatus = TeskTranscriptionStatus{TeskTranscriptionStatusKind::complete, "Done", 40, 1795.5,
                                                       1800.25, at("2024-05-02T08:00:00Z")},
        .mediaMemo = {"tone", "pauses", "setting", "gesture", "interaction", "nonverbal", "notes"},
        .mediaNotes = {TeskMediaNote{.timestamp = 61.5, .text = "long pause"}}};
    const std::string text = json::encode(source);
    EXPECT_EQ(json::decode<TeskSource>(text), source);
    EXPECT_EQ(mibrel::testing::unsortedKeysIn(text), "");
}
