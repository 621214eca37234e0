#include "Platform/Text/Regex.h"

#include <stdexcept>

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace platform::text {

struct Regex::Compiled {
    std::unique_ptr<icu::RegexPattern> pattern;

    std::unique_ptr<icu::RegexMatcher> matcher(const icu::UnicodeString& text) const {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> result(pattern->matcher(text, status));
        if (U_FAILURE(status)) throw std::runtime_error("The text could not be searched.");
        return result;
    }
};

namespace {

icu::UnicodeString unicode(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

} // namespace

Regex::Regex(std::string_view pattern) : m_compiled(std::make_unique<Compiled>()) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError error{};
    m_compiled->pattern.reset(icu::RegexPattern::compile(unicode(pattern), error, status));
    if (U_FAILURE(status)) throw std::invalid_argument("Invalid regular expression: " + std::string(pattern));
}

Regex::~Regex() = default;
Regex::Regex(Regex&&) noexcept = default;
Regex& Regex::operator=(Regex&&) noexcept = default;

bool Regex::contains(std::string_view text) const {
    const icu::UnicodeString subject = unicode(text);
    UErrorCode status = U_ZERO_ERROR;
    const bool found = m_compiled->matcher(subject)->find(status);
    return U_SUCCESS(status) && found;
}

std::string Regex::replacingAll(std::string_view text, std::string_view replacement) const {
    const icu::UnicodeString subject = unicode(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString replaced = m_compiled->matcher(subject)->replaceAll(unicode(replacement), status);
    if (U_FAILURE(status)) return std::string(text);
    std::string result;
    replaced.toUTF8String(result);
    return result;
}

} // namespace platform::text
