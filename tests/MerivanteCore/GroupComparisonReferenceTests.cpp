#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "MerivanteCore/Statistics/GroupComparisonEngine.h"
#include "MerivanteCore/Statistics/GroupComparisonTests.h"
#include "Platform/Files/FileSystem.h"

// The group comparison against R on committed references (stats, car and rstatix; the
// Brown-Forsythe test for means written out in R). Everything agrees to 1e-6, relative for
// numbers above 1, except what rests on the studentized range: it is integrated on a fixed
// grid and its quantile bisected, so Tukey and Games-Howell p values and intervals meet
// R's adaptive integration to 1e-4.
namespace E = merivante::GroupComparisonEngine;
namespace T = merivante::GroupComparisonTests;
using merivante::NamedNumericGroup;
using merivante::PairwiseComparisonResult;
using merivante::PostHocMethod;
using Json = rapidjson::Value;

namespace {

constexpr double kExact = 1e-6;
constexpr double kRange = 1e-4;

const rapidjson::Document& references() {
    static const rapidjson::Document document = [] {
        rapidjson::Document parsed;
        parsed.Parse(platform::files::readFile(std::string(MIBREL_STATISTICS_FIXTURES) + "/groups.json").c_str());
        return parsed;
    }();
    return document;
}

std::vector<double> numbers(const Json& array) {
    std::vector<double> values;
    for (const auto& value : array.GetArray()) values.push_back(value.GetDouble());
    return values;
}

std::vector<NamedNumericGroup> groupsOf(const Json& dataset) {
    std::vector<NamedNumericGroup> groups;
    for (const auto& group : dataset["groups"].GetArray())
        groups.push_back({group["name"].GetString(), numbers(group["values"])});
    return groups;
}

void expectClose(double actual, const Json& expected, double tolerance, const std::string& what) {
    const double value = expected.GetDouble();
    EXPECT_NEAR(actual, value, tolerance * std::max(1.0, std::fabs(value))) << what;
}

void expectPairs(const std::vector<PairwiseComparisonResult>& actual, const Json& expected, double tolerance,
                 const std::string& what) {
    ASSERT_EQ(actual.size(), expected.Size()) << what;
    for (rapidjson::SizeType i = 0; i < expected.Size(); ++i) {
        const Json& pair = expected[i];
        const std::string label = what + " " + pair["a"].GetString() + "-" + pair["b"].GetString();
        EXPECT_EQ(actual[i].groupA, pair["a"].GetString()) << label;
        EXPECT_EQ(actual[i].groupB, pair["b"].GetString()) << label;
        if (pair.HasMember("diff")) expectClose(actual[i].meanDifference, pair["diff"], kExact, label);
        if (pair.HasMember("t")) expectClose(actual[i].testStatistic, pair["t"], kExact, label + " t");
        if (pair.HasMember("z")) expectClose(actual[i].testStatistic, pair["z"], kExact, label + " z");
        if (pair.HasMember("df")) expectClose(*actual[i].degreesOfFreedom, pair["df"], kExact, label + " df");
        if (pair.HasMember("lower")) {
            expectClose(*actual[i].confidenceIntervalLower, pair["lower"], tolerance, label + " lower");
            expectClose(*actual[i].confidenceIntervalUpper, pair["upper"], tolerance, label + " upper");
        }
        expectClose(actual[i].rawPValue, pair["p"], tolerance, label + " p");
    }
}

void expectAdjusted(const std::vector<PairwiseComparisonResult>& actual, const Json& expected, const char* key,
                    const std::string& what) {
    ASSERT_EQ(actual.size(), expected.Size()) << what;
    for (rapidjson::SizeType i = 0; i < expected.Size(); ++i)
        expectClose(actual[i].adjustedPValue, expected[i][key], kExact, what + " " + key);
}

void expectFTest(const std::optional<merivante::ANOVAResult>& actual, const Json& expected, const std::string& what) {
    ASSERT_TRUE(actual) << what;
    expectClose(actual->f, expected["f"], kExact, what + " F");
    expectClose(actual->dfNumerator, expected["df1"], kExact, what + " df1");
    expectClose(actual->dfDenominator, expected["df2"], kExact, what + " df2");
    expectClose(actual->pValue, expected["p"], kExact, what + " p");
}

} // namespace

