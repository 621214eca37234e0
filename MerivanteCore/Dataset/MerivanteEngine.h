#pragma once

#include <string_view>

namespace merivante::MerivanteEngine {

// Stamped into every archive and package manifest, so a file tells which engine wrote it.
inline constexpr std::string_view version = "Merivante native 0.1.0";

} // namespace merivante::MerivanteEngine
