#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The ways survey exports write "no answer". A cell is compared after trimming and
// lower-casing, so "N/A " is missing too.
namespace merivante::MissingValue {

inline constexpr std::array<std::string_view, 17> knownMarkers{
    "",    "#n/a", ".",   "-",   "--",          "blank",        "missing",        "n.a.",         "na",
    "nan", "n/a",  "nil", "no response", "not answered", "not applicable", "not available", "null"};

bool isMissing(std::string_view value);
// The marker as compared ("" for a blank cell), or absent for a real value.
std::optional<std::string> normalizedMarker(std::string_view value);
// As normalizedMarker, with the blank marker shown as "(blank)".
std::optional<std::string> displayMarker(std::string_view value);
// Every marker as displayed, in ascending byte order.
std::vector<std::string> displayMarkers();

} // namespace merivante::MissingValue
