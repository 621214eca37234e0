#pragma once

#include <array>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "MibrelCore/Model/TeskResponseRef.h"
#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

enum class TeskSuggestionStatus { pending, accepted, dismissed };

constexpr auto rawValueTable(std::type_identity<TeskSuggestionStatus>) {
    using enum TeskSuggestionStatus;
    return std::array{std::pair{pending, std::string_view("pending")}, std::pair{accepted, std::string_view("accepted")},
                      std::pair{dismissed, std::string_view("dismissed")}};
}

// Candidate codes for one segment, waiting for the researcher's Accept or Dismiss. Never
// saved in the project.
struct TeskCodeSuggestion {
    Uuid id = Uuid::random();
    TeskResponseRef response; // without a character range
    std::vector<Uuid> suggestedCodeIDs;
    double confidence = 0; // 0 to 1
    std::string rationale;
    TeskSuggestionStatus status = TeskSuggestionStatus::pending;
    Date createdAt = platform::now();

    bool operator==(const TeskCodeSuggestion&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskCodeSuggestion;
        return std::tuple{required("confidence", &T::confidence),     required("createdAt", &T::createdAt),
                          required("id", &T::id),                     required("rationale", &T::rationale),
                          required("response", &T::response),         required("status", &T::status),
                          required("suggestedCodeIDs", &T::suggestedCodeIDs)};
    }
};

} // namespace mibrel
