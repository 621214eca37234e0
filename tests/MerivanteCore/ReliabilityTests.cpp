#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>

#include "MerivanteCore/Statistics/LatentVariableSupport.h"
#include "MerivanteCore/Statistics/OmegaReliabilityAnalyzer.h"
#include "MerivanteCore/Statistics/ReliabilityAnalyzer.h"
#include "MerivanteCore/Statistics/ScaleScoreBuilder.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonCoding.h"

using merivante::AnalysisReadinessIssue;
using merivante::AnalysisReadinessStatus;
using merivante::ItemMatrix;
using merivante::ReliabilityMissingDataRule;
using merivante::ScaleScoreMethod;
namespace Alpha = merivante::ReliabilityAnalyzer;
namespace Omega = merivante::OmegaReliabilityAnalyzer;
namespace Latent = merivante::LatentVariableSupport;
namespace Scores = merivante::ScaleScoreBuilder;

namespace {

constexpr auto kListwise = ReliabilityMissingDataRule::listwiseDeletion;
constexpr auto kItemMean = ReliabilityMissingDataRule::availableItemMean;
constexpr auto kThreshold = ReliabilityMissingDataRule::excludeIfMissingMoreThanThreshold;
constexpr auto kNone = std::nullopt;

const rapidjson::Value& references() {
    static const rapidjson::Document document = [] {
        rapidjson::Document parsed;
        parsed.Parse(platform::files::readFile(std::string(MIBREL_STATISTICS_FIXTURES) + "/reliability.json").c_str());
        if (parsed.HasParseError() || !parsed.HasMember("sets")) throw std::runtime_error("unreadable references");
        return parsed;
    }();
    return document["sets"];
}

const rapidjson::Value& referenceSet(const std::string& name) {
    for (const auto& set : references().GetArray()) {
        if (name == set["name"].GetString()) return set;
    }
    throw std::runtime_error("no reference set " + name);
}

std::vector<double> numbers(const rapidjson::Value& array) {
    std::vector<double> values;
    for (const auto& value : array.GetArray()) values.push_back(value.GetDouble());
    return values;
}

ItemMatrix rowsOf(const rapidjson::Value& array) {
    ItemMatrix rows;
    for (const auto& row : array.GetArray()) {
        const auto values = numbers(row);
        rows.emplace_back(values.begin(), values.end());
    }
    return rows;
}

ItemMatrix columnsOf(const ItemMatrix& rows) {
    ItemMatrix columns(rows.front().size());
    for (const auto& row : rows) {
        for (std::size_t item = 0; item < row.size(); ++item) columns[item].push_back(row[item]);
    }
    return columns;
}

std::vector<std::string> namesFor(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 1; i <= count; ++i) names.push_back("item" + std::to_string(i));
    return names;
}

// Every order of 0, 1, 2 above two levels of a common part: the set of rows is unchanged by
// swapping items, so all variances and all covariances are equal and the loadings are too.
ItemMatrix exchangeableItems() {
    constexpr double kOrders[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    ItemMatrix rows;
    for (double level : {0.0, 2.0}) {
        for (const auto& order : kOrders) rows.push_back({level + order[0], level + order[1], level + order[2]});
    }
    return rows;
}

using Issues = std::vector<AnalysisReadinessIssue>;

} // namespace

