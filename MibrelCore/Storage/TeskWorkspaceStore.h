#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "MibrelCore/Model/TeskWorkspace.h"

// Reads and writes a package's analysis state, "qual/workspace.json".
namespace mibrel::TeskWorkspaceStore {

inline constexpr std::string_view qualDirName = "qual";
inline constexpr std::string_view workspaceFileName = "workspace.json";

std::filesystem::path workspaceURL(const std::filesystem::path& projectURL);

// Absent when the package has no analysis yet. A file that cannot be read or decoded
// throws (FileError, DecodingError) and is left as it is.
std::optional<TeskWorkspace> load(const std::filesystem::path& projectURL);

// Saves a copy stamped with the current moment, atomically, creating "qual/" if needed.
// The caller's workspace keeps its own `updatedAt`. Throws FileError or EncodingError.
void save(const TeskWorkspace& workspace, const std::filesystem::path& projectURL);

} // namespace mibrel::TeskWorkspaceStore
