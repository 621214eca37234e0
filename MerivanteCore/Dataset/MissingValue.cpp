#include "MerivanteCore/Dataset/MissingValue.h"

#include <algorithm>

#include "Platform/Text/Text.h"

namespace merivante::MissingValue {
namespace {

std::string normalized(std::string_view value) { return platform::text::lowercased(platform::text::trimmed(value)); }

std::string shown(std::string marker) { return marker.empty() ? "(blank)" : marker; }

} // namespace

bool isMissing(std::string_view value) { return normalizedMarker(value).has_value(); }

std::optional<std::string> normalizedMarker(std::string_view value) {
    std::string marker = normalized(value);
    if (std::find(knownMarkers.begin(), knownMarkers.end(), marker) == knownMarkers.end()) return std::nullopt;
    return marker;
}

std::optional<std::string> displayMarker(std::string_view value) {
    auto marker = normalizedMarker(value);
    if (!marker) return std::nullopt;
    return shown(std::move(*marker));
}

std::vector<std::string> displayMarkers() {
    std::vector<std::string> markers;
    for (const std::string_view marker : knownMarkers) markers.push_back(shown(std::string(marker)));
    std::sort(markers.begin(), markers.end());
    return markers;
}

} // namespace merivante::MissingValue
