#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "MerivanteCore/Statistics/AnalysisReadiness.h"
#include "MerivanteCore/Statistics/ReliabilityRecords.h"

// Cronbach's alpha for the items of a construct, with item diagnostics and the words a
// report needs: what the figure means and what to do about it.
namespace merivante::ReliabilityAnalyzer {

// Always a result: a statistic the data cannot carry is absent and the texts say so. Rows are
// taken to have one cell per item name; a short row is missing its last items, a long one is cut.
ReliabilityResult analyze(std::string constructName, std::vector<std::string> itemNames, const ItemMatrix& matrix,
                          ReliabilityMissingDataRule missingDataRule, ScaleScoreMethod scaleScoreMethod,
                          double minimumItemCompletion);
AnalysisReadiness readiness(const std::vector<std::string>& itemNames, const ItemMatrix& matrix,
                            ReliabilityMissingDataRule missingDataRule, double minimumItemCompletion);

// Raw-score alpha over the complete rows; absent below two rows or two items, or when the
// totals do not vary. It may be negative.
std::optional<double> cronbachAlpha(const ItemMatrix& matrix);
// Alpha without each item in turn, one per item.
std::vector<std::optional<double>> alphaIfDeleted(const ItemMatrix& matrix);

// The complete rows every statistic rests on: under listwise deletion the rows answered in
// full, under the other rules the rows answering enough items, with each gap filled by the
// mean of that row's answers. Rows are as wide as the widest row.
ItemMatrix preparedRows(const ItemMatrix& matrix, ReliabilityMissingDataRule missingDataRule,
                        double minimumItemCompletion);

// The texts of a result, from the figures they describe.
std::vector<std::string> warnings(std::optional<double> alpha, std::int64_t itemCount, std::int64_t casesUsed,
                                  ReliabilityMissingDataRule missingDataRule);
std::string interpretation(std::optional<double> alpha, std::int64_t itemCount, std::int64_t casesUsed);
std::string recommendedAction(std::optional<double> alpha, std::int64_t itemCount);

} // namespace merivante::ReliabilityAnalyzer
