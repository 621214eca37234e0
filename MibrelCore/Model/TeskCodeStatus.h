#pragma once

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mibrel {

enum class TeskCodeStatus { draft, review, accepted };

constexpr auto rawValueTable(std::type_identity<TeskCodeStatus>) {
    using enum TeskCodeStatus;
    return std::array{std::pair{draft, std::string_view("draft")}, std::pair{review, std::string_view("review")},
                      std::pair{accepted, std::string_view("accepted")}};
}

constexpr std::string_view label(TeskCodeStatus status) {
    switch (status) {
    case TeskCodeStatus::draft: return "Draft";
    case TeskCodeStatus::review: return "Review";
    case TeskCodeStatus::accepted: return "Accepted";
    }
    return {};
}

} // namespace mibrel