TEST(ReliabilityReferenceTests, AlphaAndItemDiagnosticsAgreeWithR) {
    for (const auto& set : references().GetArray()) {
        SCOPED_TRACE(set["name"].GetString());
        const ItemMatrix rows = rowsOf(set["rows"]);
        const std::size_t k = rows.front().size();
        const auto result = Alpha::analyze("Construct", namesFor(k), rows, kListwise, ScaleScoreMethod::mean, 1);
        EXPECT_EQ(result.casesUsed, static_cast<std::int64_t>(rows.size()));
        ASSERT_TRUE(result.alpha && result.averageInterItemCorrelation);
        EXPECT_NEAR(*result.alpha, set["alpha"].GetDouble(), 1e-9);
        EXPECT_NEAR(*result.averageInterItemCorrelation, set["averageInterItemCorrelation"].GetDouble(), 1e-9);
        const auto corrected = numbers(set["correctedItemTotalCorrelations"]), deleted = numbers(set["alphaIfDeleted"]);
        const auto means = numbers(set["itemMeans"]), deviations = numbers(set["itemStandardDeviations"]);
        for (std::size_t i = 0; i < k; ++i) {
            const auto& item = result.itemStatistics[i];
            ASSERT_TRUE(item.correctedItemTotalCorrelation && item.alphaIfDeleted);
            ASSERT_TRUE(item.mean && item.standardDeviation);
            EXPECT_NEAR(*item.correctedItemTotalCorrelation, corrected[i], 1e-9) << i;
            EXPECT_NEAR(*item.alphaIfDeleted, deleted[i], 1e-9) << i;
            EXPECT_NEAR(*item.mean, means[i], 1e-9) << i;
            EXPECT_NEAR(*item.standardDeviation, deviations[i], 1e-9) << i;
            const auto correlations = numbers(set["correlations"][static_cast<rapidjson::SizeType>(i)]);
            for (std::size_t j = 0; j < k; ++j)
                EXPECT_NEAR(*result.interItemCorrelationMatrix[i][j], correlations[j], 1e-9) << i << "," << j;
        }
    }
}

TEST(ReliabilityReferenceTests, OmegaAgreesWithRsPrincipalAxisFit) {
    for (const auto& set : references().GetArray()) {
        SCOPED_TRACE(set["name"].GetString());
        const auto result = Omega::analyze(columnsOf(rowsOf(set["rows"])));
        ASSERT_TRUE(result);
        // R iterates to a 1e-14 change in total communality; this fit stops at a 1e-9 change
        // in any one, so the two stop at slightly different points of the same slow approach
        // (within 1e-8 here, the slowest being the reversed item set).
        EXPECT_NEAR(result->omegaTotal, set["omega"].GetDouble(), 1e-7);
        const auto loadings = numbers(set["loadings"]);
        ASSERT_EQ(result->loadings.size(), loadings.size());
        for (std::size_t i = 0; i < loadings.size(); ++i) EXPECT_NEAR(result->loadings[i], loadings[i], 1e-7) << i;
        EXPECT_NEAR(*result->cronbachAlpha, set["alpha"].GetDouble(), 1e-9);
    }
}

TEST(ReliabilityAnalyzerTests, BandsAndActionsChangeExactlyAtTheirBoundaries) {
    EXPECT_EQ(Alpha::interpretation(0.7, 5, 100),
              "Cronbach's alpha is 0.700, which is adequate for early or group-level research use internal "
              "consistency evidence for these 5 items. This does not establish that the construct is valid.");
    const std::string report = "Report with item-total diagnostics and validity limitations.";
    // Each boundary belongs to the band above it; the double just below it to the band below.
    const std::tuple<double, const char*, const char*, std::string> boundaries[] = {
        {0.6, "weak", "cautionary", "Use only for descriptive or exploratory work and document the limitation."},
        {0.7, "cautionary", "adequate for early", report},
        {0.8, "adequate for early", "strong", report},
        {0.9, "strong", "very high", "Inspect item redundancy and consider whether items are too similar."}};
    for (const auto& [boundary, lower, upper, action] : boundaries) {
        const double below = std::nextafter(boundary, 0.0);
        EXPECT_NE(Alpha::interpretation(boundary, 5, 100).find(std::string("which is ") + upper), std::string::npos);
        EXPECT_NE(Alpha::interpretation(below, 5, 100).find(std::string("which is ") + lower), std::string::npos);
        EXPECT_EQ(Alpha::recommendedAction(boundary, 5), action) << boundary;
    }
    EXPECT_EQ(Alpha::recommendedAction(std::nextafter(0.6, 0.0), 5),
              "Do not use this as a scale score without revision.");
    // The item count is judged before alpha.
    EXPECT_EQ(Alpha::recommendedAction(0.95, 2), "Add or review items before treating this as a stable scale.");
    EXPECT_EQ(Alpha::recommendedAction(kNone, 2),
              "Check missing data, item coding, and item eligibility before reporting reliability.");
}

