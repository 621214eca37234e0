#include "MerivanteCore/Statistics/GroupComparisonTests.h"

#include <cmath>

#include "MerivanteCore/Statistics/Descriptives.h"
#include "MerivanteCore/Statistics/MathDistributions.h"

namespace merivante::GroupComparisonTests {

std::vector<NamedNumericGroup> testableGroups(std::span<const NamedNumericGroup> groups) {
    std::vector<NamedNumericGroup> kept;
    for (const NamedNumericGroup& group : groups)
        if (group.values.size() >= 2) kept.push_back(group);
    return kept;
}

std::optional<ANOVAResult> oneWayANOVA(std::span<const NamedNumericGroup> groups) {
    const std::vector<NamedNumericGroup> used = testableGroups(groups);
    if (used.size() < 2) return std::nullopt;
    double total = 0;
    std::size_t count = 0;
    for (const NamedNumericGroup& group : used) {
        for (double value : group.values) total += value;
        count += group.values.size();
    }
    const double grand = total / static_cast<double>(count);
    double ssBetween = 0, ssWithin = 0;
    for (const NamedNumericGroup& group : used) {
        const double centre = *Descriptives::mean(group.values);
        ssBetween += static_cast<double>(group.values.size()) * (centre - grand) * (centre - grand);
        for (double value : group.values) ssWithin += (value - centre) * (value - centre);
    }
    const auto k = static_cast<std::int64_t>(used.size());
    const auto n = static_cast<std::int64_t>(count);
    if (n - k < 1 || ssWithin == 0) return std::nullopt;
    ANOVAResult result;
    result.variant = ANOVAVariant::classicOneWay;
    result.dfBetween = k - 1;
    result.dfWithin = n - k;
    result.dfNumerator = static_cast<double>(result.dfBetween);
    result.dfDenominator = static_cast<double>(result.dfWithin);
    result.f = (ssBetween / result.dfNumerator) / (ssWithin / result.dfDenominator);
    result.pValue = MathDistributions::fRightTailPValue(result.f, result.dfNumerator, result.dfDenominator);
    result.etaSquared = ssBetween / (ssBetween + ssWithin);
    result.ssBetween = ssBetween;
    result.ssWithin = ssWithin;
    return result;
}

std::optional<TTestResult> oneSampleTTest(std::span<const double> values, double populationMean) {
    const auto sd = Descriptives::sampleStandardDeviation(values);
    if (!sd || !(*sd > 0)) return std::nullopt;
    const double n = static_cast<double>(values.size());
    const double difference = *Descriptives::mean(values) - populationMean;
    TTestResult result;
    result.t = difference / (*sd / std::sqrt(n));
    result.degreesOfFreedom = n - 1;
    result.pValue = MathDistributions::studentTPValue(result.t, result.degreesOfFreedom);
    result.effectSizeD = difference / *sd;
    result.meanDifference = difference;
    return result;
}

std::optional<TTestResult> pairedSamplesTTest(std::span<const double> before, std::span<const double> after) {
    if (before.size() != after.size() || before.size() < 2) return std::nullopt;
    std::vector<double> differences(before.size());
    for (std::size_t i = 0; i < before.size(); ++i) differences[i] = before[i] - after[i];
    return oneSampleTTest(differences, 0);
}

std::optional<std::vector<ANOVAPairwiseComparison>> pairwiseComparisons(std::span<const NamedNumericGroup> groups,
                                                                        const ANOVAResult& anova,
                                                                        double familyConfidenceLevel) {
    const std::vector<NamedNumericGroup> used = testableGroups(groups);
    if (used.size() < 2 || anova.dfWithin < 1 || !(anova.ssWithin > 0)) return std::nullopt;
    if (!(familyConfidenceLevel > 0 && familyConfidenceLevel < 1)) return std::nullopt;
    const double mse = anova.ssWithin / static_cast<double>(anova.dfWithin);
    const double df = static_cast<double>(anova.dfWithin);
    const double pairs = static_cast<double>(used.size() * (used.size() - 1) / 2);
    const double alpha = 1 - std::pow(familyConfidenceLevel, 1 / pairs);
    const double critical = MathDistributions::studentTCritical(alpha, df);
    std::vector<ANOVAPairwiseComparison> comparisons;
    for (std::size_t i = 0; i < used.size(); ++i) {
        for (std::size_t j = i + 1; j < used.size(); ++j) {
            const double difference = *Descriptives::mean(used[i].values) - *Descriptives::mean(used[j].values);
            const double se = std::sqrt(mse * (1.0 / static_cast<double>(used[i].values.size()) +
                                               1.0 / static_cast<double>(used[j].values.size())));
            comparisons.push_back({used[i].name, used[j].name, difference, se,
                                   MathDistributions::studentTPValue(difference / se, df), difference - critical * se,
                                   difference + critical * se});
        }
    }
    return comparisons;
}

} // namespace merivante::GroupComparisonTests
