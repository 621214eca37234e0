#pragma once

#include <optional>
#include <vector>

#include "MerivanteCore/Statistics/ReliabilityRecords.h"

// McDonald's omega from a one-factor model of the items, with notes relating it to alpha.
namespace merivante::OmegaReliabilityAnalyzer {

// `items` holds one column per item. Absent when there are fewer than two items or three
// complete cases, an item does not vary, or the factor fit gives no usable omega.
std::optional<OmegaReliabilityResult> analyze(const std::vector<std::vector<std::optional<double>>>& items);

} // namespace merivante::OmegaReliabilityAnalyzer
