#pragma once

#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mibrel {

enum class TeskMediaKind { audio, video };

constexpr auto rawValueTable(std::type_identity<TeskMediaKind>) {
    return std::array{std::pair{TeskMediaKind::audio, std::string_view("audio")},
                      std::pair{TeskMediaKind::video, std::string_view("video")}};
}

} // namespace mibrel
