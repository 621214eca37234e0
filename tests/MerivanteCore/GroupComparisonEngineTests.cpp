#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "MerivanteCore/Statistics/GroupComparisonEngine.h"
#include "MerivanteCore/Statistics/GroupComparisonTests.h"
#include "Platform/Json/JsonCoding.h"

namespace E = merivante::GroupComparisonEngine;
using merivante::ANOVAVariant;
using merivante::AnalysisReadinessStatus;
using merivante::GroupComparisonAnalysisResult;
using merivante::PostHocMethod;
using merivante::WarningLevel;

namespace {

struct Column {
    std::string label;
    std::vector<std::optional<double>> values;
};

// The two columns of a dataset, row by row, from groups written out one after another.
struct Rows {
    std::vector<std::string> groups;
    std::vector<std::optional<double>> outcomes;
};

Rows rowsOf(const std::vector<Column>& columns) {
    Rows rows;
    for (const Column& column : columns) {
        for (const auto& value : column.values) {
            rows.groups.push_back(column.label);
            rows.outcomes.push_back(value);
        }
    }
    return rows;
}

std::optional<GroupComparisonAnalysisResult> analyze(const std::vector<Column>& columns) {
    const Rows rows = rowsOf(columns);
    return E::analyze("score", "site", rows.groups, rows.outcomes, "complete cases");
}

std::vector<std::optional<double>> shifted(std::vector<std::optional<double>> values, double by, double scale = 1) {
    for (auto& value : values) *value = *value * scale + by;
    return values;
}

// Ten distinct, symmetric values with variance 1 once scaled: no skew or outlier flag.
const std::vector<std::optional<double>> kSpread = [] {
    std::vector<std::optional<double>> values;
    const double raw[] = {-1.6, -1.2, -0.8, -0.4, -0.1, 0.1, 0.4, 0.8, 1.2, 1.6};
    double squares = 0;
    for (double value : raw) squares += value * value;
    const double sd = std::sqrt(squares / 9);
    for (double value : raw) values.push_back(value / sd);
    return values;
}();

std::vector<std::string> messages(const GroupComparisonAnalysisResult& result) {
    std::vector<std::string> texts;
    for (const auto& warning : result.warnings) texts.push_back(warning.message);
    return texts;
}

bool hasMessage(const GroupComparisonAnalysisResult& result, const std::string& message) {
    const auto texts = messages(result);
    return std::find(texts.begin(), texts.end(), message) != texts.end();
}

} // namespace

