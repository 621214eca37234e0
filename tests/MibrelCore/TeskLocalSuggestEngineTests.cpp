#include <gtest/gtest.h>

#include "MibrelCore/Assist/TeskLocalSuggestEngine.h"

namespace mibrel {
namespace {

namespace engine = TeskLocalSuggestEngine;

TeskCode code(std::string name, std::string definition) {
    TeskCode result;
    result.name = std::move(name);
    result.definition = std::move(definition);
    return result;
}

TranscriptSegment segment(std::string text) { return {"s1", std::nullopt, std::nullopt, std::move(text)}; }

TEST(LocalSuggestEngineTest, TokensAreLowerCaseAlphanumericRunsOfThreeOrMore) {
    EXPECT_EQ(engine::tokens("The teacher's WORK-load, and 2024 pay: ok?"),
              (std::set<std::string>{"teacher", "work", "load", "2024", "pay"}));
    EXPECT_EQ(engine::tokens("Élève über café"), (std::set<std::string>{"élève", "über", "café"}));
    EXPECT_TRUE(engine::tokens("it is of to the and their").empty());
}

TEST(LocalSuggestEngineTest, CodesWithoutWordsOfTheirOwnNeverMatch) {
    const std::vector<TeskCode> codes{code("On", "it is for the"), code("Us", "")};
    EXPECT_FALSE(engine::suggest(segment("it is for the on us"), Uuid(), codes, 3));
    EXPECT_FALSE(engine::suggest(segment("an ok"), Uuid(), {code("Pay", "salary")}, 3));
    EXPECT_FALSE(engine::suggest(segment("salary talk"), Uuid(), {}, 3));
}

// "Workload hours" shares 2 of its 4 words, "Mentor" 1 of its 2: both 0.5, codebook order
// kept, and the second code lifts the confidence by 0.08.
TEST(LocalSuggestEngineTest, EqualScoresKeepTheCodebookOrder) {
    const std::vector<TeskCode> codes{code("Workload hours", "late evenings"), code("Mentor", "support"),
                                      code("Pay", "salary")};
    const Uuid source = Uuid::random();
    const auto suggestion = engine::suggest(segment("Late hours, but my mentor helped."), source, codes, 3);
    ASSERT_TRUE(suggestion);
    EXPECT_EQ(suggestion->suggestedCodeIDs, (std::vector<Uuid>{codes[0].id, codes[1].id}));
    EXPECT_DOUBLE_EQ(suggestion->confidence, 0.58);
    EXPECT_EQ(suggestion->response, (TeskResponseRef{source, "s1", std::nullopt, std::nullopt}));
    EXPECT_EQ(suggestion->status, TeskSuggestionStatus::pending);
    EXPECT_EQ(suggestion->rationale.rfind("Matched terms: ", 0), 0u);
}

TEST(LocalSuggestEngineTest, AtMostThreeCodesAndAConfidenceCappedAtNinetyFive) {
    const std::vector<TeskCode> codes{code("Alpha", "beta gamma delta"), code("Alpha beta", ""),
                                      code("Alpha gamma", ""), code("Beta gamma", "epsilon")};
    const auto four = engine::suggest(segment("alpha beta gamma"), Uuid(), codes, 3);
    ASSERT_TRUE(four);
    EXPECT_EQ(four->suggestedCodeIDs, (std::vector<Uuid>{codes[1].id, codes[2].id, codes[0].id}));
    EXPECT_DOUBLE_EQ(four->confidence, 0.95); // 1.0 + 0.16, capped

    const std::vector<TeskCode> nine{code("one two three four five six seven eight nine ten", ""),
                                     code("one", ""), code("two", "")};
    const auto capped = engine::suggest(segment("one two three four five six seven eight nine"), Uuid(), nine, 3);
    EXPECT_DOUBLE_EQ(capped->confidence, 0.95); // 0.9 + 0.16 would be 1.06
    EXPECT_EQ(capped->rationale.substr(0, 15), "Matched terms: ");
    // Six terms at most, the first match's first.
    const std::string terms = capped->rationale.substr(15, capped->rationale.size() - 16);
    EXPECT_EQ(std::count(terms.begin(), terms.end(), ','), 5);
    EXPECT_EQ(capped->rationale.back(), '.');
}

} // namespace
} // namespace mibrel
