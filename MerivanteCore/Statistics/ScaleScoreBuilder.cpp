#include "MerivanteCore/Statistics/ScaleScoreBuilder.h"

#include <cmath>
#include <numeric>

#include "MerivanteCore/Statistics/Descriptives.h"

namespace merivante::ScaleScoreBuilder {
namespace {

// Shares are ratios of small counts; the slack keeps a share such as 8 of 10 from failing a
// threshold of 0.8 through rounding alone, and is far below any real difference between counts.
constexpr double kShareSlack = 1e-12;

} // namespace

std::vector<double> presentValues(Row row) {
    std::vector<double> values;
    for (const std::optional<double>& cell : row) {
        if (cell && std::isfinite(*cell)) values.push_back(*cell);
    }
    return values;
}

bool keepsRow(Row row, ReliabilityMissingDataRule missingDataRule, double minimumItemCompletion) {
    const std::size_t present = presentValues(row).size();
    if (present == 0) return false;
    const double length = static_cast<double>(row.size());
    switch (missingDataRule) {
    case ReliabilityMissingDataRule::listwiseDeletion: return present == row.size();
    case ReliabilityMissingDataRule::availableItemMean:
        return static_cast<double>(present) / length >= minimumItemCompletion - kShareSlack;
    case ReliabilityMissingDataRule::excludeIfMissingMoreThanThreshold:
        return static_cast<double>(row.size() - present) / length <= 1 - minimumItemCompletion + kShareSlack;
    }
    return false;
}

std::optional<double> score(Row row, ReliabilityMissingDataRule missingDataRule, ScaleScoreMethod scaleScoreMethod,
                            double minimumItemCompletion) {
    if (!keepsRow(row, missingDataRule, minimumItemCompletion)) return std::nullopt;
    const std::vector<double> values = presentValues(row);
    const double average = *Descriptives::mean(values);
    if (scaleScoreMethod == ScaleScoreMethod::mean) return average;
    if (missingDataRule == ReliabilityMissingDataRule::listwiseDeletion)
        return std::accumulate(values.begin(), values.end(), 0.0);
    // A partly answered row is scaled to the full length, so that sums stay comparable across cases.
    return average * static_cast<double>(row.size());
}

std::vector<std::optional<double>> scores(const ItemMatrix& matrix, ReliabilityMissingDataRule missingDataRule,
                                          ScaleScoreMethod scaleScoreMethod, double minimumItemCompletion) {
    std::vector<std::optional<double>> result;
    result.reserve(matrix.size());
    for (const auto& row : matrix)
        result.push_back(score(row, missingDataRule, scaleScoreMethod, minimumItemCompletion));
    return result;
}

} // namespace merivante::ScaleScoreBuilder
