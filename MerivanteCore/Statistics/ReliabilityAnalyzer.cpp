#include "MerivanteCore/Statistics/ReliabilityAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "MerivanteCore/Statistics/Descriptives.h"
#include "MerivanteCore/Statistics/ScaleScoreBuilder.h"

namespace merivante::ReliabilityAnalyzer {
namespace {

constexpr std::int64_t kStableCases = 30;

std::size_t widthOf(const ItemMatrix& matrix) {
    std::size_t width = 0;
    for (const auto& row : matrix) width = std::max(width, row.size());
    return width;
}

// One cell per item in every row: the cells a short row lacks are unanswered items.
ItemMatrix fitted(ItemMatrix matrix, std::size_t width) {
    for (auto& row : matrix) row.resize(width);
    return matrix;
}

bool isPresent(const std::optional<double>& cell) { return cell && std::isfinite(*cell); }

// Answers near the limits of a double can overflow a sum; such a figure is absent, not infinite.
std::optional<double> finite(std::optional<double> value) { return isPresent(value) ? value : std::nullopt; }

std::vector<std::optional<double>> filled(const std::vector<std::optional<double>>& row) {
    const double average = *Descriptives::mean(ScaleScoreBuilder::presentValues(row));
    std::vector<std::optional<double>> result;
    for (const auto& cell : row) result.emplace_back(isPresent(cell) ? *cell : average);
    return result;
}

// Complete rows held by item: every statistic walks columns, and one copy serves them all.
using Columns = std::vector<std::vector<double>>;

// The rows whose cells are all present, apart from `leftOut`, which is dropped.
Columns completeColumns(const ItemMatrix& rows, std::size_t width, std::optional<std::size_t> leftOut = std::nullopt) {
    Columns columns(width);
    for (const auto& row : rows) {
        bool complete = true;
        for (std::size_t item = 0; item < width && complete; ++item)
            complete = item == leftOut || (item < row.size() && isPresent(row[item]));
        if (!complete) continue;
        for (std::size_t item = 0; item < width; ++item)
            if (item != leftOut) columns[item].push_back(*row[item]);
    }
    if (leftOut) columns.erase(columns.begin() + static_cast<std::ptrdiff_t>(*leftOut));
    return columns;
}

std::vector<double> totals(const Columns& columns, std::optional<std::size_t> leftOut = std::nullopt) {
    std::vector<double> values(columns.empty() ? 0 : columns.front().size(), 0.0);
    for (std::size_t item = 0; item < columns.size(); ++item) {
        if (item == leftOut) continue;
        for (std::size_t row = 0; row < values.size(); ++row) values[row] += columns[item][row];
    }
    return values;
}

std::optional<double> alphaOfColumns(const Columns& columns, std::optional<std::size_t> leftOut = std::nullopt) {
    const std::size_t items = columns.size() - (leftOut ? 1 : 0);
    const std::size_t rows = columns.empty() ? 0 : columns.front().size();
    if (rows < 2 || items < 2) return std::nullopt;
    double itemVariances = 0;
    for (std::size_t item = 0; item < columns.size(); ++item)
        if (item != leftOut) itemVariances += *Descriptives::sampleVariance(columns[item]);
    const double totalVariance = *Descriptives::sampleVariance(totals(columns, leftOut));
    if (!(totalVariance > 0)) return std::nullopt;
    const double k = static_cast<double>(items);
    const double alpha = k / (k - 1) * (1 - itemVariances / totalVariance);
    return std::isfinite(alpha) ? std::optional<double>(alpha) : std::nullopt;
}

std::int64_t missingCount(const ItemMatrix& rows, std::size_t item) {
    return std::count_if(rows.begin(), rows.end(), [item](const auto& row) { return !isPresent(row[item]); });
}

std::vector<ReliabilityItemStatistic> itemStatistics(const std::vector<std::string>& itemNames,
                                                     const ItemMatrix& rows, const Columns& prepared) {
    std::vector<ReliabilityItemStatistic> statistics;
    for (std::size_t item = 0; item < itemNames.size(); ++item) {
        const std::vector<double>& values = prepared[item];
        const auto corrected = itemNames.size() >= 2 ? Descriptives::pearson(values, totals(prepared, item))
                                                     : std::nullopt;
        statistics.push_back({itemNames[item], finite(Descriptives::mean(values)),
                              finite(Descriptives::sampleStandardDeviation(values)), missingCount(rows, item),
                              corrected, alphaOfColumns(prepared, item)});
    }
    return statistics;
}

// An item that does not vary has no correlations, not even with itself.
std::vector<std::vector<std::optional<double>>> correlationMatrix(const Columns& columns) {
    const std::size_t items = columns.size();
    std::vector<std::vector<std::optional<double>>> matrix(items, std::vector<std::optional<double>>(items));
    for (std::size_t i = 0; i < items; ++i) {
        for (std::size_t j = 0; j < items; ++j) {
            matrix[i][j] = Descriptives::pearson(columns[i], columns[j]);
            if (i == j && matrix[i][j]) matrix[i][j] = 1.0;
        }
    }
    return matrix;
}

std::optional<double> averageAboveDiagonal(const std::vector<std::vector<std::optional<double>>>& matrix) {
    std::vector<double> entries;
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        for (std::size_t j = i + 1; j < matrix.size(); ++j) {
            if (matrix[i][j]) entries.push_back(*matrix[i][j]);
        }
    }
    return Descriptives::mean(entries);
}

void addScaleScoreSummary(ReliabilityResult& result, const ItemMatrix& rows, ScaleScoreMethod scaleScoreMethod,
                          double minimumItemCompletion) {
    std::vector<double> present;
    for (const auto& score : ScaleScoreBuilder::scores(rows, result.missingDataRule, scaleScoreMethod,
                                                       minimumItemCompletion)) {
        if (score) present.push_back(*score);
    }
    result.scaleScoreMean = finite(Descriptives::mean(present));
    result.scaleScoreStandardDeviation = finite(Descriptives::sampleStandardDeviation(present));
}

ReliabilityMethodMetadata metadata(const ReliabilityResult& result, ScaleScoreMethod scaleScoreMethod,
                                   double minimumItemCompletion, std::size_t inputRows) {
    ReliabilityMethodMetadata method;
    method.missingDataRule = result.missingDataRule;
    method.scaleScoreMethod = scaleScoreMethod;
    method.minimumItemCompletion = minimumItemCompletion;
    method.inputRows = static_cast<std::int64_t>(inputRows);
    method.casesUsed = result.casesUsed;
    method.itemCount = static_cast<std::int64_t>(result.itemNames.size());
    return method;
}

// Alpha is unbounded below, so the text is sized to the number rather than to a fixed buffer.
std::string threeDecimals(double value) {
    const int length = std::snprintf(nullptr, 0, "%.3f", value);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::snprintf(text.data(), text.size() + 1, "%.3f", value);
    return text;
}

std::string_view band(double alpha) {
    if (alpha < 0.6) return "weak";
    if (alpha < 0.7) return "cautionary";
    if (alpha < 0.8) return "adequate for early or group-level research use";
    if (alpha < 0.9) return "strong";
    return "very high";
}

} // namespace

