#pragma once

#include <filesystem>
#include <optional>

// Where the program's bundled files are: installed beside the program
// ("<prefix>/share/mibrel"), or, when run from a build tree, the source tree's Resources.
namespace mibrel::MibrelResourcePaths {

std::optional<std::filesystem::path> resourceDirectory();

// The bundled sample study, when this copy of the program has it.
std::optional<std::filesystem::path> bundledSampleURL();

} // namespace mibrel::MibrelResourcePaths