TEST(ReliabilityAnalyzerTests, WarningsAndInterpretationSayWhatLimitsTheFigure) {
    EXPECT_EQ(Alpha::warnings(0.9, 5, 100, kListwise),
              (std::vector<std::string>{"Reliability evidence does not prove validity.",
                                        "Very high alpha can indicate item redundancy; inspect item content."}));
    EXPECT_EQ(Alpha::warnings(std::nextafter(0.9, 0.0), 5, 100, kListwise).size(), 1u);
    EXPECT_EQ(Alpha::warnings(kNone, 2, 29, kItemMean),
              (std::vector<std::string>{
                  "Reliability evidence does not prove validity.",
                  "Cronbach alpha could not be estimated with the prepared item matrix.",
                  "Missing item responses were handled with available-item mean; report this rule with the "
                  "scale score.",
                  "Sample size is below 30; treat reliability as unstable and descriptive.",
                  "Fewer than 3 items gives limited reliability evidence."}));
    EXPECT_EQ(Alpha::warnings(0.5, 3, 30, kThreshold)[1],
              "Missing item responses were handled with exclude case if missing more than threshold; report this "
              "rule with the scale score.");

    EXPECT_EQ(Alpha::interpretation(kNone, 4, 100), "Reliability could not be estimated with the available data.");
    EXPECT_EQ(Alpha::interpretation(0.8126, 4, 29),
              "Cronbach's alpha is 0.813, which is strong internal consistency evidence for these 4 items. Because the "
              "sample is small, this should be reported as unstable descriptive evidence. This does not establish that "
              "the construct is valid.");
}

TEST(ReliabilityAnalyzerTests, NegativeAlphaIsReportedNotHidden) {
    // The first two items always sum to 6, so the total varies less than any item.
    const ItemMatrix rows{{1, 5, 3}, {2, 4, 1}, {3, 3, 5}, {4, 2, 2}, {5, 1, 4}};
    const auto result = Alpha::analyze("Mixed", namesFor(3), rows, kListwise, ScaleScoreMethod::sum, 1);
    EXPECT_EQ(result.alpha, -3.0);
    EXPECT_TRUE(result.interpretation.starts_with("Cronbach's alpha is -3.000, which is weak internal"))
        << result.interpretation;
    EXPECT_EQ(result.recommendedAction, "Do not use this as a scale score without revision.");
    EXPECT_EQ(result.scaleScoreMean, 9.0);
}

TEST(ReliabilityAnalyzerTests, PreparedRowsFollowTheMissingDataRule) {
    const ItemMatrix rows{{1, 2, 3, 4}, {kNone, kNone, kNone, kNone}, {2, kNone, 4, kNone}, {}};
    EXPECT_EQ(Alpha::preparedRows(rows, kListwise, 0), (ItemMatrix{{1, 2, 3, 4}}));
    const ItemMatrix filled{{1, 2, 3, 4}, {2, 3, 4, 3}};
    for (auto rule : {kItemMean, kThreshold}) {
        // A row without answers is dropped however low the bar.
        EXPECT_EQ(Alpha::preparedRows(rows, rule, 0), filled);
        EXPECT_EQ(Alpha::preparedRows(rows, rule, 0.5), filled);
        EXPECT_EQ(Alpha::preparedRows(rows, rule, 0.51).size(), 1u);
        // 8 of 10 answered meets 0.8, although 1 - 0.8 falls just below 0.2 in binary.
        ItemMatrix eightOfTen{{1, 2, 3, 4, 5, 6, 7, 8, kNone, kNone}};
        EXPECT_EQ(Alpha::preparedRows(eightOfTen, rule, 0.8).size(), 1u);
    }
    const auto result = Alpha::analyze("C", namesFor(4), rows, kItemMean, ScaleScoreMethod::mean, 0.5);
    EXPECT_EQ(result.casesUsed, 2);
    EXPECT_EQ(result.itemStatistics[1].missingCount, 3);
    EXPECT_EQ(result.itemStatistics[1].mean, 2.5);
}

