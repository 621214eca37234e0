#include "MerivanteCore/Statistics/LatentVariableSupport.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "MerivanteCore/Statistics/Descriptives.h"
#include "MerivanteCore/Statistics/LinearAlgebra.h"

namespace merivante::LatentVariableSupport {
namespace {

constexpr int kMaximumRounds = 100;
constexpr double kConvergence = 1e-9;

bool isPresent(const std::vector<std::optional<double>>& column, std::size_t row) {
    return row < column.size() && column[row] && std::isfinite(*column[row]);
}

ItemMatrix completeRows(const std::vector<std::vector<std::optional<double>>>& items, std::size_t totalRows) {
    ItemMatrix rows;
    for (std::size_t r = 0; r < totalRows; ++r) {
        const bool complete =
            std::all_of(items.begin(), items.end(), [r](const auto& column) { return isPresent(column, r); });
        if (!complete) continue;
        std::vector<std::optional<double>> row;
        for (const auto& column : items) row.push_back(column[r]);
        rows.push_back(std::move(row));
    }
    return rows;
}

// Each item as z-scores over the complete rows; absent for an item that does not vary.
std::optional<std::vector<std::vector<double>>> standardised(const ItemMatrix& rows, std::size_t itemCount) {
    std::vector<std::vector<double>> columns;
    for (std::size_t item = 0; item < itemCount; ++item) {
        std::vector<double> values;
        for (const auto& row : rows) values.push_back(*row[item]);
        const double centre = *Descriptives::mean(values);
        const auto spread = Descriptives::sampleStandardDeviation(values);
        if (!spread || !(*spread > 0) || !std::isfinite(*spread)) return std::nullopt;
        for (double& value : values) value = (value - centre) / *spread;
        columns.push_back(std::move(values));
    }
    return columns;
}

std::vector<double> correlationOf(const std::vector<std::vector<double>>& z) {
    const std::size_t k = z.size(), n = z.front().size();
    std::vector<double> r(k * k, 1.0);
    for (std::size_t i = 0; i < k; ++i) {
        for (std::size_t j = i + 1; j < k; ++j) {
            double sum = 0;
            for (std::size_t c = 0; c < n; ++c) sum += z[i][c] * z[j][c];
            r[i * k + j] = r[j * k + i] = std::clamp(sum / static_cast<double>(n - 1), -1.0, 1.0);
        }
    }
    return r;
}

// Squared multiple correlations, or each item's largest absolute correlation with another
// when the matrix cannot be inverted.
std::vector<double> startingCommunalities(const std::vector<double>& correlation, std::size_t n) {
    std::vector<double> communalities(n, 0.0);
    const auto inverse = LinearAlgebra::invert(correlation, n);
    bool usable = inverse.has_value();
    for (std::size_t i = 0; usable && i < n; ++i) {
        communalities[i] = 1 - 1 / (*inverse)[i * n + i];
        usable = std::isfinite(communalities[i]);
    }
    if (usable) return communalities;
    for (std::size_t i = 0; i < n; ++i) {
        communalities[i] = 0;
        for (std::size_t j = 0; j < n; ++j) {
            if (j != i) communalities[i] = std::max(communalities[i], std::fabs(correlation[i * n + j]));
        }
    }
    return communalities;
}

// A factor's sign is arbitrary; most items should load positively on it.
void orient(std::vector<double>& loadings) {
    const auto positive = std::count_if(loadings.begin(), loadings.end(), [](double l) { return l > 0; });
    if (static_cast<std::size_t>(positive) * 2 < loadings.size()) {
        for (double& loading : loadings) loading = -loading;
    }
}

} // namespace

std::optional<PreparedItems> prepare(const std::vector<std::vector<std::optional<double>>>& items) {
    if (items.size() < 2) return std::nullopt;
    std::size_t totalRows = 0;
    for (const auto& column : items) totalRows = std::max(totalRows, column.size());
    PreparedItems prepared{items.size(), static_cast<std::int64_t>(totalRows), completeRows(items, totalRows), {}};
    if (prepared.completeRows.size() < 3) return std::nullopt;
    const auto z = standardised(prepared.completeRows, items.size());
    if (!z) return std::nullopt;
    prepared.correlation = correlationOf(*z);
    return prepared;
}

std::optional<std::vector<double>> singleFactorLoadings(const std::vector<double>& correlation, std::size_t n) {
    if (n < 1 || correlation.size() != n * n) return std::nullopt;
    std::vector<double> working = correlation;
    const std::vector<double> start = startingCommunalities(correlation, n);
    for (std::size_t i = 0; i < n; ++i) working[i * n + i] = start[i];
    std::vector<double> loadings(n, 0.0);
    for (int round = 0; round < kMaximumRounds; ++round) {
        const auto eigen = LinearAlgebra::symmetricEigen(working, n);
        if (!eigen) return std::nullopt;
        const double scale = std::sqrt(std::max(eigen->values.front(), 0.0));
        double change = 0;
        for (std::size_t i = 0; i < n; ++i) {
            loadings[i] = scale * eigen->vectors.front()[i];
            const double communality = loadings[i] * loadings[i];
            change = std::max(change, std::fabs(communality - working[i * n + i]));
            working[i * n + i] = communality;
        }
        if (!std::isfinite(change)) return std::nullopt;
        if (change < kConvergence) break;
    }
    orient(loadings);
    return loadings;
}

AnalysisReadiness readiness(std::string_view method, std::int64_t itemCount, std::int64_t totalRows,
                            std::int64_t casesUsed) {
    using enum AnalysisReadinessStatus;
    std::vector<AnalysisReadinessIssue> issues;
    if (itemCount < 2) issues.push_back({blocked, std::string(method) + " needs at least two item columns."});
    if (casesUsed < 3) issues.push_back({blocked, "Fewer than three complete cases are available."});
    else if (casesUsed < 100)
        issues.push_back(
            {caution, "Cases used is below 100; latent-variable estimates are unstable at this sample size."});
    if (casesUsed < 5 * itemCount)
        issues.push_back({caution, "Fewer than five cases per item; results are descriptive only."});
    return AnalysisReadiness::make("at least two items and at least three complete cases", totalRows, casesUsed,
                                   std::nullopt, std::move(issues));
}

} // namespace merivante::LatentVariableSupport
