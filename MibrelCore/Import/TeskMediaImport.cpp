#include "MibrelCore/Import/TeskMediaImport.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "Platform/Files/FileSystem.h"

namespace mibrel::TeskMediaImport {

std::optional<TeskMediaKind> mediaKind(std::string_view extension) {
    std::string lower(extension);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    if (std::find(audioExtensions.begin(), audioExtensions.end(), lower) != audioExtensions.end()) {
        return TeskMediaKind::audio;
    }
    if (std::find(videoExtensions.begin(), videoExtensions.end(), lower) != videoExtensions.end()) {
        return TeskMediaKind::video;
    }
    return std::nullopt;
}

bool isMediaFile(const std::filesystem::path& file) {
    return mediaKind(platform::files::lowercasedExtension(file)).has_value();
}

} // namespace mibrel::TeskMediaImport
