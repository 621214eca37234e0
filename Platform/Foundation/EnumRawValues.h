#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace platform {

// An enumeration takes part by declaring, in its own namespace, a function
//   constexpr std::array<std::pair<E, std::string_view>, N> rawValueTable(std::type_identity<E>);
// listing every case in declaration order with its raw string. It is found by ADL.
template <class E>
concept RawRepresentable = std::is_enum_v<E> && requires { rawValueTable(std::type_identity<E>{}); };

template <RawRepresentable E>
constexpr std::string_view rawValue(E value) {
    for (const auto& [candidate, raw] : rawValueTable(std::type_identity<E>{})) {
        if (candidate == value) return raw;
    }
    return {};
}

template <RawRepresentable E>
constexpr std::optional<E> fromRawValue(std::string_view raw) {
    for (const auto& [candidate, text] : rawValueTable(std::type_identity<E>{})) {
        if (text == raw) return candidate;
    }
    return std::nullopt;
}

// Every case, in declaration order.
template <RawRepresentable E>
constexpr auto allCases() {
    constexpr auto table = rawValueTable(std::type_identity<E>{});
    std::array<E, table.size()> cases{};
    for (std::size_t i = 0; i < table.size(); ++i) cases[i] = table[i].first;
    return cases;
}

} // namespace platform
