#pragma once

#include <array>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

enum class TeskAnalysisStatus { strong, review, missing };

constexpr auto rawValueTable(std::type_identity<TeskAnalysisStatus>) {
    using enum TeskAnalysisStatus;
    return std::array{std::pair{strong, std::string_view("strong")}, std::pair{review, std::string_view("review")},
                      std::pair{missing, std::string_view("missing")}};
}

// One of the twelve fixed checks of how far the analysis can be defended.
struct TeskRigorCheck {
    std::string id; // the fixed key, e.g. "coding_coverage"
    std::string label;
    TeskAnalysisStatus status = TeskAnalysisStatus::missing;
    std::string guidance;

    bool operator==(const TeskRigorCheck&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskRigorCheck;
        return std::tuple{required("guidance", &T::guidance), required("id", &T::id), required("label", &T::label),
                          required("status", &T::status)};
    }
};

} // namespace mibrel
