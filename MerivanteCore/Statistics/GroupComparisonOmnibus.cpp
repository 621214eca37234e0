#include <algorithm>
#include <cmath>

#include "MerivanteCore/Statistics/Descriptives.h"
#include "MerivanteCore/Statistics/GroupComparisonEngine.h"
#include "MerivanteCore/Statistics/GroupComparisonTests.h"
#include "MerivanteCore/Statistics/MathDistributions.h"

namespace merivante::GroupComparisonEngine {
namespace {

// A test whose denominator degrees of freedom are estimated: the whole-number form is rounded, at least 1.
ANOVAResult approximateFTest(ANOVAVariant variant, double f, double k, double df2) {
    ANOVAResult result;
    result.variant = variant;
    result.f = f;
    result.dfBetween = static_cast<std::int64_t>(k) - 1;
    result.dfWithin = std::max<std::int64_t>(std::llround(df2), 1);
    result.dfNumerator = k - 1;
    result.dfDenominator = df2;
    result.pValue = MathDistributions::fRightTailPValue(f, k - 1, df2);
    return result;
}

} // namespace

std::vector<GroupMoments> momentsOf(std::span<const NamedNumericGroup> groups) {
    std::vector<GroupMoments> moments;
    for (const NamedNumericGroup& group : groups)
        moments.push_back({group.name, static_cast<double>(group.values.size()), *Descriptives::mean(group.values),
                           *Descriptives::sampleVariance(group.values)});
    return moments;
}

double welchDegreesOfFreedom(const GroupMoments& a, const GroupMoments& b) {
    const double va = a.variance / a.n, vb = b.variance / b.n;
    return (va + vb) * (va + vb) / (va * va / (a.n - 1) + vb * vb / (b.n - 1));
}

std::optional<ANOVAResult> welchANOVA(std::span<const NamedNumericGroup> groups) {
    std::vector<GroupMoments> moments;
    for (const GroupMoments& group : momentsOf(GroupComparisonTests::testableGroups(groups)))
        if (group.variance > 0) moments.push_back(group);
    if (moments.size() < 2) return std::nullopt;
    const double k = static_cast<double>(moments.size());
    double weightSum = 0, weightedMeans = 0;
    for (const GroupMoments& group : moments) {
        weightSum += group.n / group.variance;
        weightedMeans += group.n / group.variance * group.mean;
    }
    const double grand = weightedMeans / weightSum;
    double between = 0, lambda = 0;
    for (const GroupMoments& group : moments) {
        const double weight = group.n / group.variance;
        between += weight * (group.mean - grand) * (group.mean - grand);
        lambda += std::pow(1 - weight / weightSum, 2) / (group.n - 1);
    }
    const double f = (between / (k - 1)) / (1 + 2 * (k - 2) * lambda / (k * k - 1));
    const double df2 = (k * k - 1) / (3 * lambda);
    if (!std::isfinite(f) || !std::isfinite(df2) || !(df2 > 0)) return std::nullopt;
    return approximateFTest(ANOVAVariant::welch, f, k, df2);
}

std::optional<ANOVAResult> brownForsytheANOVA(std::span<const NamedNumericGroup> groups) {
    const std::vector<GroupMoments> moments = momentsOf(GroupComparisonTests::testableGroups(groups));
    if (moments.size() < 2) return std::nullopt;
    double total = 0, count = 0;
    for (const GroupMoments& group : moments) {
        total += group.n * group.mean;
        count += group.n;
    }
    const double grand = total / count;
    double numerator = 0, denominator = 0, satterthwaite = 0;
    for (const GroupMoments& group : moments) {
        numerator += group.n * (group.mean - grand) * (group.mean - grand);
        const double part = (1 - group.n / count) * group.variance;
        denominator += part;
        satterthwaite += part * part / (group.n - 1);
    }
    if (!(numerator > 0) || !(denominator > 0)) return std::nullopt;
    ANOVAResult result = approximateFTest(ANOVAVariant::brownForsythe, numerator / denominator,
                                          static_cast<double>(moments.size()), denominator * denominator / satterthwaite);
    result.ssBetween = numerator;
    return result;
}

std::optional<ANOVAResult> kruskalWallis(std::span<const NamedNumericGroup> groups) {
    const std::vector<NamedNumericGroup> used = GroupComparisonTests::testableGroups(groups);
    if (used.size() < 2) return std::nullopt;
    std::vector<double> pooled;
    for (const NamedNumericGroup& group : used) pooled.insert(pooled.end(), group.values.begin(), group.values.end());
    const Descriptives::MidRanks ranked = Descriptives::midRanks(pooled);
    const double n = static_cast<double>(pooled.size());
    const double k = static_cast<double>(used.size());
    double rankTerms = 0;
    std::size_t offset = 0;
    for (const NamedNumericGroup& group : used) {
        double rankSum = 0;
        for (std::size_t i = 0; i < group.values.size(); ++i) rankSum += ranked.ranks[offset + i];
        offset += group.values.size();
        rankTerms += rankSum * rankSum / static_cast<double>(group.values.size());
    }
    // H is never negative; rounding can leave all-tied data a hair below 0, outside the chi-square.
    double h = std::max(12 / (n * (n + 1)) * rankTerms - 3 * (n + 1), 0.0);
    const double correction = n < 2 ? 1 : 1 - ranked.tieSum / (n * n * n - n);
    if (correction > 0) h /= correction;
    ANOVAResult result;
    result.variant = ANOVAVariant::kruskalWallis;
    result.f = h;
    result.dfBetween = static_cast<std::int64_t>(k) - 1;
    result.dfNumerator = k - 1;
    result.pValue = MathDistributions::chiSquareRightTailPValue(h, k - 1);
    result.etaSquared = std::max((h - k + 1) / (n - k), 0.0);
    return result;
}

std::optional<HomogeneityTestResult> leveneTest(std::span<const NamedNumericGroup> groups, LeveneCenter center) {
    std::vector<NamedNumericGroup> deviations = GroupComparisonTests::testableGroups(groups);
    for (NamedNumericGroup& group : deviations) {
        const double centre = center == LeveneCenter::mean ? *Descriptives::mean(group.values)
                                                           : *Descriptives::median(group.values);
        for (double& value : group.values) value = std::abs(value - centre);
    }
    const auto anova = GroupComparisonTests::oneWayANOVA(deviations);
    if (!anova) return std::nullopt;
    const std::string name = center == LeveneCenter::mean ? "Levene" : "Brown-Forsythe";
    const bool unequal = anova->pValue < 0.05;
    return HomogeneityTestResult{
        name,
        anova->f,
        anova->dfNumerator,
        anova->dfDenominator,
        anova->pValue,
        unequal ? name + " test suggests unequal variances (p < .05)."
                : name + " test does not flag unequal variances at p < .05.",
        unequal ? WarningLevel::caution : WarningLevel::info};
}

std::vector<HomogeneityTestResult> homogeneityTests(std::span<const NamedNumericGroup> groups) {
    std::vector<HomogeneityTestResult> tests;
    for (LeveneCenter center : {LeveneCenter::mean, LeveneCenter::median})
        if (auto test = leveneTest(groups, center)) tests.push_back(std::move(*test));
    return tests;
}

} // namespace merivante::GroupComparisonEngine