ItemMatrix preparedRows(const ItemMatrix& matrix, ReliabilityMissingDataRule missingDataRule,
                        double minimumItemCompletion) {
    ItemMatrix prepared;
    for (const auto& row : fitted(matrix, widthOf(matrix))) {
        if (ScaleScoreBuilder::keepsRow(row, missingDataRule, minimumItemCompletion)) prepared.push_back(filled(row));
    }
    return prepared;
}

std::optional<double> cronbachAlpha(const ItemMatrix& matrix) {
    return alphaOfColumns(completeColumns(matrix, widthOf(matrix)));
}

// Without an item, a row missing only that item is complete again.
std::vector<std::optional<double>> alphaIfDeleted(const ItemMatrix& matrix) {
    std::vector<std::optional<double>> alphas;
    const std::size_t width = widthOf(matrix);
    for (std::size_t item = 0; item < width; ++item) alphas.push_back(alphaOfColumns(completeColumns(matrix, width, item)));
    return alphas;
}

AnalysisReadiness readiness(const std::vector<std::string>& itemNames, const ItemMatrix& matrix,
                            ReliabilityMissingDataRule missingDataRule, double minimumItemCompletion) {
    using enum AnalysisReadinessStatus;
    const auto cases = static_cast<std::int64_t>(
        preparedRows(fitted(matrix, itemNames.size()), missingDataRule, minimumItemCompletion).size());
    std::vector<AnalysisReadinessIssue> issues;
    if (itemNames.size() < 2) issues.push_back({blocked, "Cronbach alpha needs at least two item columns."});
    if (matrix.empty()) issues.push_back({blocked, "No rows are available for reliability analysis."});
    if (cases < 2) issues.push_back({blocked, "Fewer than two complete or prepared cases are available."});
    else if (cases < kStableCases)
        issues.push_back({caution, "Cases used is below 30; treat alpha as unstable descriptive evidence."});
    if (missingDataRule != ReliabilityMissingDataRule::listwiseDeletion)
        issues.push_back({caution, "Missing item responses are imputed from available item means; report this rule."});
    return AnalysisReadiness::make("at least two items and at least two usable cases",
                                   static_cast<std::int64_t>(matrix.size()), cases, std::nullopt, std::move(issues));
}

