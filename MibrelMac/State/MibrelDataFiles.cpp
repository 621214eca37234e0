#include "MibrelMac/State/MibrelDataFiles.h"

#include <algorithm>

#include "MibrelCore/Import/TeskMediaImport.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel::MibrelDataFiles {
namespace {

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& list, const std::string& extension) {
    return std::find(list.begin(), list.end(), extension) != list.end();
}

} // namespace

bool isSpreadsheet(const std::filesystem::path& location) {
    return contains(spreadsheetExtensions, platform::files::lowercasedExtension(location));
}

bool isDocument(const std::filesystem::path& location) {
    return contains(documentExtensions, platform::files::lowercasedExtension(location));
}

bool isMedia(const std::filesystem::path& location) { return TeskMediaImport::isMediaFile(location); }

bool isDataFile(const std::filesystem::path& location) {
    return isSpreadsheet(location) || isDocument(location) || isMedia(location);
}

std::string friendlyOpenError(const std::filesystem::path& location, const std::string& fallback) {
    if (!isDataFile(location)) return fallback;
    return "That looks like a data file, not a Mibrel project. Mibrel projects end in .mvibrl. To bring this data "
           "in, create or open a project first, then use File > Import Responses (spreadsheets), Import Transcript "
           "(documents), or Import Audio/Video.";
}

} // namespace mibrel::MibrelDataFiles
