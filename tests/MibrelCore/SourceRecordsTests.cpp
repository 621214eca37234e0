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

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

} // namespace

TEST(TeskSourceCoding, EmptyObjectIsAnUntitledSourceWithoutMedia) {
    const Date moment = at("2024-05-01T12:00:00Z");
    const platform::ScopedClockOverride clock([&] { return moment; });
    const auto source = json::decode<TeskSource>("{}");
    EXPECT_EQ(source.label, "Untitled source");
    EXPECT_NE(source.id, Uuid());
    EXPECT_NE(json::decode<TeskSource>("{}").id, source.id);
    EXPECT_EQ(source.date, moment);
    EXPECT_FALSE(source.mediaFilename || source.mediaKind || source.transcriptionStatus);
    EXPECT_EQ(json::decode<TeskSource>(R"({"label":null})").label, "Untitled source");

    // Absent values stay absent through a save.
    const std::string text = json::encode(source);
    EXPECT_FALSE(contains(text, "mediaFilename") || contains(text, "mediaKind") || contains(text, "null"));
    EXPECT_EQ(json::decode<TeskSource>(text), source);
}

TEST(TeskSourceCoding, RecordingWithoutKindIsAudio) {
    EXPECT_EQ(json::decode<TeskSource>(R"({"mediaFilename":"a.m4a"})").mediaKind, TeskMediaKind::audio);
    EXPECT_EQ(json::decode<TeskSource>(R"({"mediaFilename":"a.m4a","mediaKind":null})").mediaKind,
              TeskMediaKind::audio);
    EXPECT_EQ(json::decode<TeskSource>(R"({"mediaFilename":"v.mov","mediaKind":"video"})").mediaKind,
              TeskMediaKind::video);
    EXPECT_FALSE(json::decode<TeskSource>(R"({"label":"Notes"})").mediaKind);
    EXPECT_FALSE(decodes(R"({"mediaFilename":"v.mov","mediaKind":"film"})"));
}

TEST(TeskSourceCoding, TranscriptionStatusAndNotes) {
    const auto source = json::decode<TeskSource>(
        R"({"transcriptionStatus":{"kind":"needsReview","message":"Check names","segmentCount":12,)"
        R"("updatedAt":"2024-05-01T12:00:00Z"}})");
    EXPECT_EQ(source.transcriptionStatus, (TeskTranscriptionStatus{TeskTranscriptionStatusKind::needsReview,
                                                                   "Check names", 12, std::nullopt, std::nullopt,
                                                                   at("2024-05-01T12:00:00Z")}));

    EXPECT_FALSE(decodes(R"({"transcriptionStatus":{"kind":"complete","segmentCount":1,)"
                         R"("updatedAt":"2024-05-01T12:00:00Z"}})"));
    // A media note missing any key fails the whole source.
    const std::string note = R"("id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","text":"laughs")";
    EXPECT_TRUE(decodes(R"({"mediaNotes":[{"createdAt":"2024-05-01T12:00:00Z",)" + note + R"(,"timestamp":3.5}]})"));
    EXPECT_FALSE(decodes(R"({"mediaNotes":[{"createdAt":"2024-05-01T12:00:00Z",)" + note + "}]}"));
    EXPECT_FALSE(decodes(R"({"mediaNotes":[{)" + note + R"(,"timestamp":3.5}]})"));
    EXPECT_FALSE(decodes(R"({"mediaMemo":{"tone":"calm"}})"));
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
