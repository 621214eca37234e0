#include "MerivanteCore/Statistics/Descriptives.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace merivante::Descriptives {

std::optional<double> mean(std::span<const double> values) {
    if (values.empty()) return std::nullopt;
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

std::optional<double> sampleVariance(std::span<const double> values) {
    if (values.size() < 2) return std::nullopt;
    const double centre = *mean(values);
    double squares = 0;
    for (double value : values) squares += (value - centre) * (value - centre);
    return squares / static_cast<double>(values.size() - 1);
}

std::optional<double> sampleStandardDeviation(std::span<const double> values) {
    const auto variance = sampleVariance(values);
    if (!variance) return std::nullopt;
    return std::sqrt(*variance);
}

std::optional<double> median(std::span<const double> values) {
    if (values.empty()) return std::nullopt;
    std::vector<double> sorted(values.begin(), values.end());
    std::sort(sorted.begin(), sorted.end());
    const std::size_t middle = sorted.size() / 2;
    if (sorted.size() % 2 == 1) return sorted[middle];
    return (sorted[middle - 1] + sorted[middle]) / 2;
}

std::optional<double> pearson(std::span<const double> x, std::span<const double> y) {
    if (x.size() != y.size() || x.size() < 2) return std::nullopt;
    const double meanX = *mean(x);
    const double meanY = *mean(y);
    double sxy = 0, sxx = 0, syy = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        sxy += (x[i] - meanX) * (y[i] - meanY);
        sxx += (x[i] - meanX) * (x[i] - meanX);
        syy += (y[i] - meanY) * (y[i] - meanY);
    }
    if (!(sxx > 0) || !(syy > 0)) return std::nullopt;
    const double r = sxy / std::sqrt(sxx * syy);
    return std::isfinite(r) ? std::optional<double>(std::clamp(r, -1.0, 1.0)) : std::nullopt;
}

MidRanks midRanks(std::span<const double> values) {
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
    MidRanks result{std::vector<double>(values.size()), 0};
    for (std::size_t start = 0; start < order.size();) {
        std::size_t end = start + 1;
        while (end < order.size() && values[order[end]] == values[order[start]]) ++end;
        // Positions start..end-1 hold ranks start+1..end; their mean is the shared rank.
        const double shared = (static_cast<double>(start + 1) + static_cast<double>(end)) / 2;
        for (std::size_t i = start; i < end; ++i) result.ranks[order[i]] = shared;
        const double tied = static_cast<double>(end - start);
        result.tieSum += tied * tied * tied - tied;
        start = end;
    }
    return result;
}

} // namespace merivante::Descriptives
