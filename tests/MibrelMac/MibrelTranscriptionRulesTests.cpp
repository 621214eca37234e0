#include <stdexcept>

#include <gtest/gtest.h>

#include "MibrelMac/State/MibrelTranscriptCoverageSummary.h"
#include "MibrelMac/State/MibrelTranscriptionRules.h"

namespace mibrel {
namespace {

namespace rules = MibrelTranscriptionRules;
using Kind = TeskTranscriptionStatusKind;

TranscriptSegment timed(double start, double end, std::string text = "some words") {
    return {"id-" + std::to_string(start), start, end, std::move(text)};
}

TEST(TranscriptionRulesTest, DurationsRoundHalfAwayFromZeroAndNeverShowHours) {
    EXPECT_EQ(formatDuration(0.4), "0s");
    EXPECT_EQ(formatDuration(0.5), "1s");
    EXPECT_EQ(formatDuration(59.4), "59s");
    EXPECT_EQ(formatDuration(59.6), "1:00");
    EXPECT_EQ(formatDuration(125), "2:05");
    EXPECT_EQ(formatDuration(3725), "62:05");
}

TEST(TranscriptionRulesTest, CoverageCountsTimedSegmentsOnlyForTime) {
    const TeskTranscript transcript{{timed(5, 12.5, "one two"), {"u", std::nullopt, std::nullopt, "three\nfour five"},
                                     {"z", 20.0, 20.0, "six"}, timed(30, 40, "seven")}};
    const auto summary = coverageSummary(transcript, 100);
    EXPECT_EQ(summary.segmentCount, 4);
    EXPECT_EQ(summary.wordCount, 7);
    EXPECT_EQ(summary.firstStart, 5.0);
    EXPECT_EQ(summary.lastEnd, 40.0);
    EXPECT_EQ(summary.recognizedSeconds, 17.5);
    EXPECT_EQ(summary.statusText(), "Coverage 5s-40s of 1:40; 7 words; 4 segments");

    const auto untimed = coverageSummary({{{"u", std::nullopt, std::nullopt, "alone"}}}, 100);
    EXPECT_FALSE(untimed.recognizedSeconds);
    EXPECT_EQ(untimed.statusText(), "Duration 1:40; 1 word; 1 segment");
    EXPECT_EQ(coverageSummary({}, std::nullopt).statusText(), "0 words; 0 segments");
    EXPECT_EQ(coverageSummary({{timed(1, 2)}}, std::nullopt).statusText(), "Coverage 1s-2s; 2 words; 1 segment");
}

TEST(TranscriptionRulesTest, LongRecordingsNeedReviewWhenSpeechStartsLateOrStopsEarly) {
    // 100 s: speech may start up to 25 s in and stop from 80 s on.
    EXPECT_EQ(rules::transcriptionStatus({{timed(25, 90)}}, 100).kind, Kind::complete);
    const auto late = rules::transcriptionStatus({{timed(26, 70)}}, 100);
    EXPECT_EQ(late.kind, Kind::needsReview);
    EXPECT_EQ(late.message, "Transcript begins at 26s of 1:40. Review if earlier speech was expected.");
    EXPECT_EQ(late.segmentCount, 1);
    EXPECT_EQ(late.recognizedSeconds, 44.0);
    EXPECT_EQ(late.mediaDuration, 100.0);
    const auto early = rules::transcriptionStatus({{timed(0, 79)}}, 100);
    EXPECT_EQ(early.message, "Transcript stops at 1:19 of 1:40. Review if later speech was expected.");
    EXPECT_EQ(rules::transcriptionStatus({{timed(0, 80)}}, 100).kind, Kind::complete);

    // 1,000 s: both limits are capped at 30 s.
    EXPECT_EQ(rules::transcriptionStatus({{timed(31, 990)}}, 1000).kind, Kind::needsReview);
    EXPECT_EQ(rules::transcriptionStatus({{timed(30, 969)}}, 1000).kind, Kind::needsReview);
    EXPECT_EQ(rules::transcriptionStatus({{timed(30, 970)}}, 1000).kind, Kind::complete);

    const auto silent = rules::transcriptionStatus({}, 30);
    EXPECT_EQ(silent.kind, Kind::needsReview);
    EXPECT_EQ(silent.message, "No speech was recognized in 30s. Review the audio or transcribe again.");
    const auto shortSilent = rules::transcriptionStatus({}, 29);
    EXPECT_EQ(shortSilent.kind, Kind::complete);
    EXPECT_EQ(shortSilent.message, "Duration 29s; 0 words; 0 segments");
    EXPECT_EQ(rules::transcriptionStatus({{timed(200, 300)}}, std::nullopt).kind, Kind::complete);
}

TEST(TranscriptionRulesTest, ChunkSegmentsMoveOntoTheRecordingsTimeLine) {
    const std::vector<TranscriptSegment> chunk{{"a", 1.0, 2.5, "  hello  "},
                                               {"b", std::nullopt, std::nullopt, "untimed"},
                                               {"c", 3.0, 2.0, "backwards"},
                                               {"d", 4.0, 5.0, " \n "}};
    const auto moved = rules::offsetSegments(chunk, 24, 6.1);
    ASSERT_EQ(moved.size(), 3u);
    EXPECT_EQ(moved[0].text, "hello");
    EXPECT_EQ(moved[0].start, 25.0);
    EXPECT_EQ(moved[0].end, 26.5);
    EXPECT_EQ(moved[1].start, 24.0);
    EXPECT_DOUBLE_EQ(*moved[1].end, 30.1);
    EXPECT_EQ(moved[2].end, moved[2].start);
    EXPECT_NE(moved[0].id, "a");
    EXPECT_EQ(moved[0].id.size(), 36u);
}

TEST(TranscriptionRulesTest, APhraseHeardTwiceAcrossASeamIsKeptOnce) {
    const auto merged = rules::mergeAdjacentSegments({{"3", 12.5, 14.0, "we stayed"},
                                                      {"1", 2.0, 11.6, "we stayed"},
                                                      {"2", std::nullopt, std::nullopt, "first"},
                                                      {"4", 15.0, 16.0, "we stayed"},
                                                      {"5", 17.0, 18.0, "other"}});
    ASSERT_EQ(merged.size(), 4u);
    EXPECT_EQ(merged[0].id, "2"); // no start counts as 0
    EXPECT_EQ(merged[1].id, "1");
    EXPECT_EQ(merged[1].end, 14.0); // joined across 0.9 s
    EXPECT_EQ(merged[2].id, "4");  // 1.0 s apart stays separate
    EXPECT_EQ(merged[3].text, "other");

    const auto openEnded = rules::mergeAdjacentSegments({{"1", 0.0, 1.0, "x"}, {"2", 1.5, std::nullopt, "x"}});
    ASSERT_EQ(openEnded.size(), 1u);
    EXPECT_FALSE(openEnded[0].end);
}

TEST(TranscriptionRulesTest, FriendlyErrorsPointAtTheFix) {
    EXPECT_EQ(rules::friendlyTranscriptionError(std::runtime_error("Operation not permitted: Permission denied")),
              "Speech Recognition is not allowed. Open System Settings > Privacy & Security > Speech Recognition and "
              "enable Merivante Mibrel, then transcribe again.");
    EXPECT_EQ(rules::friendlyTranscriptionError(
                  "The on-device transcription helper was not found. Reinstall Merivante Mibrel."),
              "The on-device transcription helper was not found. Reinstall Merivante Mibrel or run from a fresh build.");
    EXPECT_EQ(rules::friendlyTranscriptionError("No speech was recognized in this recording."),
              "No speech was recognized in this recording.");
}

} // namespace
} // namespace mibrel
