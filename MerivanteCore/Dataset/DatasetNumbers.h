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

// A whole number of magnitude below 1e15 as an integer ("3" for 3.0, "0" for -0.0); absent
// for anything else, so that each reader can choose how to print fractions.
std::optional<std::string> wholeNumberText(double value);

// The shortest decimal text that reads back as the same double ("0.1", "1e+20").
std::string shortestText(double value);

} // namespace merivante