TEST(GroupComparisonEngineTests, EqualVariancesSelectClassicWithTukey) {
    const auto result = analyze({{"A", shifted(kSpread, 10)}, {"B", shifted(kSpread, 12)}, {"C", shifted(kSpread, 13)}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->selectedVariant, ANOVAVariant::classicOneWay);
    EXPECT_EQ(result->postHocMethod, PostHocMethod::tukeyHSD);
    EXPECT_EQ(result->recommendedPostHocMethod, PostHocMethod::tukeyHSD);
    EXPECT_EQ(result->pairwiseComparisons.size(), 3u);
    EXPECT_EQ(result->bonferroniComparisons.size(), 3u);
    EXPECT_EQ(result->interpretation.summary,
              "Merivante found evidence that average score differs across 3 groups using Classic one-way ANOVA.");
    EXPECT_EQ(result->interpretation.testChoiceReason,
              "Merivante used classic one-way ANOVA because the default homogeneity check did not flag unequal "
              "variances.");
    EXPECT_EQ(result->pairwiseComparisons[0].interpretation, "A and B differ after Tukey HSD adjustment.");
    EXPECT_EQ(result->methodFile.varianceTestUsed, "Brown-Forsythe");
    EXPECT_EQ(result->methodFile.omnibusTestsComputed,
              (std::vector{ANOVAVariant::classicOneWay, ANOVAVariant::welch, ANOVAVariant::brownForsythe,
                           ANOVAVariant::kruskalWallis}));
    EXPECT_EQ(result->methodFile.effectSizeMethods.size(), 4u);
    EXPECT_EQ(result->methodFile.groupsIncluded, (std::vector<std::string>{"A", "B", "C"}));
    ASSERT_TRUE(result->effectSizes.omegaSquared);
    EXPECT_LT(*result->effectSizes.omegaSquared, *result->effectSizes.etaSquared);
    // 30 cases, equal sizes and variances, ten distinct values per group: nothing to warn about.
    EXPECT_TRUE(result->warnings.empty()) << messages(*result).front();
    EXPECT_EQ(result->readiness.status, AnalysisReadinessStatus::ready);
    EXPECT_NO_THROW(platform::json::encode(*result));
}

TEST(GroupComparisonEngineTests, AFarLargerVarianceMovesToWelchAndGamesHowell) {
    const auto result = analyze({{"A", shifted(kSpread, 10)}, {"B", shifted(kSpread, 10.5)},
                                 {"C", shifted(kSpread, 16, 12)}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->selectedVariant, ANOVAVariant::welch);
    EXPECT_EQ(result->recommendedPostHocMethod, PostHocMethod::gamesHowell);
    EXPECT_EQ(result->postHocMethod, PostHocMethod::gamesHowell);
    EXPECT_TRUE(hasMessage(*result, "Brown-Forsythe test flags unequal variances."));
    const auto serious = std::find_if(result->warnings.begin(), result->warnings.end(),
                                      [](const auto& warning) { return warning.level == WarningLevel::serious; });
    EXPECT_NE(serious, result->warnings.end());
    EXPECT_EQ(result->warnings.back().message,
              "A p-value is available, but assumption warnings should be reported with the result.");
    EXPECT_EQ(result->interpretation.testChoiceReason,
              "Merivante used Welch ANOVA because group variances were flagged as unequal.");
    // Both pairwise families drop the pooled variance once variances are flagged.
    EXPECT_NE(result->bonferroniComparisons[1].degreesOfFreedom, 18.0);
}

TEST(GroupComparisonEngineTests, ConstantGroupsLeaveOnlyTheRankPath) {
    const std::vector<std::optional<double>> ones(6, 1.0), twos(6, 2.0), threes(6, 3.0);
    const auto result = analyze({{"A", ones}, {"B", twos}, {"C", threes}});
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->classicANOVA || result->welchANOVA || result->brownForsytheANOVA);
    EXPECT_TRUE(result->homogeneityTests.empty());
    EXPECT_EQ(result->selectedVariant, ANOVAVariant::kruskalWallis);
    EXPECT_EQ(result->postHocMethod, PostHocMethod::dunn);
    ASSERT_EQ(result->pairwiseComparisons.size(), 3u);
    EXPECT_EQ(result->pairwiseComparisons[1].interpretation, "A and C differ after Dunn's test (Holm-adjusted).");
    EXPECT_EQ(result->methodFile.varianceTestUsed, "not available");
    EXPECT_EQ(result->methodFile.omnibusTestsComputed, std::vector{ANOVAVariant::kruskalWallis});
    EXPECT_EQ(result->methodFile.effectSizeMethods,
              (std::vector<std::string>{"epsilon squared from Kruskal-Wallis H",
                                        "pairwise Cohen's d and Hedges g for two-group contrasts"}));
    // Six values of one kind per group are ordinal-looking.
    EXPECT_TRUE(hasMessage(*result, "Skew or outlier patterns suggest reviewing Kruskal-Wallis as a sensitivity analysis."));
    EXPECT_EQ(result->interpretation.limitations.back(),
              "Kruskal-Wallis should be treated as a sensitivity check when assumptions are weak.");
    // The rank path keeps the classic wording, as the reason is fixed.
    EXPECT_EQ(result->interpretation.testChoiceReason,
              "Merivante used classic one-way ANOVA because the default homogeneity check did not flag unequal "
              "variances.");
}

TEST(GroupComparisonEngineTests, AllValuesEqualFallBackToHolmWithNothingToCompare) {
    const std::vector<std::optional<double>> same(5, 4.0);
    const auto result = analyze({{"A", same}, {"B", same}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->selectedVariant, ANOVAVariant::kruskalWallis);
    EXPECT_EQ(result->selectedANOVA.pValue, 1);
    EXPECT_EQ(result->recommendedPostHocMethod, PostHocMethod::dunn);
    EXPECT_EQ(result->postHocMethod, PostHocMethod::holmPairwiseT);
    EXPECT_TRUE(result->pairwiseComparisons.empty());
    EXPECT_EQ(result->interpretation.postHocSummary, "No Holm pairwise t-tests comparison is below p = .05.");
    EXPECT_NO_THROW(platform::json::encode(*result));
}

TEST(GroupComparisonEngineTests, GroupLabelsAreTrimmedComparedExactlyAndMissingMarkersDropped) {
    Rows rows = rowsOf({{" A ", {1.0, 2.0}}, {"A", {3.0}}, {"a", {4.0, 5.0}}, {"NA", {6.0}}, {"", {7.0}},
                        {"B", {8.0}}});
    const auto grouped = E::group(rows.groups, rows.outcomes);
    ASSERT_EQ(grouped.summaries.size(), 3u);
    EXPECT_EQ(grouped.missingGroupRows, 2);
    // Case-insensitive order, so "a" and "A" sit together; exact bytes break the tie.
    EXPECT_EQ(grouped.summaries[0].groupLabel, "A");
    EXPECT_EQ(grouped.summaries[0].n, 3);
    EXPECT_EQ(grouped.summaries[1].groupLabel, "a");
    EXPECT_EQ(grouped.summaries[2].groupLabel, "B");

    // B's one value is summarised and warned about, but no test uses it.
    const auto result = E::analyze("score", "site", rows.groups, rows.outcomes, "complete cases");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->groupSummaries.size(), 3u);
    EXPECT_TRUE(hasMessage(*result, "B has fewer than two valid outcome values."));
    EXPECT_TRUE(hasMessage(*result, "2 rows were excluded because the group value was missing."));
    for (const auto& pair : result->pairwiseComparisons) EXPECT_NE(pair.groupB, "B");
    EXPECT_EQ(result->methodFile.groupsIncluded, (std::vector<std::string>{"A", "a"}));
    const auto issues = result->readiness.issues;
    EXPECT_EQ(issues[0].message, "B has fewer than two valid outcome values and will be excluded.");
    EXPECT_EQ(issues[2].message, "2 rows have missing group values and will be excluded.");
}

TEST(GroupComparisonEngineTests, ReadinessBlocksWhatCannotRun) {
    const std::vector<std::string> noGroups;
    const std::vector<std::optional<double>> noOutcomes;
    const auto empty = E::readiness("score", "site", noGroups, noOutcomes);
    EXPECT_EQ(empty.status, AnalysisReadinessStatus::blocked);
    EXPECT_EQ(empty.issues[0].message, "No paired outcome/group rows are available.");
    EXPECT_EQ(empty.minimumRequired, "at least two groups with at least two valid outcome values each");
    EXPECT_FALSE(E::analyze("score", "site", noGroups, noOutcomes, "complete cases"));

    const Rows oneGroup = rowsOf({{"A", {1.0, 2.0, 3.0}}, {"B", {std::nullopt, 4.0}}});
    std::vector<std::optional<double>> longer = oneGroup.outcomes;
    longer.push_back(9.0);
    const auto blocked = E::readiness("score", "site", oneGroup.groups, longer);
    EXPECT_EQ(blocked.status, AnalysisReadinessStatus::blocked);
    EXPECT_EQ(blocked.usableGroups, 1);
    EXPECT_EQ(blocked.validCases, 4);
    EXPECT_EQ(blocked.issues[0].message,
              "Outcome and group columns have different row counts; extra rows were ignored.");
    EXPECT_EQ(blocked.issues[1].message, "ANOVA needs at least two groups with two or more valid outcome values.");
    EXPECT_FALSE(E::analyze("score", "site", oneGroup.groups, longer, "complete cases"));
}

TEST(GroupComparisonEngineTests, SampleSizeWarningStopsAtThirty) {
    auto take = [](std::size_t count) { return std::vector(kSpread.begin(), kSpread.begin() + count); };
    const auto small = analyze({{"A", take(10)}, {"B", shifted(take(10), 1)}, {"C", shifted(take(9), 2)}});
    const auto enough = analyze({{"A", take(10)}, {"B", shifted(take(10), 1)}, {"C", shifted(take(10), 2)}});
    ASSERT_TRUE(small && enough);
    EXPECT_TRUE(hasMessage(*small, "Total valid N is below 30; treat results as exploratory."));
    EXPECT_EQ(small->readiness.issues[0].message,
              "Total valid N is below 30; treat omnibus and post-hoc results as exploratory.");
    EXPECT_FALSE(hasMessage(*enough, "Total valid N is below 30; treat results as exploratory."));
    EXPECT_TRUE(enough->readiness.issues.empty());
}

TEST(GroupComparisonEngineTests, FlagsSitOnTheirThresholds) {
    auto summary = [](double variance, std::int64_t n, std::int64_t missing) {
        merivante::GroupSummary group;
        group.n = n;
        group.missingN = missing;
        group.variance = variance;
        return group;
    };
    // Variances 1 and 4 are not "more than four times"; 4.01 is.
    EXPECT_FALSE(E::flags(std::vector{summary(1, 10, 0), summary(4, 10, 0)}).varianceRatioAboveFour);
    EXPECT_TRUE(E::flags(std::vector{summary(1, 10, 0), summary(4.01, 10, 0)}).varianceRatioAboveFour);
    EXPECT_FALSE(E::flags(std::vector{summary(0, 10, 0), summary(3, 10, 0)}).varianceRatioAboveFour);
    // 15 to 10 is uneven; 14 to 10 is not.
    EXPECT_TRUE(E::flags(std::vector{summary(1, 15, 0), summary(1, 10, 0)}).unevenSizes);
    EXPECT_FALSE(E::flags(std::vector{summary(1, 14, 0), summary(1, 10, 0)}).unevenSizes);
    // Missing rates of 0.3 and 0.2 differ by 0.1, whatever the rounding of the subtraction.
    EXPECT_TRUE(E::flags(std::vector{summary(1, 7, 3), summary(1, 8, 2)}).missingDataImbalance);
    EXPECT_FALSE(E::flags(std::vector{summary(1, 7, 3), summary(1, 79, 21)}).missingDataImbalance);
}

TEST(GroupComparisonEngineTests, UnevenImbalancedGroupsWarnInOrder) {
    std::vector<std::optional<double>> a(kSpread.begin(), kSpread.begin() + 9);
    std::vector<std::optional<double>> b = shifted(kSpread, 0.5);
    b.insert(b.end(), kSpread.begin(), kSpread.begin() + 5);
    a.push_back(std::nullopt);
    const Rows rows = rowsOf({{"A", a}, {"B", b}});
    const auto result = E::analyze("score", "site", rows.groups, rows.outcomes, "complete cases");
    ASSERT_TRUE(result);
    // 9 against 15 is uneven (1.67), missing rates 0.1 against 0 are imbalanced.
    EXPECT_EQ(messages(*result), (std::vector<std::string>{
                                     "Total valid N is below 30; treat results as exploratory.",
                                     "Group sizes are uneven.",
                                     "Missing outcome data are imbalanced across groups.",
                                     "A p-value is available, but assumption warnings should be reported with the "
                                     "result."}));
    EXPECT_EQ(result->interpretation.limitations.size(), 3u);
}

TEST(GroupComparisonEngineTests, SkewAndOutliersNeedEnoughValues) {
    EXPECT_FALSE(E::hasIQRFlag(std::vector{1.0, 2.0, 100.0}));
    // The upper half holds the outlier itself, so five values cannot flag it; eight can.
    EXPECT_FALSE(E::hasIQRFlag(std::vector{1.0, 2.0, 3.0, 4.0, 100.0}));
    EXPECT_TRUE(E::hasIQRFlag(std::vector{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 100.0}));
    EXPECT_TRUE(E::hasIQRFlag(std::vector{-100.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0}));
    EXPECT_FALSE(E::hasIQRFlag(std::vector{1.0, 2.0, 3.0, 4.0, 5.0}));
    EXPECT_FALSE(E::hasIQRFlag(std::vector{5.0, 5.0, 5.0, 5.0, 9.0}));
}

TEST(GroupComparisonEngineTests, HolmIsMonotoneAndBonferroniCapped) {
    const std::vector<double> raw{0.01, 0.04, 0.03, 0.005, 0.5};
    const auto holm = E::adjust(raw, PostHocMethod::holmPairwiseT);
    EXPECT_EQ(holm, (std::vector{0.04, 0.09, 0.09, 0.025, 0.5}));
    std::vector<std::size_t> order(raw.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](auto a, auto b) { return raw[a] < raw[b]; });
    for (std::size_t i = 1; i < order.size(); ++i) EXPECT_GE(holm[order[i]], holm[order[i - 1]]);
    EXPECT_EQ(E::adjust(raw, PostHocMethod::bonferroniPairwiseT), (std::vector{0.05, 0.2, 0.15, 0.025, 1.0}));
    EXPECT_EQ(E::adjust(raw, PostHocMethod::tukeyHSD), raw);
}

