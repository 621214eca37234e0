#pragma once

#include <filesystem>
#include <vector>

class QSettings;

// Recently opened projects, most recent first, as absolute paths under the settings key
// "mibrel.recentProjects".
namespace mibrel::MibrelRecentProjectsStore {

inline constexpr int kMaximumCount = 12;

// Moves the project to the front (no duplicates) and keeps the twelve most recent.
void remember(QSettings& settings, const std::filesystem::path& project);

// The stored projects that exist now, in order. Missing ones are skipped, not removed:
// a project on a disconnected drive comes back when the drive does.
std::vector<std::filesystem::path> load(const QSettings& settings);

void forget(QSettings& settings, const std::filesystem::path& project);

} // namespace mibrel::MibrelRecentProjectsStore
