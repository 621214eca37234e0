#pragma once

#include <optional>
#include <vector>

#include "Platform/Foundation/Uuid.h"

namespace merivante {

using Uuid = platform::Uuid;
// A column of numbers, absent where the value is missing; positions are kept throughout.
using NumericColumn = std::vector<std::optional<double>>;

// Values equal to one of `sources` become `output` (absent output: missing).
struct ValueRecodeRule {
    Uuid id = Uuid::random();
    std::vector<double> sources;
    std::optional<double> output;

    bool operator==(const ValueRecodeRule&) const = default;
};

struct RangeRecodeRule {
    Uuid id = Uuid::random();
    double lower = 0;
    double upper = 0;
    bool lowerInclusive = true;
    bool upperInclusive = true;
    std::optional<double> output;

    bool operator==(const RangeRecodeRule&) const = default;
};

enum class AggregateOp { sum, mean, count, minimum, maximum };
enum class PairOp { difference, ratio };

// New columns from old ones, for the dataset editor's computed variables.
namespace DataTransforms {

// The first rule with a matching source decides; unmatched values are kept or go missing.
NumericColumn recodeValues(const NumericColumn& values, const std::vector<ValueRecodeRule>& rules, bool copyUnmatched);
NumericColumn recodeRanges(const NumericColumn& values, const std::vector<RangeRecodeRule>& rules, bool copyUnmatched);
// minimum + maximum - value inside the closed range; missing outside it.
NumericColumn reverseCode(const NumericColumn& values, double minimum, double maximum);
// As long as the longer column; missing where either is, and for a ratio by zero.
NumericColumn pairCombine(const NumericColumn& a, const NumericColumn& b, PairOp op);
// One value per row across the columns. `count` always counts; the others are missing
// when no value was found or when fewer than `minimumCompletion` of the columns answered.
NumericColumn rowAggregate(const std::vector<NumericColumn>& columns, AggregateOp op, double minimumCompletion);

} // namespace DataTransforms
} // namespace merivante
