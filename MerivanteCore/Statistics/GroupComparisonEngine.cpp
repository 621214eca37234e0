#include "MerivanteCore/Statistics/GroupComparisonEngine.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "MerivanteCore/Dataset/MissingValue.h"
#include "MerivanteCore/Statistics/Descriptives.h"
#include "MerivanteCore/Statistics/GroupComparisonTests.h"
#include "MerivanteCore/Statistics/MathDistributions.h"
#include "Platform/Text/Text.h"

namespace merivante::GroupComparisonEngine {
namespace {

// Thresholds are met by data built to sit on them (a 0.3 - 0.2 gap is 0.09999999999999998):
// compare with a margin far below any difference a researcher could mean.
bool atLeast(double value, double threshold) { return value >= threshold - 1e-9 * std::abs(threshold); }
bool above(double value, double threshold) { return value > threshold + 1e-9 * std::abs(threshold); }

bool labelBefore(const GroupSummary& lhs, const GroupSummary& rhs) {
    const auto order = platform::text::localizedStandardCompare(lhs.groupLabel, rhs.groupLabel);
    if (order != 0) return order < 0;
    return lhs.groupLabel < rhs.groupLabel;
}

struct Extremes {
    double smallest = 0;
    double largest = 0;
    bool any = false;
    void add(double value) {
        smallest = any ? std::min(smallest, value) : value;
        largest = any ? std::max(largest, value) : value;
        any = true;
    }
};

double skewness(std::span<const double> values) {
    const double sd = *Descriptives::sampleStandardDeviation(values);
    if (sd == 0) return 0;
    const double centre = *Descriptives::mean(values);
    double cubes = 0;
    for (double value : values) cubes += std::pow((value - centre) / sd, 3);
    const double n = static_cast<double>(values.size());
    return n / ((n - 1) * (n - 2)) * cubes;
}

bool skewFlag(const GroupSummary& summary) {
    if (summary.n < 3) return false;
    const std::set<double> distinct(summary.validValues.begin(), summary.validValues.end());
    return distinct.size() < 8 || std::abs(skewness(summary.validValues)) > 2 || hasIQRFlag(summary.validValues);
}

std::vector<AnalysisReadinessIssue> readinessIssues(const GroupedOutcome& grouped, const GroupFlags& found) {
    using enum AnalysisReadinessStatus;
    std::vector<AnalysisReadinessIssue> issues;
    if (grouped.pairedRows == 0) issues.push_back({blocked, "No paired outcome/group rows are available."});
    if (grouped.lengthsDiffer)
        issues.push_back({caution, "Outcome and group columns have different row counts; extra rows were ignored."});
    if (grouped.validGroups().size() < 2)
        issues.push_back({blocked, "ANOVA needs at least two groups with two or more valid outcome values."});
    for (const GroupSummary& summary : grouped.summaries)
        if (summary.n < 2)
            issues.push_back(
                {caution, summary.groupLabel + " has fewer than two valid outcome values and will be excluded."});
    const std::int64_t valid = grouped.validCases();
    if (valid >= 1 && valid <= 29)
        issues.push_back({caution, "Total valid N is below 30; treat omnibus and post-hoc results as exploratory."});
    if (grouped.missingGroupRows >= 1)
        issues.push_back({caution, std::to_string(grouped.missingGroupRows) +
                                       " rows have missing group values and will be excluded."});
    if (found.missingDataImbalance) issues.push_back({caution, "Missing outcome data are imbalanced across groups."});
    if (found.unevenSizes) issues.push_back({caution, "Group sizes are uneven."});
    if (found.varianceRatioAboveFour)
        issues.push_back(
            {caution, "The largest group variance is more than four times the smallest group variance."});
    return issues;
}

AnalysisReadiness readinessOf(const GroupedOutcome& grouped, const GroupFlags& found) {
    return AnalysisReadiness::make("at least two groups with at least two valid outcome values each",
                                   grouped.pairedRows, grouped.validCases(),
                                   static_cast<std::int64_t>(grouped.validGroups().size()),
                                   readinessIssues(grouped, found));
}

struct Selection {
    ANOVAVariant variant;
    PostHocMethod method;
    std::vector<PairwiseComparisonResult> comparisons;
};

std::optional<Selection> select(const GroupComparisonAnalysisResult& result,
                                std::span<const NamedNumericGroup> groups, double bfP) {
    const bool unequal = bfP < 0.05;
    if (unequal && result.welchANOVA) return Selection{ANOVAVariant::welch, PostHocMethod::gamesHowell, gamesHowell(groups)};
    if (result.classicANOVA) {
        if (unequal) return Selection{ANOVAVariant::classicOneWay, PostHocMethod::gamesHowell, gamesHowell(groups)};
        const ANOVAResult& classic = *result.classicANOVA;
        return Selection{ANOVAVariant::classicOneWay, PostHocMethod::tukeyHSD,
                         tukeyHSD(groups, classic.ssWithin / static_cast<double>(classic.dfWithin), classic.dfWithin)};
    }
    // Tukey is recommended but has no pooled error to run on; the Holm fall-back takes over.
    if (result.welchANOVA) return Selection{ANOVAVariant::welch, PostHocMethod::tukeyHSD, {}};
    if (result.kruskalWallis) return Selection{ANOVAVariant::kruskalWallis, PostHocMethod::dunn, dunnTest(groups)};
    return std::nullopt;
}

const ANOVAResult& selectedTest(const GroupComparisonAnalysisResult& result, ANOVAVariant variant) {
    switch (variant) {
    case ANOVAVariant::welch: return *result.welchANOVA;
    case ANOVAVariant::brownForsythe: return *result.brownForsytheANOVA;
    case ANOVAVariant::kruskalWallis: return *result.kruskalWallis;
    case ANOVAVariant::classicOneWay: break;
    }
    return *result.classicANOVA;
}

std::optional<HomogeneityTestResult> decisionTest(std::span<const HomogeneityTestResult> tests) {
    for (const HomogeneityTestResult& test : tests)
        if (test.testName == "Brown-Forsythe") return test;
    if (tests.empty()) return std::nullopt;
    return tests.front();
}

} // namespace

std::int64_t GroupedOutcome::validCases() const {
    std::int64_t total = 0;
    for (const GroupSummary& summary : summaries) total += summary.n;
    return total;
}

std::vector<NamedNumericGroup> GroupedOutcome::validGroups() const {
    std::vector<NamedNumericGroup> groups;
    for (const GroupSummary& summary : summaries)
        if (summary.n >= 2) groups.push_back({summary.groupLabel, summary.validValues});
    return groups;
}

GroupedOutcome group(std::span<const std::string> groupValues, std::span<const std::optional<double>> outcomeValues) {
    GroupedOutcome grouped;
    const std::size_t paired = std::min(groupValues.size(), outcomeValues.size());
    grouped.pairedRows = static_cast<std::int64_t>(paired);
    grouped.lengthsDiffer = groupValues.size() != outcomeValues.size();
    std::map<std::string, std::pair<std::vector<double>, std::int64_t>> byLabel;
    for (std::size_t row = 0; row < paired; ++row) {
        std::string label = platform::text::trimmed(groupValues[row]);
        if (MissingValue::isMissing(label)) {
            ++grouped.missingGroupRows;
            continue;
        }
        auto& [values, missing] = byLabel[std::move(label)];
        if (outcomeValues[row]) values.push_back(*outcomeValues[row]);
        else ++missing;
    }
    for (auto& [label, entry] : byLabel)
        grouped.summaries.push_back(summarize(label, std::move(entry.first), entry.second));
    std::sort(grouped.summaries.begin(), grouped.summaries.end(), labelBefore);
    return grouped;
}

GroupSummary summarize(std::string label, std::vector<double> validValues, std::int64_t missingN) {
    GroupSummary summary;
    summary.groupLabel = std::move(label);
    summary.n = static_cast<std::int64_t>(validValues.size());
    summary.missingN = missingN;
    summary.mean = Descriptives::mean(validValues);
    summary.median = Descriptives::median(validValues);
    if (!validValues.empty()) {
        summary.minimum = *std::min_element(validValues.begin(), validValues.end());
        summary.maximum = *std::max_element(validValues.begin(), validValues.end());
    }
    summary.variance = Descriptives::sampleVariance(validValues);
    if (summary.variance) {
        const double n = static_cast<double>(summary.n);
        summary.standardDeviation = std::sqrt(*summary.variance);
        summary.standardError = *summary.standardDeviation / std::sqrt(n);
        const double margin = MathDistributions::studentTCritical(0.05, n - 1) * *summary.standardError;
        summary.confidenceIntervalLower = *summary.mean - margin;
        summary.confidenceIntervalUpper = *summary.mean + margin;
    }
    summary.validValues = std::move(validValues);
    return summary;
}

bool hasIQRFlag(std::span<const double> values) {
    if (values.size() < 4) return false;
    std::vector<double> sorted(values.begin(), values.end());
    std::sort(sorted.begin(), sorted.end());
    const std::size_t half = sorted.size() / 2;
    const double q1 = *Descriptives::median(std::span<const double>(sorted).first(half));
    const double q3 = *Descriptives::median(std::span<const double>(sorted).last(half));
    const double iqr = q3 - q1;
    if (!(iqr > 0)) return false;
    return sorted.front() < q1 - 1.5 * iqr || sorted.back() > q3 + 1.5 * iqr;
}

GroupFlags flags(std::span<const GroupSummary> summaries) {
    Extremes missingRates, sizes, variances;
    GroupFlags found;
    for (const GroupSummary& summary : summaries) {
        const std::int64_t rows = summary.n + summary.missingN;
        missingRates.add(rows == 0 ? 0.0 : static_cast<double>(summary.missingN) / static_cast<double>(rows));
        if (summary.n >= 1) sizes.add(static_cast<double>(summary.n));
        if (summary.variance && *summary.variance > 0) variances.add(*summary.variance);
        found.ordinalOrSkew = found.ordinalOrSkew || skewFlag(summary);
    }
    found.missingDataImbalance = missingRates.any && atLeast(missingRates.largest - missingRates.smallest, 0.1);
    found.unevenSizes = sizes.any && atLeast(sizes.largest / sizes.smallest, 1.5);
    const double ratio = variances.any ? variances.largest / variances.smallest : 1.0;
    found.varianceRatioAboveFour = above(ratio, 4);
    return found;
}

AnalysisReadiness readiness(std::string_view, std::string_view, std::span<const std::string> groupValues,
                            std::span<const std::optional<double>> outcomeValues) {
    const GroupedOutcome grouped = group(groupValues, outcomeValues);
    return readinessOf(grouped, flags(grouped.summaries));
}

std::optional<GroupComparisonAnalysisResult> analyze(const std::string& outcomeName, const std::string& groupName,
                                                     std::span<const std::string> groupValues,
                                                     std::span<const std::optional<double>> outcomeValues,
                                                     const std::string& missingDataRule) {
    const GroupedOutcome grouped = group(groupValues, outcomeValues);
    // The flags look at every value (distinct counts, quartiles): worked out once for readiness and warnings.
    const GroupFlags found = flags(grouped.summaries);
    GroupComparisonAnalysisResult result;
    result.readiness = readinessOf(grouped, found);
    if (grouped.pairedRows == 0 || result.readiness.status == AnalysisReadinessStatus::blocked) return std::nullopt;
    const std::vector<NamedNumericGroup> groups = grouped.validGroups();
    result.outcomeName = outcomeName;
    result.groupName = groupName;
    result.groupSummaries = grouped.summaries;
    result.missingGroupRows = grouped.missingGroupRows;
    result.classicANOVA = GroupComparisonTests::oneWayANOVA(groups);
    result.welchANOVA = welchANOVA(groups);
    result.brownForsytheANOVA = brownForsytheANOVA(groups);
    result.kruskalWallis = kruskalWallis(groups);
    result.homogeneityTests = homogeneityTests(groups);
    const auto decision = decisionTest(result.homogeneityTests);
    const double bfP = decision ? decision->pValue : 1.0;

    auto selection = select(result, groups, bfP);
    if (!selection) return std::nullopt;
    result.selectedVariant = selection->variant;
    result.selectedANOVA = selectedTest(result, selection->variant);
    result.recommendedPostHocMethod = selection->method;
    result.postHocMethod = selection->method;
    result.pairwiseComparisons = std::move(selection->comparisons);
    const bool equalVariances = !(bfP < 0.05);
    if (result.pairwiseComparisons.empty()) {
        result.pairwiseComparisons = pairwiseTTests(groups, PostHocMethod::holmPairwiseT, equalVariances);
        result.postHocMethod = PostHocMethod::holmPairwiseT;
    }
    result.bonferroniComparisons = pairwiseTTests(groups, PostHocMethod::bonferroniPairwiseT, equalVariances);

    result.effectSizes = effectSizes(result);
    result.warnings = warnings({grouped, found, decision, bfP});
    result.interpretation = interpretation(result, found);
    result.methodFile = methodFile(result, decision, missingDataRule);
    return result;
}

} // namespace merivante::GroupComparisonEngine
