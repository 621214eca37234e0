#pragma once

#include <optional>
#include <span>
#include <vector>

#include "MerivanteCore/Statistics/GroupComparisonRecords.h"

// The elementary tests behind a group comparison. Each is absent when the data cannot carry it.
namespace merivante::GroupComparisonTests {

// Over the groups with at least two values.
std::optional<ANOVAResult> oneWayANOVA(std::span<const NamedNumericGroup> groups);
std::optional<TTestResult> oneSampleTTest(std::span<const double> values, double populationMean);
// The one-sample test of before - after against 0.
std::optional<TTestResult> pairedSamplesTTest(std::span<const double> before, std::span<const double> after);
// Every pair on the pooled error of `anova`, with Sidak-widened bounds; p values are per comparison.
std::optional<std::vector<ANOVAPairwiseComparison>> pairwiseComparisons(std::span<const NamedNumericGroup> groups,
                                                                        const ANOVAResult& anova,
                                                                        double familyConfidenceLevel);

// The groups with at least two values: the ones every test can use.
std::vector<NamedNumericGroup> testableGroups(std::span<const NamedNumericGroup> groups);

} // namespace merivante::GroupComparisonTests
