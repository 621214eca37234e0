#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string_view>

#include "MibrelCore/Sources/TeskMediaKind.h"

// Which files are recordings, by their lower-cased ending.
namespace mibrel::TeskMediaImport {

inline constexpr std::array<std::string_view, 5> audioExtensions{"m4a", "mp3", "wav", "aac", "caf"};
inline constexpr std::array<std::string_view, 5> videoExtensions{"mov", "mp4", "m4v", "mpeg", "mpg"};

std::optional<TeskMediaKind> mediaKind(std::string_view extension);
bool isMediaFile(const std::filesystem::path& file);

} // namespace mibrel::TeskMediaImport
