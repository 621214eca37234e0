#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"

namespace mibrel {
namespace {

namespace engine = TeskAnalysisEngine;
using Strings = std::vector<std::string>;

Uuid id(int n) { return *Uuid::parse("00000000-0000-4000-8000-" + std::string(11, '0') + std::to_string(n % 10)); }

TranscriptSegment segment(std::string segmentID, std::string text) {
    TranscriptSegment s;
    s.id = std::move(segmentID);
    s.text = std::move(text);
    return s;
}

// Two interviews, a codebook and a hand-made set of applications.
class AnalysisEngineTest : public ::testing::Test {
protected:
    AnalysisEngineTest() {
        for (int n : {1, 2}) {
            TeskSource source;
            source.id = id(n);
            source.label = "Interview " + std::to_string(n * 5); // 5 and 10: natural order
            sources.push_back(source);
        }
        transcripts[id(1)].segments = {segment("a", "We stayed for the school."), segment("b", "Pay was low, hours long."),
                                       segment("c", "Mentors helped.\nA lot.")};
        transcripts[id(2)].segments = {segment("a", "The town is small.")};
    }

    Uuid addCode(const std::string& name) {
        TeskCode code;
        code.name = name;
        workspace.codes.append(code);
        return code.id;
    }

    void apply(const Uuid& source, const std::string& segmentID, const Uuid& code, std::optional<std::string> excerpt = {}) {
        TeskCodeApplication application;
        application.response = {source, segmentID, std::nullopt, std::nullopt};
        application.codeID = code;
        application.excerpt = std::move(excerpt);
        workspace.applications.append(application);
    }

    TeskAnalysisCorpus corpus() const { return {sources, transcripts, workspace}; }

