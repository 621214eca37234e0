#pragma once

#include <filesystem>
#include <optional>

#include <QStringList>

// What the program was started with.
namespace mibrel::MibrelLaunchArguments {

// The project after the first "--open" (a leading "~" is the home folder), when something
// exists there. A missing path, or "--open" with nothing after it, is silently no project.
std::optional<std::filesystem::path> projectToOpen(const QStringList& arguments);

// Updates come from the package manager on this platform, so there is never an updater.
inline constexpr bool devMode = true;

} // namespace mibrel::MibrelLaunchArguments