std::vector<std::string> warnings(std::optional<double> alpha, std::int64_t itemCount, std::int64_t casesUsed,
                                  ReliabilityMissingDataRule missingDataRule) {
    std::vector<std::string> texts{"Reliability evidence does not prove validity."};
    if (!alpha) texts.emplace_back("Cronbach alpha could not be estimated with the prepared item matrix.");
    if (missingDataRule != ReliabilityMissingDataRule::listwiseDeletion)
        texts.push_back("Missing item responses were handled with " + std::string(platform::rawValue(missingDataRule)) +
                        "; report this rule with the scale score.");
    if (casesUsed < kStableCases)
        texts.emplace_back("Sample size is below 30; treat reliability as unstable and descriptive.");
    if (itemCount < 3) texts.emplace_back("Fewer than 3 items gives limited reliability evidence.");
    if (alpha && *alpha >= 0.9)
        texts.emplace_back("Very high alpha can indicate item redundancy; inspect item content.");
    return texts;
}

std::string interpretation(std::optional<double> alpha, std::int64_t itemCount, std::int64_t casesUsed) {
    if (!alpha) return "Reliability could not be estimated with the available data.";
    std::string text = "Cronbach's alpha is " + threeDecimals(*alpha) + ", which is " + std::string(band(*alpha)) +
                       " internal consistency evidence for these " + std::to_string(itemCount) + " items.";
    if (casesUsed < kStableCases)
        text += " Because the sample is small, this should be reported as unstable descriptive evidence.";
    return text + " This does not establish that the construct is valid.";
}

std::string recommendedAction(std::optional<double> alpha, std::int64_t itemCount) {
    if (!alpha) return "Check missing data, item coding, and item eligibility before reporting reliability.";
    if (itemCount < 3) return "Add or review items before treating this as a stable scale.";
    if (*alpha < 0.6) return "Do not use this as a scale score without revision.";
    if (*alpha < 0.7) return "Use only for descriptive or exploratory work and document the limitation.";
    if (*alpha < 0.9) return "Report with item-total diagnostics and validity limitations.";
    return "Inspect item redundancy and consider whether items are too similar.";
}

ReliabilityResult analyze(std::string constructName, std::vector<std::string> itemNames, const ItemMatrix& matrix,
                          ReliabilityMissingDataRule missingDataRule, ScaleScoreMethod scaleScoreMethod,
                          double minimumItemCompletion) {
    // A share outside 0 to 1 means "all" or "none"; a NaN would poison the record's JSON.
    minimumItemCompletion = std::isnan(minimumItemCompletion) ? 0 : std::clamp(minimumItemCompletion, 0.0, 1.0);
    const ItemMatrix rows = fitted(matrix, itemNames.size());
    const ItemMatrix prepared = preparedRows(rows, missingDataRule, minimumItemCompletion);
    ReliabilityResult result;
    result.constructName = std::move(constructName);
    result.itemNames = std::move(itemNames);
    result.casesUsed = static_cast<std::int64_t>(prepared.size());
    result.missingDataRule = missingDataRule;
    result.readiness = readiness(result.itemNames, matrix, missingDataRule, minimumItemCompletion);
    const Columns columns = completeColumns(prepared, result.itemNames.size());
    result.alpha = alphaOfColumns(columns);
    result.itemStatistics = itemStatistics(result.itemNames, rows, columns);
    result.interItemCorrelationMatrix = correlationMatrix(columns);
    result.averageInterItemCorrelation = averageAboveDiagonal(result.interItemCorrelationMatrix);
    addScaleScoreSummary(result, rows, scaleScoreMethod, minimumItemCompletion);
    const auto itemCount = static_cast<std::int64_t>(result.itemNames.size());
    result.warnings = warnings(result.alpha, itemCount, result.casesUsed, missingDataRule);
    result.interpretation = interpretation(result.alpha, itemCount, result.casesUsed);
    result.recommendedAction = recommendedAction(result.alpha, itemCount);
    result.methodMetadata = metadata(result, scaleScoreMethod, minimumItemCompletion, matrix.size());
    return result;
}

} // namespace merivante::ReliabilityAnalyzer
