#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace mibrel::testing {

// A fresh folder under the system's temporary folder, removed with everything in it.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

// Writes a file, creating its folders; for setting up damaged or hand-made packages.
void writeText(const std::filesystem::path& path, std::string_view text);
std::string readText(const std::filesystem::path& path);

// Empty when every object in the JSON text has its keys in ascending byte order;
// otherwise a description of the first object that does not.
std::string unsortedKeysIn(std::string_view jsonText);

// The names in a folder, sorted, hidden ones included (to catch stray temporary files).
std::string folderListing(const std::filesystem::path& folder);

} // namespace mibrel::testing
