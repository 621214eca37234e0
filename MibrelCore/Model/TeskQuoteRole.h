#pragma once

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mibrel {

enum class TeskQuoteRole { exemplar, supporting, counterExample };

constexpr auto rawValueTable(std::type_identity<TeskQuoteRole>) {
    using enum TeskQuoteRole;
    return std::array{std::pair{exemplar, std::string_view("exemplar")},
                      std::pair{supporting, std::string_view("supporting")},
                      std::pair{counterExample, std::string_view("counterExample")}};
}

} // namespace mibrel
