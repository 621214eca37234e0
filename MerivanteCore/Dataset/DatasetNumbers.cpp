#include "MerivanteCore/Dataset/DatasetNumbers.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <locale.h>

#include "Platform/Text/Text.h"

namespace merivante {
namespace {

// strtod in the C locale whatever the program's locale is, so "1.5" never reads as 1.
double strtodC(const char* text, char** end) {
    static const locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", static_cast<locale_t>(nullptr));
    return strtod_l(text, end, cLocale);
}

} // namespace

std::optional<double> parseNumber(std::string_view text) {
    const std::string trimmed = platform::text::trimmed(text);
    if (trimmed.empty() || std::isspace(static_cast<unsigned char>(trimmed.front()))) return std::nullopt;
    char* end = nullptr;
    const double value = strtodC(trimmed.c_str(), &end);
    if (end != trimmed.c_str() + trimmed.size()) return std::nullopt;
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

} // namespace merivante
