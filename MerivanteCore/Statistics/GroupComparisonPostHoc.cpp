#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "MerivanteCore/Statistics/Descriptives.h"
#include "MerivanteCore/Statistics/GroupComparisonEngine.h"
#include "MerivanteCore/Statistics/GroupComparisonTests.h"
#include "MerivanteCore/Statistics/MathDistributions.h"

namespace merivante::GroupComparisonEngine {
namespace {

std::string adjustmentName(PostHocMethod method) {
    switch (method) {
    case PostHocMethod::tukeyHSD: return "Tukey HSD adjustment";
    case PostHocMethod::gamesHowell: return "Games-Howell adjustment";
    case PostHocMethod::dunn: return "Dunn's test (Holm-adjusted)";
    case PostHocMethod::holmPairwiseT:
    case PostHocMethod::bonferroniPairwiseT: break;
    }
    return std::string(displayName(method)) + " adjustment";
}

std::string pairInterpretation(const PairwiseComparisonResult& pair) {
    const std::string verb = pair.adjustedPValue < 0.05 ? " differ after " : " do not differ after ";
    return pair.groupA + " and " + pair.groupB + verb + adjustmentName(pair.method) + ".";
}

std::optional<double> hedges(double effect, double df) {
    if (!(df > 1)) return std::nullopt;
    return effect * (1 - 3 / (4 * df - 1));
}

// Tukey and Games-Howell: the range statistic of one pair on the studentized range of all k groups.
PairwiseComparisonResult rangePair(const GroupMoments& a, const GroupMoments& b, double se, double df, int k,
                                   double critical, double effect, PostHocMethod method) {
    PairwiseComparisonResult pair;
    pair.groupA = a.name;
    pair.groupB = b.name;
    pair.meanDifference = a.mean - b.mean;
    pair.standardError = se;
    pair.testStatistic = std::abs(pair.meanDifference) / se;
    pair.degreesOfFreedom = df;
    pair.rawPValue = std::max(0.0, 1 - MathDistributions::studentizedRangeCDF(pair.testStatistic, k, df));
    pair.adjustedPValue = pair.rawPValue;
    pair.confidenceIntervalLower = pair.meanDifference - critical * se;
    pair.confidenceIntervalUpper = pair.meanDifference + critical * se;
    pair.effectSize = effect;
    pair.hedgesG = hedges(effect, df);
    pair.method = method;
    pair.interpretation = pairInterpretation(pair);
    return pair;
}

void applyAdjustment(std::vector<PairwiseComparisonResult>& pairs, PostHocMethod method) {
    std::vector<double> raw;
    for (const PairwiseComparisonResult& pair : pairs) raw.push_back(pair.rawPValue);
    const std::vector<double> adjusted = adjust(raw, method);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i].adjustedPValue = adjusted[i];
        pairs[i].interpretation = pairInterpretation(pairs[i]);
    }
}

PairwiseComparisonResult tTestPair(const GroupMoments& a, const GroupMoments& b, double se, double df,
                                   PostHocMethod method) {
    PairwiseComparisonResult pair;
    pair.groupA = a.name;
    pair.groupB = b.name;
    pair.meanDifference = a.mean - b.mean;
    pair.standardError = se;
    pair.testStatistic = pair.meanDifference / se;
    pair.degreesOfFreedom = df;
    pair.rawPValue = MathDistributions::studentTPValue(pair.testStatistic, df);
    const double critical = MathDistributions::studentTCritical(0.05, df);
    pair.confidenceIntervalLower = pair.meanDifference - critical * se;
    pair.confidenceIntervalUpper = pair.meanDifference + critical * se;
    const double pooled = ((a.n - 1) * a.variance + (b.n - 1) * b.variance) / (a.n + b.n - 2);
    if (pooled > 0) {
        pair.effectSize = pair.meanDifference / std::sqrt(pooled);
        pair.hedgesG = hedges(*pair.effectSize, a.n + b.n - 2);
    }
    pair.method = method;
    return pair;
}

} // namespace

std::vector<PairwiseComparisonResult> tukeyHSD(std::span<const NamedNumericGroup> groups, double msWithin,
                                               std::int64_t dfWithin) {
    const std::vector<GroupMoments> stats = momentsOf(GroupComparisonTests::testableGroups(groups));
    if (stats.size() < 2 || !(msWithin > 0) || dfWithin < 2) return {};
    const int k = static_cast<int>(stats.size());
    const double df = static_cast<double>(dfWithin);
    const double critical = MathDistributions::studentizedRangeQuantile(0.95, k, df);
    std::vector<PairwiseComparisonResult> pairs;
    for (std::size_t i = 0; i < stats.size(); ++i) {
        for (std::size_t j = i + 1; j < stats.size(); ++j) {
            const double se = std::sqrt(msWithin / 2 * (1 / stats[i].n + 1 / stats[j].n));
            if (!(se > 0)) continue;
            const double effect = (stats[i].mean - stats[j].mean) / std::sqrt(msWithin);
            pairs.push_back(rangePair(stats[i], stats[j], se, df, k, critical, effect, PostHocMethod::tukeyHSD));
        }
    }
    return pairs;
}

