#include "MerivanteCore/Dataset/DataTransforms.h"

#include <algorithm>
#include <numeric>

namespace merivante::DataTransforms {
namespace {

bool inRange(double value, const RangeRecodeRule& rule) {
    const bool aboveLower = rule.lowerInclusive ? rule.lower <= value : rule.lower < value;
    const bool belowUpper = rule.upperInclusive ? value <= rule.upper : value < rule.upper;
    return aboveLower && belowUpper;
}

// Recodes each present value: a rule's output when one matched (itself
// possibly absent), else the value kept or dropped.
template <class Match>
NumericColumn recode(const NumericColumn& values, bool copyUnmatched, Match match) {
    NumericColumn result;
    result.reserve(values.size());
    for (const auto& value : values) {
        if (!value) {
            result.push_back(std::nullopt);
            continue;
        }
        const std::optional<std::optional<double>> matched = match(*value);
        result.push_back(matched ? *matched : (copyUnmatched ? value : std::nullopt));
    }
    return result;
}

std::optional<double> at(const NumericColumn& column, std::size_t row) {
    return row < column.size() ? column[row] : std::nullopt;
}

std::optional<double> aggregate(const std::vector<double>& found, AggregateOp op) {
    switch (op) {
    case AggregateOp::sum: return std::accumulate(found.begin(), found.end(), 0.0);
    case AggregateOp::mean: return std::accumulate(found.begin(), found.end(), 0.0) / static_cast<double>(found.size());
    case AggregateOp::count: return static_cast<double>(found.size());
    case AggregateOp::minimum: return *std::min_element(found.begin(), found.end());
    case AggregateOp::maximum: return *std::max_element(found.begin(), found.end());
    }
    return std::nullopt;
}

} // namespace

NumericColumn recodeValues(const NumericColumn& values, const std::vector<ValueRecodeRule>& rules, bool copyUnmatched) {
    return recode(values, copyUnmatched, [&](double value) -> std::optional<std::optional<double>> {
        for (const ValueRecodeRule& rule : rules) {
            if (std::find(rule.sources.begin(), rule.sources.end(), value) != rule.sources.end()) return rule.output;
        }
        return std::nullopt;
    });
}

NumericColumn recodeRanges(const NumericColumn& values, const std::vector<RangeRecodeRule>& rules, bool copyUnmatched) {
    return recode(values, copyUnmatched, [&](double value) -> std::optional<std::optional<double>> {
        for (const RangeRecodeRule& rule : rules) {
            if (inRange(value, rule)) return rule.output;
        }
        return std::nullopt;
    });
}

NumericColumn reverseCode(const NumericColumn& values, double minimum, double maximum) {
    NumericColumn result;
    result.reserve(values.size());
    for (const auto& value : values) {
        const bool inside = value && *value >= minimum && *value <= maximum;
        result.push_back(inside ? std::optional(minimum + maximum - *value) : std::nullopt);
    }
    return result;
}

NumericColumn pairCombine(const NumericColumn& a, const NumericColumn& b, PairOp op) {
    NumericColumn result(std::max(a.size(), b.size()));
    for (std::size_t row = 0; row < result.size(); ++row) {
        const auto left = at(a, row);
        const auto right = at(b, row);
        if (!left || !right) continue;
        if (op == PairOp::difference) result[row] = *left - *right;
        else if (*right != 0) result[row] = *left / *right;
    }
    return result;
}

NumericColumn rowAggregate(const std::vector<NumericColumn>& columns, AggregateOp op, double minimumCompletion) {
    std::size_t rows = 0;
    for (const auto& column : columns) rows = std::max(rows, column.size());
    NumericColumn result(rows);
    std::vector<double> found;
    for (std::size_t row = 0; row < rows; ++row) {
        found.clear();
        for (const auto& column : columns) {
            if (const auto value = at(column, row)) found.push_back(*value);
        }
        if (op == AggregateOp::count) {
            result[row] = static_cast<double>(found.size());
            continue;
        }
        const double completion = static_cast<double>(found.size()) / static_cast<double>(columns.size());
        if (found.empty() || completion < minimumCompletion) continue;
        result[row] = aggregate(found, op);
    }
    return result;
}

} // namespace merivante::DataTransforms