    std::vector<TeskSource> sources;
    TeskTranscriptMap transcripts;
    TeskWorkspace workspace;
};

TEST(AnalysisEngineEmptyTest, AnEmptyCorpusGivesZerosAndEmptyRows) {
    const std::vector<TeskSource> sources;
    const TeskTranscriptMap transcripts;
    const TeskWorkspace workspace;
    const TeskAnalysisCorpus corpus{sources, transcripts, workspace};
    EXPECT_EQ(engine::corpusOverview(corpus), TeskCorpusOverview{});
    EXPECT_TRUE(engine::codeFrequency(corpus).empty());
    EXPECT_TRUE(engine::codeSourceMatrix(corpus).empty());
    EXPECT_TRUE(engine::codeCooccurrence(corpus).empty());
    EXPECT_TRUE(engine::wordFrequency(corpus, engine::CorpusScope{}, 1, 40).empty());
    EXPECT_TRUE(engine::themeCoverage(corpus).empty());
    EXPECT_TRUE(engine::representativeQuotes(corpus, 5).empty());
}

TEST_F(AnalysisEngineTest, OverviewCountsWordsAndCodedSegmentsWithoutClamping) {
    const Uuid support = addCode("Support");
    apply(id(1), "a", support);
    apply(id(1), "a", support); // the same segment twice is one coded segment
    auto overview = engine::corpusOverview(corpus());
    EXPECT_EQ(overview.segmentCount, 4);
    EXPECT_EQ(overview.totalWords, 5 + 5 + 4 + 4); // punctuation stays in its word; the newline separates
    EXPECT_DOUBLE_EQ(overview.averageWordsPerSegment, 18.0 / 4.0);
    EXPECT_EQ(overview.codedSegmentCount, 1);

    // Applications on segments that are gone still count: coverage can pass 1.
    for (const char* gone : {"x", "y", "z", "w"}) apply(id(1), gone, support);
    overview = engine::corpusOverview(corpus());
    EXPECT_EQ(overview.codedSegmentCount, 5);
    EXPECT_DOUBLE_EQ(overview.codedSegmentCoverage, 1.25);
}

TEST_F(AnalysisEngineTest, FrequencyAndMatrixSortByCountThenNaturalName) {
    const Uuid code10 = addCode("code 10");
    const Uuid code2 = addCode("Code 2");
    const Uuid unused = addCode("Unused");
    const Uuid pay = addCode("Pay");
    apply(id(1), "b", pay);
    apply(id(2), "a", pay);
    apply(id(1), "a", code10);
    apply(id(1), "c", code2);
    apply(id(9), "q", code2); // a source that is gone

    const auto frequency = engine::codeFrequency(corpus());
    Strings names;
    for (const auto& row : frequency) names.push_back(row.codeName);
    EXPECT_EQ(names, (Strings{"Code 2", "Pay", "code 10", "Unused"}));
    EXPECT_EQ(frequency[0].applicationCount, 2);
    EXPECT_EQ(frequency[0].sourceSpread, 2);
    EXPECT_EQ(frequency[3].applicationCount, 0);

    // The gone source drops out of the matrix total, so "Code 2" falls behind "Pay".
    const auto matrix = engine::codeSourceMatrix(corpus());
    names.clear();
    for (const auto& row : matrix) names.push_back(row.codeName);
    EXPECT_EQ(names, (Strings{"Pay", "Code 2", "code 10", "Unused"}));
    ASSERT_EQ(matrix[0].counts.size(), 2u);
    EXPECT_EQ(matrix[0].counts[1].sourceLabel, "Interview 10");
    EXPECT_EQ(matrix[3].counts[0].count, 0);
    (void)code2;
    (void)unused;
}

TEST_F(AnalysisEngineTest, CooccurrencePairsDistinctCodesPerSegmentByIdOrder) {
    const Uuid zeta = addCode("Zeta");
    const Uuid alpha = addCode("Alpha");
    const Uuid mid = addCode("Mid");
    apply(id(1), "a", zeta);
    apply(id(1), "a", alpha);
    apply(id(1), "a", mid);
    apply(id(1), "b", mid);
    apply(id(1), "b", mid); // one code twice: no pair
    apply(id(2), "a", zeta);
    apply(id(2), "a", id(7)); // a code no longer in the codebook

    const auto rows = engine::codeCooccurrence(corpus());
    ASSERT_EQ(rows.size(), 4u);
    for (const auto& row : rows) {
        EXPECT_LT(row.codeAID.uuidString(), row.codeBID.uuidString());
        EXPECT_EQ(row.count, 1);
    }
    const auto deleted = std::find_if(rows.begin(), rows.end(), [](const auto& row) {
        return row.codeAName == "Code" || row.codeBName == "Code";
    });
    ASSERT_NE(deleted, rows.end());
    EXPECT_EQ(engine::codeFrequency(corpus()).size(), 3u);
}

TEST(AnalysisEngineTokenizeTest, KeepsCompoundsAndContractionsAndDropsTheRest) {
    EXPECT_EQ(engine::tokenize("The 1998 well-being -- don't"), (Strings{"well-being", "don't"}));
    EXPECT_EQ(engine::tokenize("'a' said 'ok ZOË’s 3rd -x- 42"), (Strings{"said", "ok", "zo", "3rd"}));
    EXPECT_EQ(engine::tokenize("Teachers, teachers; TEACHERS!"), (Strings{"teachers", "teachers", "teachers"}));
    EXPECT_TRUE(engine::tokenize("").empty());
}

TEST_F(AnalysisEngineTest, WordFrequencyCountsByScopeAndCutsStably) {
    transcripts[id(2)].segments.push_back(segment("b", "School school pay mentors"));
    const auto rows = engine::wordFrequency(corpus(), engine::CorpusScope{}, 1, 2);
    // school 3, then mentors and pay with 2 each: at the cut natural order decides.
    EXPECT_EQ(rows, (std::vector<TeskWordFrequencyRow>{{"school", 3}, {"mentors", 2}}));
    EXPECT_TRUE(engine::wordFrequency(corpus(), engine::CorpusScope{}, 1, 0).empty());
    EXPECT_EQ(engine::wordFrequency(corpus(), engine::CorpusScope{}, 2, 40).size(), 3u);

    const Uuid pay = addCode("Pay");
    apply(id(1), "b", pay);
    apply(id(1), "b", pay);                    // the same segment twice counts twice
    apply(id(2), "a", pay, "Tiny town pay"); // an excerpt stands in for its segment
    apply(id(2), "zz", pay);                 // no such segment: no text
    const auto inCode = engine::wordFrequency(corpus(), engine::CodeScope{pay}, 1, 10);
    ASSERT_FALSE(inCode.empty());
    EXPECT_EQ(inCode[0], (TeskWordFrequencyRow{"pay", 3}));

    TeskCategory category;
    category.codeIDs = {pay};
    workspace.categories.append(category);
    TeskTheme theme;
    theme.categoryIDs = {category.id};
    workspace.themes.append(theme);
    EXPECT_EQ(engine::wordFrequency(corpus(), engine::ThemeScope{theme.id}, 1, 10), inCode);
    EXPECT_TRUE(engine::wordFrequency(corpus(), engine::ThemeScope{id(8)}, 1, 10).empty());
}

// The corpus count reads words in place, sixteen bytes at a time; it must agree with the
// word-by-word tokenizer whatever the text's case, punctuation and word lengths.
TEST_F(AnalysisEngineTest, CorpusCountsAgreeWithTheTokenizer) {
    const std::string ascii = "Well-Being of TEACHERS' work -- 'quoted' don't-stop 1998 2nd x y superlongwordsthatgoonandon "
                              "Superlongwordsthatgoonandon, ab-- --cd ''ef'' sixteen-chars-xx end";
    const std::string accented = ascii + " caf\xC3\xA9 K\xE2\x84\xAA";
    transcripts[id(1)].segments = {segment("a", accented), segment("b", ascii.substr(7))};
    transcripts[id(2)].segments = {segment("a", ascii.substr(13))};
    std::map<std::string, std::int64_t> expected;
    for (const auto& piece : {accented, ascii.substr(7), ascii.substr(13)}) {
        for (const auto& token : engine::tokenize(piece)) ++expected[token];
    }
    std::map<std::string, std::int64_t> counted;
    for (const auto& row : engine::wordFrequency(corpus(), engine::CorpusScope{}, 1, 1000)) counted[row.word] = row.count;
    EXPECT_EQ(counted, expected);
    EXPECT_EQ(expected["superlongwordsthatgoonandon"], 6);
}

// Seeded random texts: words of every length around the eight- and sixteen-byte marks and
// some longer than the 64-byte blocks the scan reads, any case, marks at the ends, numbers
// and stop words, over enough sources and distinct words that both threads work and the
// table grows. Texts of exactly one and two blocks end on a word.
TEST(AnalysisEngineWordCountTest, RandomCorporaCountLikeTheTokenizer) {
    std::mt19937 random(20261122);
    const std::string alphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789'-";
    const std::string separators = " ,.;:!?\n\t\"()";
    std::vector<TeskSource> sources(7);
    TeskTranscriptMap transcripts;
    std::map<std::string, std::int64_t> expected;
    for (TeskSource& source : sources) {
        for (int n = 0; n < 30; ++n) {
            std::string text;
            for (int w = 0; w < 40; ++w) {
                const std::size_t length = random() % 25 == 0 ? 60 + random() % 100 : 1 + random() % 33;
                for (std::size_t i = 0; i < length; ++i) text += alphabet[random() % (w % 3 == 0 ? 26 : alphabet.size())];
                text += random() % 5 == 0 ? std::string(" the ") : std::string(1, separators[random() % separators.size()]);
            }
            for (const auto& token : engine::tokenize(text)) ++expected[token];
            transcripts[source.id].segments.push_back(segment("s" + std::to_string(n), text));
        }
        for (const std::string& text : {std::string(64, 'q'), std::string(63, 'w') + " " + std::string(64, 'e')}) {
            for (const auto& token : engine::tokenize(text)) ++expected[token];
            transcripts[source.id].segments.push_back(segment("block" + std::to_string(text.size()), text));
        }
    }
    const TeskWorkspace workspace;
    std::map<std::string, std::int64_t> counted;
    for (const auto& row : engine::wordFrequency({sources, transcripts, workspace}, engine::CorpusScope{}, 1, 1'000'000)) {
        counted[row.word] = row.count;
    }
    EXPECT_GT(expected.size(), 5000u);
    EXPECT_EQ(counted, expected);
}

TEST_F(AnalysisEngineTest, ThemeCoverageWarnsInOrderAndCountsThroughCategories) {
    const Uuid pay = addCode("Pay");
    const Uuid hours = addCode("Hours");
    apply(id(1), "b", pay);
    apply(id(1), "c", hours);
    TeskCategory category;
    category.codeIDs = {hours, id(6)};
    workspace.categories.append(category);
    TeskTheme workload;
    workload.name = "Workload";
    workload.codeIDs = {pay};
    workload.categoryIDs = {category.id, id(5)};
    TeskTheme empty;
    empty.name = "Belonging";
    empty.interpretiveClaim = "  \n";
    empty.counterEvidence = "Some stayed alone.";
    workspace.themes.append(empty);
    workspace.themes.append(workload);

    auto rows = engine::themeCoverage(corpus());
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].themeName, "Workload");
    EXPECT_EQ(rows[0].codeCount, 3);     // the dangling code id counts
    EXPECT_EQ(rows[0].categoryCount, 2); // as listed, found or not
    EXPECT_EQ(rows[0].applicationCount, 2);
    EXPECT_EQ(rows[0].warnings, (Strings{"Missing interpretive claim", "Evidence comes from one source",
                                         "No exemplar quote", "No counter-evidence note"}));
    EXPECT_EQ(rows[1].warnings,
              (Strings{"Missing interpretive claim", "No coded evidence", "Evidence comes from one source", "No exemplar quote"}));

