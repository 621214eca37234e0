#pragma once

#include <optional>
#include <span>
#include <vector>

// Plain summaries of a sample, shared by the analyses so that every one of them
// computes a mean or a variance the same way.
namespace merivante::Descriptives {

// Absent for an empty sample.
std::optional<double> mean(std::span<const double> values);
// With the n - 1 denominator; absent below two values.
std::optional<double> sampleVariance(std::span<const double> values);
std::optional<double> sampleStandardDeviation(std::span<const double> values);
// Absent for an empty sample.
std::optional<double> median(std::span<const double> values);
// Pearson's r; absent below two pairs, for unequal lengths, or when either side is constant.
std::optional<double> pearson(std::span<const double> x, std::span<const double> y);

// Ranks from 1 in the order of `values`, ties sharing their mean rank.
struct MidRanks {
    std::vector<double> ranks;
    double tieSum = 0; // the sum of t^3 - t over the tied runs
};
MidRanks midRanks(std::span<const double> values);

} // namespace merivante::Descriptives
