#pragma once

#include <filesystem>
#include <optional>

// Where the program's bundled files are: installed beside the program
// ("<prefix>/share/mibrel"), or, when run from a build tree, the source tree's Resources.
namespace mibrel::MibrelResourcePaths {

std::optional<std::filesystem::path> resourceDirectory();

// Where a build tree keeps its built resources (the helper program), for running
// uninstalled; used only when the resource directory holds no helper.
std::filesystem::path developmentResourceRoot();

// The helper program: $MIBREL_APPLE_HELPER when that names an executable file, then the
// resource directory's, then the build tree's. Throws MibrelSidecarError (missing helper).
std::filesystem::path appleHelperExecutable();

// The bundled sample study, when this copy of the program has it.
std::optional<std::filesystem::path> bundledSampleURL();

} // namespace mibrel::MibrelResourcePaths
