#include "MibrelCore/Storage/TeskWorkspaceStore.h"

#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonFile.h"

namespace mibrel::TeskWorkspaceStore {

std::filesystem::path workspaceURL(const std::filesystem::path& projectURL) {
    return projectURL / qualDirName / workspaceFileName;
}

std::optional<TeskWorkspace> load(const std::filesystem::path& projectURL) {
    const auto url = workspaceURL(projectURL);
    if (!platform::files::itemExists(url)) return std::nullopt;
    return platform::json::readJsonFile<TeskWorkspace>(url);
}

void save(const TeskWorkspace& workspace, const std::filesystem::path& projectURL) {
    TeskWorkspace stamped = workspace; // the arrays are shared, not copied
    stamped.updatedAt = platform::now();
    platform::files::createDirectories(projectURL / qualDirName);
    platform::json::writeJsonFile(workspaceURL(projectURL), stamped);
}

} // namespace mibrel::TeskWorkspaceStore
