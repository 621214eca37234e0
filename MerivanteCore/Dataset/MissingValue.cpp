#include "MerivanteCore/Dataset/MissingValue.h"

#include <algorithm>

#include "Platform/Text/Text.h"

namespace merivante::MissingValue {
namespace {

std::string normalized(std::string_view value) { return platform::text::lowercased(platform::text::trimmed(value)); }

std::string shown(std::string marker) { return marker.empty() ? "(blank)" : marker; }

} // namespace

// Most cells are answers: an ASCII view trimmed of ASCII blanks settles them without
// allocating. Markers are ASCII, and no other character lower-cases into one of theirs.
bool isMissing(std::string_view value) {
    const auto isAsciiSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!value.empty() && isAsciiSpace(value.front())) value.remove_prefix(1);
    while (!value.empty() && isAsciiSpace(value.back())) value.remove_suffix(1);
    if (value.empty()) return true;
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (!isAscii(value.front()) || !isAscii(value.back())) return normalizedMarker(value).has_value();
    constexpr std::size_t longest = 14; // "not applicable"
    if (value.size() > longest) return false;
    char lower[longest];
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (!isAscii(value[i])) return false;
        lower[i] = (value[i] >= 'A' && value[i] <= 'Z') ? static_cast<char>(value[i] - 'A' + 'a') : value[i];
    }
    const std::string_view normalized(lower, value.size());
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
