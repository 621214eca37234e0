#include "MerivanteCore/Dataset/DatasetNumbers.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <locale.h>

#include "Platform/Text/Text.h"

namespace merivante {
namespace {

// strtod in the C locale whatever the program's locale is, so "1.5" never reads as 1.
double strtodC(const char* text, char** end) {
    static const locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", static_cast<locale_t>(nullptr));
    return strtod_l(text, end, cLocale);
}

// Plain decimals such as "25.93" or "-4": at most 15 digits and a power of ten up to 10^22
// are exact in a double, so one division gives the correctly rounded value strtod would.
// Anything else returns absent and goes to strtod.
std::optional<double> plainDecimal(std::string_view text) {
    constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    std::size_t at = 0;
    const bool negative = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) ++at;
    std::uint64_t mantissa = 0;
    int digits = 0;
    int decimals = -1; // digits after the point, once there is one
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c >= '0' && c <= '9') {
            if (++digits > 15) return std::nullopt;
            mantissa = mantissa * 10 + static_cast<std::uint64_t>(c - '0');
            if (decimals >= 0) ++decimals;
        } else if (c == '.' && decimals < 0) {
            decimals = 0;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0) return std::nullopt;
    const double value = static_cast<double>(mantissa) / powers[std::max(decimals, 0)];
    return negative ? -value : value;
}

// Only a sign, a digit, a point or the start of "inf"/"nan" can begin a number.
bool mayBeNumber(std::string_view trimmed) {
    if (trimmed.empty()) return false;
    const char c = trimmed.front();
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || c == 'i' || c == 'I' || c == 'n' || c == 'N';
}

} // namespace

std::optional<double> parseNumber(std::string_view text) {
    const std::string_view trimmed = platform::text::trimmedView(text);
    if (!mayBeNumber(trimmed)) return std::nullopt; // most text is refused before strtod
    if (const auto value = plainDecimal(trimmed)) return value;
    // strtod wants a terminated string; short cells go through a buffer on the stack.
    char buffer[64];
    std::string copy;
    const char* start = buffer;
    if (trimmed.size() < sizeof buffer) {
        std::memcpy(buffer, trimmed.data(), trimmed.size());
        buffer[trimmed.size()] = '\0';
    } else {
        copy = std::string(trimmed);
        start = copy.c_str();
    }
    char* end = nullptr;
    const double value = strtodC(start, &end);
    if (end != start + trimmed.size()) return std::nullopt;
    return value;
}

std::string cleanText(double value) {
    char text[64];
    if (value == 0) return "0"; // and never "-0"
    if (std::isfinite(value) && value == std::trunc(value)) {
        std::snprintf(text, sizeof text, "%.0f", value);
    } else {
        std::snprintf(text, sizeof text, "%.2f", value);
    }
    return text;
}

std::optional<std::string> wholeNumberText(double value) {
    if (!(std::fabs(value) < 1e15) || value != std::trunc(value)) return std::nullopt;
    return std::to_string(static_cast<long long>(value));
}

std::string shortestText(double value) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return {text, end};
}

} // namespace merivante
