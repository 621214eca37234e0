#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "MerivanteCore/Statistics/GroupComparisonRecords.h"

// Do the means of a numeric outcome differ across groups, and between which groups? Every
// omnibus test is computed, one is chosen by a fixed rule, the matching post hoc method runs,
// and the result says in words what was done and what may not be claimed.
namespace merivante::GroupComparisonEngine {

// The outcome paired with its group, row by row, up to the shorter column.
struct GroupedOutcome {
    std::vector<GroupSummary> summaries; // sorted by label
    std::int64_t pairedRows = 0;
    std::int64_t missingGroupRows = 0;
    bool lengthsDiffer = false;

    std::int64_t validCases() const;
    // The groups with at least two valid values, in label order.
    std::vector<NamedNumericGroup> validGroups() const;
};

// A group's size, mean and sample variance, computed once for all tests and pairs.
struct GroupMoments {
    std::string name;
    double n = 0;
    double mean = 0;
    double variance = 0;
};
// For groups of at least two values.
std::vector<GroupMoments> momentsOf(std::span<const NamedNumericGroup> groups);
// Welch-Satterthwaite degrees of freedom of a difference of two means.
double welchDegreesOfFreedom(const GroupMoments& a, const GroupMoments& b);

// The patterns in the summaries that call for care.
struct GroupFlags {
    bool missingDataImbalance = false;
    bool unevenSizes = false;
    bool varianceRatioAboveFour = false;
    bool ordinalOrSkew = false;
};

GroupedOutcome group(std::span<const std::string> groupValues, std::span<const std::optional<double>> outcomeValues);
GroupSummary summarize(std::string label, std::vector<double> validValues, std::int64_t missingN);
GroupFlags flags(std::span<const GroupSummary> summaries);
// Tukey's fences on the quartiles of the sorted halves.
bool hasIQRFlag(std::span<const double> values);

AnalysisReadiness readiness(std::string_view outcomeName, std::string_view groupName,
                            std::span<const std::string> groupValues,
                            std::span<const std::optional<double>> outcomeValues);
std::optional<GroupComparisonAnalysisResult> analyze(const std::string& outcomeName, const std::string& groupName,
                                                     std::span<const std::string> groupValues,
                                                     std::span<const std::optional<double>> outcomeValues,
                                                     const std::string& missingDataRule);

std::optional<ANOVAResult> welchANOVA(std::span<const NamedNumericGroup> groups);
std::optional<ANOVAResult> brownForsytheANOVA(std::span<const NamedNumericGroup> groups);
std::optional<ANOVAResult> kruskalWallis(std::span<const NamedNumericGroup> groups);
std::optional<HomogeneityTestResult> leveneTest(std::span<const NamedNumericGroup> groups, LeveneCenter center);
// Levene, then Brown-Forsythe, each when it can be computed.
std::vector<HomogeneityTestResult> homogeneityTests(std::span<const NamedNumericGroup> groups);

std::vector<PairwiseComparisonResult> tukeyHSD(std::span<const NamedNumericGroup> groups, double msWithin,
                                               std::int64_t dfWithin);
std::vector<PairwiseComparisonResult> gamesHowell(std::span<const NamedNumericGroup> groups);
std::vector<PairwiseComparisonResult> pairwiseTTests(std::span<const NamedNumericGroup> groups, PostHocMethod method,
                                                     bool equalVariances);
std::vector<PairwiseComparisonResult> dunnTest(std::span<const NamedNumericGroup> groups);
std::vector<double> adjust(std::span<const double> pValues, PostHocMethod method);

// The parts of the result that follow from the tests.
struct ReportInputs {
    const GroupedOutcome& grouped;
    const GroupFlags& flags;
    std::optional<HomogeneityTestResult> decisionTest;
    double bfP = 1;
};
EffectSizeResult effectSizes(const GroupComparisonAnalysisResult& result);
std::vector<AssumptionWarning> warnings(const ReportInputs& inputs);
GroupComparisonInterpretation interpretation(const GroupComparisonAnalysisResult& result, const GroupFlags& flags);
GroupComparisonMethodFile methodFile(const GroupComparisonAnalysisResult& result,
                                     const std::optional<HomogeneityTestResult>& decisionTest,
                                     const std::string& missingDataRule);

} // namespace merivante::GroupComparisonEngine
