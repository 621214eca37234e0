#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "MibrelCore/Storage/TeskProjectManifest.h"

// Creates project packages (folders ending ".mvibrl") and reads and writes their manifest.
namespace mibrel::TeskProjectArchive {

inline constexpr std::string_view fileExtension = "mvibrl";
inline constexpr std::string_view manifestFileName = "manifest.json";

// Where a new project goes when the user chose `chosen` in a save dialog (or typed it).
struct NewProjectLocation {
    std::filesystem::path location; // with the ".mvibrl" ending
    std::string title;              // the file name without its ending
    bool mayReplace = false;        // true only when the name was chosen with its ending
};

// The ending is added when missing (compared exactly, not ignoring case). Only a name that
// already carried it may replace an existing package: the user confirmed a replacement
// for that name, never for the extended one.
NewProjectLocation newProjectLocation(const std::filesystem::path& chosen);

// A new package holding only "manifest.json". Throws TeskProjectError::writeFailed when
// something is in the way (or cannot be replaced), FileError when the folder cannot be made.
void createEmpty(const std::filesystem::path& location, const std::string& title, bool replacingExisting);

// Throws TeskProjectError (invalidPackage, unsupportedVersion) or the decoder's DecodingError.
TeskProjectManifest loadManifest(const std::filesystem::path& projectURL);

// Writes a copy stamped with the current moment; the caller's manifest keeps its `updatedAt`.
// Throws TeskProjectError::writeFailed.
void saveManifest(const TeskProjectManifest& manifest, const std::filesystem::path& projectURL);

} // namespace mibrel::TeskProjectArchive
