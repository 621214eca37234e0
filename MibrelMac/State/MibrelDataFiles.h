#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>

// Which files are data to bring into a project rather than projects, by their ending
// compared in lower case.
namespace mibrel::MibrelDataFiles {

inline constexpr std::array<std::string_view, 3> spreadsheetExtensions{"csv", "tsv", "xlsx"};
inline constexpr std::array<std::string_view, 3> documentExtensions{"txt", "docx", "pdf"};
inline constexpr std::array<std::string_view, 5> audioExtensions{"m4a", "mp3", "wav", "aac", "caf"};
inline constexpr std::array<std::string_view, 5> videoExtensions{"mov", "mp4", "m4v", "mpeg", "mpg"};

bool isSpreadsheet(const std::filesystem::path& location);
bool isDocument(const std::filesystem::path& location);
bool isMedia(const std::filesystem::path& location);
// A spreadsheet, a document or a recording: something to import into a new project.
bool isDataFile(const std::filesystem::path& location);

// The explanation for a data file given where a project was expected, else the fallback.
std::string friendlyOpenError(const std::filesystem::path& location, const std::string& fallback);

} // namespace mibrel::MibrelDataFiles
