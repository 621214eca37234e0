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

bool isSpreadsheet(const std::filesystem::path& location);
bool isDocument(const std::filesystem::path& location);
// A recording, by the media import's own lists.
bool isMedia(const std::filesystem::path& location);
// A spreadsheet, a document or a recording: something to import into a new project.
bool isDataFile(const std::filesystem::path& location);

// The explanation for a data file given where a project was expected, else the fallback.
std::string friendlyOpenError(const std::filesystem::path& location, const std::string& fallback);

} // namespace mibrel::MibrelDataFiles