TEST(ReliabilityAnalyzerTests, ReadinessIssuesComeInTheirOrder) {
    using enum AnalysisReadinessStatus;
    const auto nothing = Alpha::readiness({"only"}, {}, kListwise, 1);
    EXPECT_EQ(nothing.status, blocked);
    EXPECT_EQ(nothing.minimumRequired, "at least two items and at least two usable cases");
    EXPECT_EQ(nothing.issues, Issues({{blocked, "Cronbach alpha needs at least two item columns."},
                                      {blocked, "No rows are available for reliability analysis."},
                                      {blocked, "Fewer than two complete or prepared cases are available."}}));

    const ItemMatrix small = exchangeableItems();
    const auto imputed = Alpha::readiness(namesFor(3), small, kThreshold, 0.5);
    EXPECT_EQ(imputed.status, caution);
    EXPECT_EQ(imputed.validCases, 12);
    EXPECT_EQ(imputed.issues,
              Issues({{caution, "Cases used is below 30; treat alpha as unstable descriptive evidence."},
                      {caution, "Missing item responses are imputed from available item means; report this rule."}}));

    ItemMatrix thirty;
    for (int copy = 0; copy < 3; ++copy) thirty.insert(thirty.end(), small.begin(), small.end() - 2);
    EXPECT_EQ(Alpha::readiness(namesFor(3), thirty, kListwise, 1).status, ready);
}

TEST(ReliabilityAnalyzerTests, AConstantItemLosesItsCorrelationsButNotAlpha) {
    const ItemMatrix rows{{1, 3, 2}, {2, 3, 2}, {3, 3, 4}, {4, 3, 5}, {5, 3, 4}};
    const auto result = Alpha::analyze("C", namesFor(3), rows, kListwise, ScaleScoreMethod::mean, 1);
    ASSERT_TRUE(result.alpha);
    for (std::size_t j = 0; j < 3; ++j) EXPECT_FALSE(result.interItemCorrelationMatrix[1][j]) << j;
    ASSERT_TRUE(result.interItemCorrelationMatrix[0][2]);
    EXPECT_EQ(result.interItemCorrelationMatrix[0][0], 1.0);
    // The average is over the one pair that has a correlation.
    EXPECT_EQ(result.averageInterItemCorrelation, result.interItemCorrelationMatrix[0][2]);
    EXPECT_FALSE(result.itemStatistics[1].correctedItemTotalCorrelation);
    EXPECT_EQ(result.itemStatistics[1].standardDeviation, 0.0);
    EXPECT_TRUE(result.itemStatistics[1].alphaIfDeleted);
}

