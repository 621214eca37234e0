#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace merivante {

// A cell's number: the trimmed text must convert whole, in the C locale ("1e3", "0x10"
// and "inf" are numbers; "1 2" and "12abc" are not).
std::optional<double> parseNumber(std::string_view text);

// A whole number without a decimal point, anything else with two decimals ("3", "1.50").
std::string cleanText(double value);

} // namespace merivante
