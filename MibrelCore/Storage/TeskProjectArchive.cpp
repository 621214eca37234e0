#include "MibrelCore/Storage/TeskProjectArchive.h"

#include "MibrelCore/Storage/TeskProjectError.h"
#include "Platform/Files/FileSystem.h"
#include "Platform/Json/JsonFile.h"

namespace mibrel::TeskProjectArchive {
namespace files = platform::files;

NewProjectLocation newProjectLocation(const std::filesystem::path& chosen) {
    NewProjectLocation result{chosen, {}, false};
    const std::string ending = "." + std::string(fileExtension);
    result.mayReplace = chosen.extension() == ending;
    if (!result.mayReplace) result.location += ending;
    result.title = result.location.stem().string();
    return result;
}

void createEmpty(const std::filesystem::path& location, const std::string& title, bool replacingExisting) {
    if (files::itemExists(location)) {
        if (!replacingExisting) {
            throw TeskProjectError::writeFailed(
                "A project named " + files::lastPathComponent(location) +
                " already exists here. Keep the .mvibrl ending in the save dialog and choose Replace, or pick "
                "another name.");
        }
        try {
            files::removeItem(location);
        } catch (const files::FileError& error) {
            throw TeskProjectError::writeFailed(std::string("Could not replace the existing project: ") +
                                                error.what());
        }
    }
    files::createDirectories(location);
    TeskProjectManifest manifest;
    manifest.title = title;
    saveManifest(manifest, location);
}

TeskProjectManifest loadManifest(const std::filesystem::path& projectURL) {
    std::string text;
    try {
        text = files::readFile(projectURL / manifestFileName);
    } catch (const files::FileError&) {
        throw TeskProjectError::invalidPackage();
    }
    auto manifest = platform::json::decode<TeskProjectManifest>(text);
    // A substring, not equality, so other editions' packages open too.
    if (manifest.app.find("Mibrel") == std::string::npos) throw TeskProjectError::invalidPackage();
    if (manifest.formatVersion >= 2) throw TeskProjectError::unsupportedVersion(manifest.formatVersion);
    return manifest;
}

void saveManifest(const TeskProjectManifest& manifest, const std::filesystem::path& projectURL) {
    TeskProjectManifest stamped = manifest;
    stamped.updatedAt = platform::now();
    try {
        platform::json::writeJsonFile(projectURL / manifestFileName, stamped);
    } catch (const files::FileError& error) {
        throw TeskProjectError::writeFailed(error.what());
    }
}

} // namespace mibrel::TeskProjectArchive
