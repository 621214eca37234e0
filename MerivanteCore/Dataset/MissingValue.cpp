#include "MerivanteCore/Dataset/MissingValue.h"

#include <algorithm>

#include "Platform/Text/Text.h"

namespace merivante::MissingValue {
namespace {

std::string normalized(std::string_view value) { return platform::text::lowercased(platform::text::trimmed(value)); }

std::string shown(std::string marker) { return marker.empty() ? "(blank)" : marker; }

} // namespace

// Markers are ASCII, and no other character lower-cases into one of theirs, so a cell that
// is long or not plain ASCII once trimmed is an answer; the rest is compared without copying.
bool isMissing(std::string_view value) {
    const std::string_view trimmed = platform::text::trimmedView(value);
    constexpr std::size_t longest = 14; // "not applicable"
    if (trimmed.size() > longest || !platform::text::isAscii(trimmed)) return false;
    char lower[longest];
    for (std::size_t i = 0; i < trimmed.size(); ++i) {
        lower[i] = (trimmed[i] >= 'A' && trimmed[i] <= 'Z') ? static_cast<char>(trimmed[i] - 'A' + 'a') : trimmed[i];
    }
    const std::string_view normalized(lower, trimmed.size());
    return std::find(knownMarkers.begin(), knownMarkers.end(), normalized) != knownMarkers.end();
}

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
