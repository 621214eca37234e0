#pragma once

#include <array>
#include <filesystem>
#include <string_view>

#include "MerivanteCore/Dataset/MerivanteProjectManifest.h"

// A project kept as a folder ending ".merivante": a small manifest beside places for the
// data, the maps, analyses, method files and reports, each filled in later by its owner.
namespace merivante::MerivantePackageLayout {

inline constexpr std::string_view packageExtension = "merivante";
inline constexpr std::string_view manifestFileName = "project.json";

enum class EntryKind { file, folder };

struct Entry {
    std::string_view name;
    EntryKind kind;
    // What a new package's file holds; empty for folders, and for the manifest, which is
    // written from the project's own values.
    std::string_view initialContents;
};

inline constexpr std::array<Entry, 8> requiredEntries{{
    {manifestFileName, EntryKind::file, ""},
    {"dataset", EntryKind::folder, ""},
    {"variable_map.json", EntryKind::file, "[]"},
    {"construct_map.json", EntryKind::file, "[]"},
    {"analyses", EntryKind::folder, ""},
    {"method_files", EntryKind::folder, ""},
    {"reports", EntryKind::folder, ""},
    {"audit_log.json", EntryKind::file, "[]"},
}};

// Makes the folder (and any missing parents), its empty subfolders, the manifest and the
// empty lists. Over an existing package the files are rewritten and the folders keep what
// they hold. Throws platform::files::FileError on the first failure, leaving in place
// whatever was already made.
void createFolder(const std::filesystem::path& location, const MerivanteProjectManifest& manifest);

} // namespace merivante::MerivantePackageLayout