std::vector<PairwiseComparisonResult> gamesHowell(std::span<const NamedNumericGroup> groups) {
    const std::vector<GroupMoments> stats = momentsOf(GroupComparisonTests::testableGroups(groups));
    if (stats.size() < 2) return {};
    const int k = static_cast<int>(stats.size());
    std::vector<PairwiseComparisonResult> pairs;
    for (std::size_t i = 0; i < stats.size(); ++i) {
        for (std::size_t j = i + 1; j < stats.size(); ++j) {
            const GroupMoments& a = stats[i];
            const GroupMoments& b = stats[j];
            const double va = a.variance / a.n, vb = b.variance / b.n;
            const double df = welchDegreesOfFreedom(a, b);
            if (!(df >= 2)) continue;
            const double se = std::sqrt((va + vb) / 2);
            const double spread = std::sqrt((a.variance + b.variance) / 2);
            const double effect = spread == 0 ? 0 : (a.mean - b.mean) / spread;
            const double critical = MathDistributions::studentizedRangeQuantile(0.95, k, df);
            pairs.push_back(rangePair(a, b, se, df, k, critical, effect, PostHocMethod::gamesHowell));
        }
    }
    return pairs;
}

std::vector<PairwiseComparisonResult> pairwiseTTests(std::span<const NamedNumericGroup> groups, PostHocMethod method,
                                                     bool equalVariances) {
    const std::vector<GroupMoments> stats = momentsOf(GroupComparisonTests::testableGroups(groups));
    std::vector<PairwiseComparisonResult> pairs;
    for (std::size_t i = 0; i < stats.size(); ++i) {
        for (std::size_t j = i + 1; j < stats.size(); ++j) {
            const GroupMoments& a = stats[i];
            const GroupMoments& b = stats[j];
            double se = 0, df = 0;
            if (equalVariances) {
                const double pooled = ((a.n - 1) * a.variance + (b.n - 1) * b.variance) / (a.n + b.n - 2);
                se = std::sqrt(pooled * (1 / a.n + 1 / b.n));
                df = a.n + b.n - 2;
            } else {
                se = std::sqrt(a.variance / a.n + b.variance / b.n);
                df = welchDegreesOfFreedom(a, b);
            }
            // Two constant groups leave no error to test against.
            if (!(se > 0) || !(df > 0)) continue;
            pairs.push_back(tTestPair(a, b, se, df, method));
        }
    }
    applyAdjustment(pairs, method);
    return pairs;
}

std::vector<PairwiseComparisonResult> dunnTest(std::span<const NamedNumericGroup> groups) {
    const std::vector<NamedNumericGroup> used = GroupComparisonTests::testableGroups(groups);
    if (used.size() < 2) return {};
    std::vector<double> pooled;
    for (const NamedNumericGroup& group : used) pooled.insert(pooled.end(), group.values.begin(), group.values.end());
    const Descriptives::MidRanks ranked = Descriptives::midRanks(pooled);
    const double n = static_cast<double>(pooled.size());
    const double scale = n * (n + 1) / 12 - ranked.tieSum / (12 * (n - 1));
    std::vector<double> meanRanks;
    std::size_t offset = 0;
    for (const NamedNumericGroup& group : used) {
        const auto first = ranked.ranks.begin() + static_cast<std::ptrdiff_t>(offset);
        offset += group.values.size();
        meanRanks.push_back(std::accumulate(first, first + static_cast<std::ptrdiff_t>(group.values.size()), 0.0) /
                            static_cast<double>(group.values.size()));
    }
    std::vector<PairwiseComparisonResult> pairs;
    for (std::size_t i = 0; i < used.size(); ++i) {
        for (std::size_t j = i + 1; j < used.size(); ++j) {
            const double ni = static_cast<double>(used[i].values.size());
            const double nj = static_cast<double>(used[j].values.size());
            const double se = std::sqrt(scale * (1 / ni + 1 / nj));
            if (!(se > 0)) continue;
            PairwiseComparisonResult pair;
            pair.groupA = used[i].name;
            pair.groupB = used[j].name;
            pair.meanDifference = meanRanks[i] - meanRanks[j];
            pair.standardError = se;
            pair.testStatistic = pair.meanDifference / se;
            pair.rawPValue =
                MathDistributions::studentTPValue(pair.testStatistic, std::numeric_limits<double>::infinity());
            pair.method = PostHocMethod::dunn;
            pairs.push_back(std::move(pair));
        }
    }
    applyAdjustment(pairs, PostHocMethod::holmPairwiseT);
    return pairs;
}

std::vector<double> adjust(std::span<const double> pValues, PostHocMethod method) {
    std::vector<double> adjusted(pValues.begin(), pValues.end());
    const double m = static_cast<double>(pValues.size());
    if (method == PostHocMethod::bonferroniPairwiseT) {
        for (double& p : adjusted) p = std::min(p * m, 1.0);
    } else if (method == PostHocMethod::holmPairwiseT) {
        std::vector<std::size_t> order(pValues.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return pValues[a] < pValues[b]; });
        double largest = 0;
        for (std::size_t i = 0; i < order.size(); ++i) {
            largest = std::max(largest, std::min(pValues[order[i]] * (m - static_cast<double>(i)), 1.0));
            adjusted[order[i]] = largest;
        }
    }
    return adjusted;
}

} // namespace merivante::GroupComparisonEngine