TEST(GroupComparisonReferenceTests, OmnibusAndHomogeneityTestsAgreeWithR) {
    const auto& datasets = references()["datasets"];
    ASSERT_EQ(datasets.Size(), 6u);
    for (const auto& dataset : datasets.GetArray()) {
        const std::string name = dataset["name"].GetString();
        const auto groups = groupsOf(dataset);
        const auto classic = T::oneWayANOVA(groups);
        expectFTest(classic, dataset["classic"], name + " classic");
        expectClose(classic->ssBetween, dataset["classic"]["ssBetween"], kExact, name + " SSB");
        expectClose(classic->ssWithin, dataset["classic"]["ssWithin"], kExact, name + " SSW");
        expectFTest(E::welchANOVA(groups), dataset["welch"], name + " Welch");
        expectFTest(E::brownForsytheANOVA(groups), dataset["brownForsythe"], name + " Brown-Forsythe");
        const auto kruskal = E::kruskalWallis(groups);
        ASSERT_TRUE(kruskal) << name;
        expectClose(kruskal->f, dataset["kruskal"]["h"], kExact, name + " H");
        expectClose(kruskal->dfNumerator, dataset["kruskal"]["df"], kExact, name + " H df");
        expectClose(kruskal->pValue, dataset["kruskal"]["p"], kExact, name + " H p");
        const auto levene = E::leveneTest(groups, merivante::LeveneCenter::mean);
        const auto median = E::leveneTest(groups, merivante::LeveneCenter::median);
        ASSERT_TRUE(levene && median) << name;
        for (const auto& [test, key] : {std::pair{*levene, "levene"}, std::pair{*median, "leveneMedian"}}) {
            expectClose(test.statistic, dataset[key]["f"], kExact, name + " " + key);
            expectClose(test.df2, dataset[key]["df2"], kExact, name + " " + key);
            expectClose(test.pValue, dataset[key]["p"], kExact, name + " " + key);
        }
    }
}

TEST(GroupComparisonReferenceTests, PostHocComparisonsAgreeWithR) {
    for (const auto& dataset : references()["datasets"].GetArray()) {
        const std::string name = dataset["name"].GetString();
        const auto groups = groupsOf(dataset);
        const auto classic = *T::oneWayANOVA(groups);
        expectPairs(E::tukeyHSD(groups, classic.ssWithin / static_cast<double>(classic.dfWithin), classic.dfWithin),
                    dataset["tukey"], kRange, name + " Tukey");
        expectPairs(E::gamesHowell(groups), dataset["gamesHowell"], kRange, name + " Games-Howell");
        const auto dunn = E::dunnTest(groups);
        expectPairs(dunn, dataset["dunn"], kExact, name + " Dunn");
        expectAdjusted(dunn, dataset["dunn"], "pAdjusted", name + " Dunn");
        for (const auto& [equal, key] : {std::pair{true, "pairwiseEqual"}, std::pair{false, "pairwiseWelch"}}) {
            const auto holm = E::pairwiseTTests(groups, PostHocMethod::holmPairwiseT, equal);
            expectPairs(holm, dataset[key], kExact, name + " " + key);
            expectAdjusted(holm, dataset[key], "pHolm", name + " " + key);
            expectAdjusted(E::pairwiseTTests(groups, PostHocMethod::bonferroniPairwiseT, equal), dataset[key],
                           "pBonferroni", name + " " + key);
        }
    }
}

TEST(GroupComparisonReferenceTests, OneSampleAndPairedTTestsAgreeWithR) {
    for (const auto& reference : references()["oneSample"].GetArray()) {
        const auto values = numbers(reference["values"]);
        const auto result = T::oneSampleTTest(values, reference["mu"].GetDouble());
        ASSERT_TRUE(result);
        expectClose(result->t, reference["t"], kExact, "one-sample t");
        expectClose(result->degreesOfFreedom, reference["df"], kExact, "one-sample df");
        expectClose(result->pValue, reference["p"], kExact, "one-sample p");
        expectClose(result->meanDifference, reference["meanDifference"], kExact, "one-sample difference");
    }
    for (const auto& reference : references()["paired"].GetArray()) {
        const auto result = T::pairedSamplesTTest(numbers(reference["before"]), numbers(reference["after"]));
        ASSERT_TRUE(result);
        expectClose(result->t, reference["t"], kExact, "paired t");
        expectClose(result->pValue, reference["p"], kExact, "paired p");
    }
}
