#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "MerivanteCore/Statistics/AnalysisReadiness.h"
#include "MerivanteCore/Statistics/ReliabilityRecords.h"

// What the latent-variable analyses share: the complete cases of a set of items, their
// correlations, a one-factor fit and whether the sample can carry it.
namespace merivante::LatentVariableSupport {

struct PreparedItems {
    std::size_t itemCount = 0;
    std::int64_t totalRows = 0;      // the length of the longest item
    ItemMatrix completeRows;         // the cases that answered every item, as rows
    std::vector<double> correlation; // itemCount by itemCount, row-major
};

// `items` holds one column per item; a short column is unanswered past its end. Absent below
// two items or three complete cases, or when an item does not vary over those cases.
std::optional<PreparedItems> prepare(const std::vector<std::vector<std::optional<double>>>& items);

// Principal-axis loadings of one factor from an n by n correlation matrix, most of them
// positive; absent when the matrix is malformed or the iteration leaves finite numbers.
std::optional<std::vector<double>> singleFactorLoadings(const std::vector<double>& correlation, std::size_t n);

AnalysisReadiness readiness(std::string_view method, std::int64_t itemCount, std::int64_t totalRows,
                            std::int64_t casesUsed);

} // namespace merivante::LatentVariableSupport