TEST(ReliabilityAnalyzerTests, UnusableInputGivesAbsentFiguresNotFailures) {
    const auto empty = Alpha::analyze("Empty", {}, {}, kListwise, ScaleScoreMethod::mean, 1);
    EXPECT_FALSE(empty.alpha);
    EXPECT_EQ(empty.interpretation, "Reliability could not be estimated with the available data.");
    EXPECT_EQ(empty.readiness->status, AnalysisReadinessStatus::blocked);

    // Rows are fitted to the names: a short row lacks its last answer, a long one is cut, and a
    // value that is not a number is no answer.
    const ItemMatrix ragged{{1, 2}, {1, 2, 3, 9}, {2, 3, 4}, {3, std::numeric_limits<double>::quiet_NaN(), 1}};
    const auto fitted = Alpha::analyze("Ragged", namesFor(3), ragged, kListwise, ScaleScoreMethod::sum, 1);
    EXPECT_EQ(fitted.casesUsed, 2);
    EXPECT_EQ(fitted.itemStatistics[2].missingCount, 1);
    EXPECT_EQ(fitted.itemStatistics[1].missingCount, 1);
    EXPECT_EQ(fitted.scaleScoreMean, 7.5);

    // Sums past the largest double leave figures absent rather than infinite, which JSON cannot hold.
    const auto huge = Alpha::analyze("Huge", namesFor(2), {{1e308, 1}, {1e308, 2}, {1, 4}}, kListwise,
                                     ScaleScoreMethod::sum, 1);
    EXPECT_FALSE(huge.itemStatistics[0].mean);
    EXPECT_FALSE(huge.alpha);
    EXPECT_NO_THROW(platform::json::encode(huge));
    EXPECT_FALSE(Omega::analyze({{1e308, 1e308, 1}, {1, 2, 4}, {2, 2, 5}}));

    EXPECT_FALSE(Alpha::cronbachAlpha({{1, 2, 3}}));
    EXPECT_FALSE(Alpha::cronbachAlpha({{1}, {2}, {3}}));
    EXPECT_FALSE(Alpha::cronbachAlpha({{1, 3}, {2, 2}, {3, 1}})) << "the totals do not vary";
    EXPECT_EQ(Alpha::alphaIfDeleted({{1, 2}, {2, 4}, {3, 5}}), (std::vector<std::optional<double>>{kNone, kNone}));
}

TEST(ReliabilityAnalyzerTests, ResultsRoundTripThroughJson) {
    const ItemMatrix rows{{1, 3, 2}, {2, 3, kNone}, {3, 3, 4}, {4, 3, 5}};
    const auto result = Alpha::analyze("C", namesFor(3), rows, kItemMean, ScaleScoreMethod::sum, 0.6);
    const std::string text = platform::json::encode(result);
    EXPECT_NE(text.find("\"available-item mean\""), std::string::npos);
    EXPECT_NE(text.find("null"), std::string::npos) << "absent correlations are kept in place";
    EXPECT_EQ(platform::json::decode<merivante::ReliabilityResult>(text), result);
}

TEST(ScaleScoreBuilderTests, PartlyAnsweredRowsAreScaledToTheFullLength) {
    const std::vector<std::optional<double>> threeOfFour{2, 2, kNone, 2};
    EXPECT_EQ(Scores::score(threeOfFour, kItemMean, ScaleScoreMethod::sum, 0.5), 8.0);
    EXPECT_EQ(Scores::score(threeOfFour, kThreshold, ScaleScoreMethod::sum, 0.5), 8.0);
    EXPECT_EQ(Scores::score(threeOfFour, kListwise, ScaleScoreMethod::sum, 0.5), kNone);
    EXPECT_EQ(Scores::score(threeOfFour, kItemMean, ScaleScoreMethod::mean, 0.5), 2.0);
    EXPECT_EQ(Scores::score(threeOfFour, kItemMean, ScaleScoreMethod::sum, 0.8), kNone);

    EXPECT_EQ(Scores::score(std::vector<std::optional<double>>{1, 2, 4}, kListwise, ScaleScoreMethod::sum, 1), 7.0);
    for (auto rule : {kListwise, kItemMean, kThreshold}) {
        EXPECT_EQ(Scores::score({}, rule, ScaleScoreMethod::mean, 0), kNone);
        const std::vector<std::optional<double>> unanswered{kNone, kNone};
        EXPECT_EQ(Scores::score(unanswered, rule, ScaleScoreMethod::sum, 0), kNone);
    }
    EXPECT_EQ(Scores::scores({{1, 3}, {kNone, 4}, {}}, kItemMean, ScaleScoreMethod::mean, 0.5),
              (std::vector<std::optional<double>>{2.0, 4.0, kNone}));
}

