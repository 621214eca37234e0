#pragma once

#include <optional>
#include <span>
#include <vector>

#include "MerivanteCore/Statistics/ReliabilityRecords.h"

// One score per case from its item answers, under the same missing-data rules the
// reliability analysis prepares its rows with, so that scores and alpha describe the same cases.
namespace merivante::ScaleScoreBuilder {

using Row = std::span<const std::optional<double>>;

// One score per row, absent where the row does not answer enough items.
std::vector<std::optional<double>> scores(const ItemMatrix& matrix, ReliabilityMissingDataRule missingDataRule,
                                          ScaleScoreMethod scaleScoreMethod, double minimumItemCompletion);
std::optional<double> score(Row row, ReliabilityMissingDataRule missingDataRule, ScaleScoreMethod scaleScoreMethod,
                            double minimumItemCompletion);

// Whether a row answers enough items to be kept under the rule; a row without any answer never is.
bool keepsRow(Row row, ReliabilityMissingDataRule missingDataRule, double minimumItemCompletion);
// The answers of a row in item order. A value that is not finite counts as unanswered: it
// cannot take part in any sum.
std::vector<double> presentValues(Row row);

} // namespace merivante::ScaleScoreBuilder