TEST(GroupComparisonEngineTests, PostHocSummaryNamesAtMostFourPairs) {
    std::vector<Column> columns;
    for (int i = 0; i < 4; ++i) columns.push_back({std::string(1, static_cast<char>('A' + i)), shifted(kSpread, 5.0 * i)});
    const auto result = analyze(columns);
    ASSERT_TRUE(result);
    ASSERT_EQ(result->pairwiseComparisons.size(), 6u);
    EXPECT_EQ(result->interpretation.postHocSummary,
              "A vs B; A vs C; A vs D; B vs C differ after Tukey HSD adjustment.");
    EXPECT_EQ(result->effectSizes.interpretation,
              "The estimated effect appears large by conventional rules of thumb; context still matters.");
}

TEST(GroupComparisonEngineTests, ElementaryTestsRefuseWhatTheyCannotCarry) {
    using namespace merivante::GroupComparisonTests;
    EXPECT_FALSE(oneSampleTTest(std::vector{2.0, 2.0, 2.0}, 1));
    EXPECT_FALSE(oneSampleTTest(std::vector{2.0}, 1));
    EXPECT_FALSE(pairedSamplesTTest(std::vector{1.0, 2.0}, std::vector{1.0}));
    const std::vector<merivante::NamedNumericGroup> groups{{"A", {1, 2, 3}}, {"B", {4, 5, 6}}, {"C", {7, 8, 9.5}}};
    const auto anova = oneWayANOVA(groups);
    ASSERT_TRUE(anova);
    const auto family = pairwiseComparisons(groups, *anova, 0.95);
    ASSERT_TRUE(family);
    ASSERT_EQ(family->size(), 3u);
    // Sidak-widened bounds are wider than one comparison's 95% interval.
    EXPECT_LT((*family)[0].lowerBound, (*family)[0].meanDifference - 2 * (*family)[0].standardError);
    EXPECT_EQ((*family)[2].groupI, "B");
    EXPECT_FALSE(oneWayANOVA(std::vector<merivante::NamedNumericGroup>{{"A", {1, 2}}, {"B", {3}}}));
}