TEST(OmegaReliabilityTests, NotesRelateOmegaToAlpha) {
    const auto equal = Omega::analyze(columnsOf(exchangeableItems()));
    ASSERT_TRUE(equal);
    EXPECT_NEAR(equal->omegaTotal, 2.0 / 3.0, 1e-8);
    EXPECT_EQ(equal->reportingNotes,
              (std::vector<std::string>{
                  "Omega is internal-consistency evidence, not validity.",
                  "This estimate assumes a single common factor (one-factor congeneric model).",
                  "Omega does not assume equal item loadings; Cronbach alpha does (tau-equivalence).",
                  "Omega and alpha agree here, consistent with near-equal loadings."}));
    EXPECT_EQ(platform::json::decode<merivante::OmegaReliabilityResult>(platform::json::encode(*equal)), *equal);

    const auto unequal = Omega::analyze(columnsOf(rowsOf(referenceSet("unequal6")["rows"])));
    EXPECT_EQ(unequal->reportingNotes.back(),
              "Omega exceeds alpha, consistent with unequal loadings where alpha underestimates reliability.");
    const auto twoFactors = Omega::analyze(columnsOf(rowsOf(referenceSet("twoFactor6")["rows"])));
    EXPECT_EQ(twoFactors->reportingNotes.back(), "Alpha exceeds omega here; inspect dimensionality and item loadings.");
}

TEST(OmegaReliabilityTests, LoadingsPointTheWayMostItemsDo) {
    // The reversed item loads most strongly, so the eigenvector comes out with it positive.
    const auto loadings = Latent::singleFactorLoadings({1, -0.5, -0.5, -0.5, 1, 0.3, -0.5, 0.3, 1}, 3);
    ASSERT_TRUE(loadings);
    EXPECT_NEAR((*loadings)[0], -std::sqrt(0.25 / 0.3), 1e-6);
    EXPECT_NEAR((*loadings)[1], std::sqrt(0.3), 1e-6);
    EXPECT_NEAR((*loadings)[2], std::sqrt(0.3), 1e-6);
    EXPECT_FALSE(Latent::singleFactorLoadings({1, 0.5, 0.5}, 2));
}

TEST(OmegaReliabilityTests, TooLittleDataGivesNoResult) {
    EXPECT_FALSE(Omega::analyze({{1, 2, 3, 4}}));
    EXPECT_FALSE(Omega::analyze({{1, 2, kNone, 4}, {2, 1, 3, kNone}, {1, 3, 2, 4}})) << "two complete cases";
    EXPECT_FALSE(Omega::analyze({{1, 2, 3, 4}, {2, 2, 2, 2}, {1, 3, 2, 4}})) << "an item that does not vary";
    // A short item is unanswered past its end.
    const auto uneven = Omega::analyze({{1, 2, 3, 4, 5}, {2, 1, 4, 3}, {1, 3, 2, 5, 9}});
    ASSERT_TRUE(uneven);
    EXPECT_EQ(uneven->casesUsed, 4);
    EXPECT_EQ(uneven->readiness->totalRows, 5);
}

TEST(OmegaReliabilityTests, ReadinessFollowsTheSampleSize) {
    using enum AnalysisReadinessStatus;
    const auto tiny = Latent::readiness("McDonald omega", 1, 2, 2);
    EXPECT_EQ(tiny.status, blocked);
    EXPECT_EQ(tiny.minimumRequired, "at least two items and at least three complete cases");
    EXPECT_EQ(tiny.issues, Issues({{blocked, "McDonald omega needs at least two item columns."},
                                   {blocked, "Fewer than three complete cases are available."},
                                   {caution, "Fewer than five cases per item; results are descriptive only."}}));
    EXPECT_EQ(Latent::readiness("McDonald omega", 4, 30, 19).issues,
              Issues({{caution, "Cases used is below 100; latent-variable estimates are unstable at this sample size."},
                      {caution, "Fewer than five cases per item; results are descriptive only."}}));
    EXPECT_EQ(Latent::readiness("McDonald omega", 4, 30, 20).issues.size(), 1u);
    EXPECT_EQ(Latent::readiness("McDonald omega", 20, 120, 100).status, ready);
    EXPECT_EQ(Omega::analyze(columnsOf(exchangeableItems()))->readiness->issues.size(), 2u);
}
