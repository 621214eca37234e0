#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "Platform/Json/JsonFields.h"

namespace merivante {

// How a survey column looks to the scale-item picker. Declared here rather than inside the
// record so its raw-value table sits beside it for ADL.
enum class ScaleItemCategory { likelyScale, likelyInformational, likelyIDMetadata, unclear };

constexpr auto rawValueTable(std::type_identity<ScaleItemCategory>) {
    using enum ScaleItemCategory;
    using P = std::pair<ScaleItemCategory, std::string_view>;
    return std::array{P{likelyScale, "likelyScale"}, P{likelyInformational, "likelyInformational"},
                      P{likelyIDMetadata, "likelyIDMetadata"}, P{unclear, "unclear"}};
}

std::string_view displayName(ScaleItemCategory category);

struct ScaleItemClassification {
    using Category = ScaleItemCategory;

    std::string columnName;
    Category category = Category::unclear;
    double scaleProbability = 0;      // 0...1, two decimals
    std::vector<std::string> reasons; // at most four, in the order they were found
    bool autoSelectAsScale = false;   // exactly for likelyScale

    bool operator==(const ScaleItemClassification&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = ScaleItemClassification;
        return std::tuple{required("autoSelectAsScale", &T::autoSelectAsScale), required("category", &T::category),
                          required("columnName", &T::columnName), required("reasons", &T::reasons),
                          required("scaleProbability", &T::scaleProbability)};
    }
};

// The whole-number answer range of a rating column, such as 1-5 or 0-10.
struct LikertRange {
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;

    bool operator==(const LikertRange&) const = default;
};

} // namespace merivante

// Scores each column of a survey table for how likely it holds a rating-scale item, so the
// reliability setup can pre-select the likely ones. Pure functions; every input gets a result.
namespace merivante::ScaleItemClassifier {

// One result per header, in order. A header past the end of `columns` counts as an empty
// column; `questionText` is looked up by header.
std::vector<ScaleItemClassification> classify(const std::vector<std::string>& headers,
                                              const std::vector<std::vector<std::string>>& columns,
                                              const std::map<std::string, std::string>& questionText);

// The answers trimmed, without the blanks and missing markers ("NA", "n/a", "null", ".",
// "-", "missing", in any case). Kept answers keep their case.
std::vector<std::string> cleanedValues(const std::vector<std::string>& column);

// Present when every cleaned answer is a whole number and they span 1 to 10 steps within 0...10.
std::optional<LikertRange> likertRange(const std::vector<std::string>& cleaned);

// One column, given its cleaned answers and whether a neighbouring column shares its Likert range.
ScaleItemClassification classifyColumn(std::string_view name, const std::vector<std::string>& cleaned,
                                       std::string_view questionText, bool sharesRangeWithNeighbor);

} // namespace merivante::ScaleItemClassifier