    sources.pop_back(); // a one-source project never warns about spread
    rows = engine::themeCoverage(corpus());
    EXPECT_EQ(rows[0].warnings, (Strings{"Missing interpretive claim", "No exemplar quote", "No counter-evidence note"}));
}

TEST_F(AnalysisEngineTest, StripesCoverEverySegmentAndQuotesRankByThemes) {
    const Uuid b = addCode("B");
    const Uuid a = addCode("A");
    apply(id(1), "b", b);
    apply(id(1), "b", a);
    apply(id(1), "b", b);
    const auto stripes = engine::codingStripes(corpus(), id(1));
    ASSERT_EQ(stripes.size(), 3u);
    EXPECT_TRUE(stripes[0].codeIDs.empty());
    EXPECT_EQ(stripes[1].segmentIndex, 1);
    EXPECT_EQ(stripes[1].codeIDs, (std::vector<Uuid>{std::min(a, b), std::max(a, b)}));
    EXPECT_TRUE(engine::codingStripes(corpus(), id(4)).empty());

    const auto quote = [&](int themes, int second, TeskQuoteRole role) {
        TeskQuote q;
        q.text = std::to_string(themes) + "/" + std::to_string(second);
        q.themeIDs.assign(static_cast<std::size_t>(themes), id(3));
        q.role = role;
        q.createdAt = platform::Date(std::chrono::seconds(second));
        workspace.quotes.append(q);
    };
    quote(1, 5, TeskQuoteRole::exemplar);
    quote(2, 9, TeskQuoteRole::exemplar);
    quote(1, 1, TeskQuoteRole::exemplar);
    quote(3, 1, TeskQuoteRole::supporting);
    Strings texts;
    for (const auto& q : engine::representativeQuotes(corpus(), 2)) texts.push_back(q.text);
    EXPECT_EQ(texts, (Strings{"2/9", "1/1"}));
}

} // namespace
} // namespace mibrel
