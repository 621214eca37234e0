#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Files/FileError.h"

// File-system operations that report failures as FileError.
namespace platform::files {

// The whole file. Throws FileError (a folder, a missing file, no permission…).
std::string readFile(const std::filesystem::path& path);

// Writes a temporary file beside the target, flushes it to disk and renames it over
// the target, so readers see the old file or the new one, never a part. On failure
// the temporary file is removed and the old file is untouched. Throws FileError.
void writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

// Creates the folder and any missing parents; an existing folder is fine. Throws FileError.
void createDirectories(const std::filesystem::path& path);

// Removes a file or a folder with everything in it; nothing there is fine. Throws FileError.
void removeItem(const std::filesystem::path& path);

// True when anything is at the path, a dangling link included.
bool itemExists(const std::filesystem::path& path) noexcept;
bool isDirectory(const std::filesystem::path& path) noexcept;

struct DirectoryEntry {
    std::string name;
    bool isDirectory = false;
};

// The entries of a folder, hidden ones (names starting with ".") left out, in no
// particular order. Throws FileError.
std::vector<DirectoryEntry> listDirectory(const std::filesystem::path& path);

// The last component of a path, ignoring a trailing separator ("/a/b.mvibrl/" -> "b.mvibrl").
std::string lastPathComponent(const std::filesystem::path& path);

// The ending of the last component without its dot, in lower case ("" when there is none;
// a name that only starts with a dot, like ".csv", has none).
std::string lowercasedExtension(const std::filesystem::path& path);

} // namespace platform::files
