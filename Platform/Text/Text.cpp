#include "Platform/Text/Text.h"

#include <algorithm>
#include <bit>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <unicode/brkiter.h>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace platform::text {

// ORs every byte instead of stopping early so the loop vectorises.
bool isAscii(std::string_view text) {
    unsigned char bits = 0;
    for (const char byte : text) {
        bits |= static_cast<unsigned char>(byte);
    }
    return bits < 0x80;
}

namespace {

// ICU indexes strings with int32_t; longer texts take the simpler fallbacks below.
bool fitsICU(std::string_view text) {
    return text.size() <= static_cast<std::size_t>(std::numeric_limits<int32_t>::max());
}

bool isAsciiWhitespace(unsigned char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

char asciiLower(char byte) {
    return (byte >= 'A' && byte <= 'Z') ? static_cast<char>(byte - 'A' + 'a') : byte;
}

// The code point at `pos`, or a negative value for an ill-formed sequence; `pos` moves past it.
UChar32 nextCodePoint(std::string_view text, std::size_t& pos) {
    UChar32 codePoint = 0;
    U8_NEXT(text.data(), pos, text.size(), codePoint);
    return codePoint;
}

using CodePointTest = bool (*)(UChar32);

bool isWhitespace(UChar32 c) { return c < 0x80 ? isAsciiWhitespace(static_cast<unsigned char>(c)) : u_isUWhiteSpace(c); }

// Spaces of every kind and tabs, but no line breaks.
bool isBlankCharacter(UChar32 c) { return c == '\t' || (c < 0x80 ? c == ' ' : u_charType(c) == U_SPACE_SEPARATOR); }

std::size_t leadingEnd(std::string_view text, CodePointTest matches) {
    std::size_t pos = 0;
    while (pos < text.size()) {
        const auto byte = static_cast<unsigned char>(text[pos]);
        if (byte < 0x80) {
            if (!matches(byte)) {
                break;
            }
            ++pos;
            continue;
        }
        std::size_t next = pos;
        const UChar32 codePoint = nextCodePoint(text, next);
        if (codePoint < 0 || !matches(codePoint)) {
            break;
        }
        pos = next;
    }
    return pos;
}

// Start of the last code point before `end`; a sequence is at most four bytes long.
std::size_t lastCodePointStart(std::string_view text, std::size_t begin, std::size_t end) {
    std::size_t start = end - 1;
    while (start > begin && end - start < 4 && U8_IS_TRAIL(static_cast<uint8_t>(text[start]))) {
        --start;
    }
    return start;
}

std::size_t trailingStart(std::string_view text, std::size_t begin, CodePointTest matches) {
    std::size_t end = text.size();
    while (end > begin) {
        const auto byte = static_cast<unsigned char>(text[end - 1]);
        if (byte < 0x80) {
            if (!matches(byte)) {
                break;
            }
            --end;
            continue;
        }
        const std::size_t start = lastCodePointStart(text, begin, end);
        std::size_t next = start;
        const UChar32 codePoint = nextCodePoint(text.substr(0, end), next);
        // A stray trail byte decodes as part of nothing that ends at `end`.
        if (codePoint < 0 || next != end || !matches(codePoint)) {
            break;
        }
        end = start;
    }
    return end;
}

// How far `count` characters reach: the characters actually found and the byte offset after them.
struct Span {
    std::size_t characters = 0;
    std::size_t end = 0;
};

// In ASCII the only multi-byte grapheme cluster is CR LF.
Span asciiSpan(std::string_view text, std::size_t count) {
    Span span;
    while (span.end < text.size() && span.characters < count) {
        const bool crlf = text[span.end] == '\r' && span.end + 1 < text.size()
                          && text[span.end + 1] == '\n';
        span.end += crlf ? 2 : 1;
        ++span.characters;
    }
    return span;
}

// Used only when grapheme breaking is unavailable.
Span codePointSpan(std::string_view text, std::size_t count) {
    Span span;
    while (span.end < text.size() && span.characters < count) {
        U8_FWD_1(text.data(), span.end, text.size());
        ++span.characters;
    }
    return span;
}

// Creating a break iterator loads its rules, so each thread keeps one.
icu::BreakIterator* characterBreaker() {
    thread_local const std::unique_ptr<icu::BreakIterator> breaker = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> created(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        return U_SUCCESS(status) ? std::move(created) : nullptr;
    }();
    return breaker.get();
}

Span graphemeSpan(std::string_view text, std::size_t count) {
    icu::BreakIterator* breaker = characterBreaker();
    if (breaker == nullptr || !fitsICU(text)) {
        return codePointSpan(text, count);
    }
    UErrorCode status = U_ZERO_ERROR;
    icu::LocalUTextPointer utext(
        utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status));
    breaker->setText(utext.getAlias(), status);
    if (U_FAILURE(status)) {
        return codePointSpan(text, count);
    }
    // Over UTF-8 text the boundaries are byte offsets.
    Span span;
    for (int32_t boundary = breaker->next();
         boundary != icu::BreakIterator::DONE && span.characters < count;
         boundary = breaker->next()) {
        span.end = static_cast<std::size_t>(boundary);
        ++span.characters;
    }
    return span;
}

Span characterSpan(std::string_view text, std::size_t count) {
    if (text.empty() || count == 0) {
        return {};
    }
    return isAscii(text) ? asciiSpan(text, count) : graphemeSpan(text, count);
}

// Under a POSIX locale ICU defaults to en_US_POSIX, whose order is code-point order with all
// capitals first; people in such an environment still expect ordinary alphabetical order.
icu::Locale collationLocale() {
    const icu::Locale& locale = icu::Locale::getDefault();
    return std::strcmp(locale.getVariant(), "POSIX") == 0 ? icu::Locale::getRoot() : locale;
}

const icu::Collator* sharedCollator() {
    static const std::unique_ptr<icu::Collator> collator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> created(
            icu::Collator::createInstance(collationLocale(), status));
        if (U_FAILURE(status)) {
            return std::unique_ptr<icu::Collator>();
        }
        created->setStrength(icu::Collator::SECONDARY);
        created->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
        return U_SUCCESS(status) ? std::move(created) : nullptr;
    }();
    return collator.get();
}

std::weak_ordering toOrdering(int comparison) {
    if (comparison < 0) {
        return std::weak_ordering::less;
    }
    return comparison > 0 ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

bool asciiContainsIgnoringCase(std::string_view haystack, std::string_view needle) {
    const auto sameLetter = [](char lhs, char rhs) { return asciiLower(lhs) == asciiLower(rhs); };
    return std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end(), sameLetter)
           != haystack.end();
}

// Folded, then composed, so that a precomposed and a decomposed accent match alike.
icu::UnicodeString foldedForSearch(std::string_view text) {
    icu::UnicodeString folded = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    folded.foldCase(U_FOLD_CASE_DEFAULT);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) {
        return folded;
    }
    icu::UnicodeString composed = nfc->normalize(folded, status);
    return U_SUCCESS(status) ? composed : folded;
}

} // namespace

std::string_view trimmedView(std::string_view text) {
    const auto plainEdge = [](char c) { return static_cast<unsigned char>(c) < 0x80 && !isAsciiWhitespace(c); };
    if (text.empty() || (plainEdge(text.front()) && plainEdge(text.back()))) return text; // the usual case
    const std::size_t begin = leadingEnd(text, isWhitespace);
    return text.substr(begin, trailingStart(text, begin, isWhitespace) - begin);
}

std::string trimmed(std::string_view text) { return std::string(trimmedView(text)); }

std::string trimmedOfBlanks(std::string_view text) {
    const std::size_t begin = leadingEnd(text, isBlankCharacter);
    return std::string(text.substr(begin, trailingStart(text, begin, isBlankCharacter) - begin));
}

bool isBlank(std::string_view text) {
    return leadingEnd(text, isWhitespace) == text.size();
}

void forEachCharacter(std::string_view text, const std::function<void(std::string_view)>& visit) {
    if (isAscii(text) || !fitsICU(text) || characterBreaker() == nullptr) {
        // In ASCII the only character of two bytes is CR LF; elsewhere, without ICU, code points.
        std::size_t start = 0;
        while (start < text.size()) {
            std::size_t end = start;
            if (isAscii(text.substr(start, 1))) {
                end += text[start] == '\r' && start + 1 < text.size() && text[start + 1] == '\n' ? 2 : 1;
            } else {
                U8_FWD_1(text.data(), end, text.size());
            }
            visit(text.substr(start, end - start));
            start = end;
        }
        return;
    }
    icu::BreakIterator* breaker = characterBreaker();
    UErrorCode status = U_ZERO_ERROR;
    icu::LocalUTextPointer utext(utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status));
    breaker->setText(utext.getAlias(), status);
    std::size_t start = 0;
    for (int32_t boundary = breaker->next(); boundary != icu::BreakIterator::DONE; boundary = breaker->next()) {
        const auto end = static_cast<std::size_t>(boundary);
        visit(text.substr(start, end - start));
        start = end;
    }
}

std::size_t characterCount(std::string_view text) {
    return characterSpan(text, std::numeric_limits<std::size_t>::max()).characters;
}

std::string characterPrefix(std::string_view text, std::size_t count) {
    return std::string(text.substr(0, characterSpan(text, count).end));
}

namespace {

constexpr auto kAsciiSpace = [] {
    std::array<bool, 128> table{};
    for (const unsigned char c : {' ', '\t', '\n', '\v', '\f', '\r'}) table[c] = true;
    return table;
}();

// One code point at a time, for text that is not all ASCII.
std::size_t runCountByCodePoint(std::string_view text, bool inRun) {
    std::size_t runs = 0;
    for (std::size_t pos = 0; pos < text.size();) {
        const auto byte = static_cast<unsigned char>(text[pos]);
        bool space;
        if (byte < 0x80) {
            space = kAsciiSpace[byte];
            ++pos;
        } else {
            space = isWhitespace(nextCodePoint(text, pos));
        }
        runs += static_cast<std::size_t>(!space && !inRun);
        inRun = !space;
    }
    return runs;
}

} // namespace

// Sixteen ASCII bytes at a time: a run starts wherever a non-space byte follows a space.
// A block holding any other byte hands the rest of the text to the code-point walk.
std::size_t whitespaceSeparatedRunCount(std::string_view text) {
    std::size_t runs = 0;
    std::size_t pos = 0;
    bool inRun = false;
#if defined(__SSE2__)
    const __m128i blank = _mm_set1_epi8(' ');
    const __m128i belowTab = _mm_set1_epi8('\t' - 1);
    const __m128i aboveReturn = _mm_set1_epi8('\r' + 1);
    for (; pos + 16 <= text.size(); pos += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + pos));
        if (_mm_movemask_epi8(bytes) != 0) break; // a non-ASCII byte
        const __m128i control = _mm_and_si128(_mm_cmpgt_epi8(bytes, belowTab), _mm_cmplt_epi8(bytes, aboveReturn));
        const auto space = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(bytes, blank), control)));
        const unsigned word = ~space & 0xFFFFu;
        const unsigned before = ((word << 1) | (inRun ? 1u : 0u)) & 0xFFFFu;
        runs += static_cast<std::size_t>(std::popcount(word & ~before));
        inRun = (word & 0x8000u) != 0;
    }
#endif
    return runs + runCountByCodePoint(text.substr(pos), inRun);
}

std::string lowercased(std::string_view text) {
    if (isAscii(text) || !fitsICU(text)) {
        std::string lower(text);
        std::transform(lower.begin(), lower.end(), lower.begin(), asciiLower);
        return lower;
    }
    icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    std::string lower;
    unicode.toLower(icu::Locale::getRoot()).toUTF8String(lower);
    return lower;
}

std::string uppercased(std::string_view text) {
    if (isAscii(text) || !fitsICU(text)) {
        std::string upper(text);
        std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) {
            return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        });
        return upper;
    }
    icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    std::string upper;
    unicode.toUpper(icu::Locale::getRoot()).toUTF8String(upper);
    return upper;
}

std::weak_ordering localizedStandardCompare(std::string_view lhs, std::string_view rhs) {
    const icu::Collator* collator = sharedCollator();
    if (collator == nullptr || !fitsICU(lhs) || !fitsICU(rhs)) {
        return toOrdering(lhs.compare(rhs));
    }
    UErrorCode status = U_ZERO_ERROR;
    const UCollationResult result = collator->compareUTF8(
        icu::StringPiece(lhs.data(), static_cast<int32_t>(lhs.size())),
        icu::StringPiece(rhs.data(), static_cast<int32_t>(rhs.size())), status);
    return U_SUCCESS(status) ? toOrdering(result) : toOrdering(lhs.compare(rhs));
}

std::string localizedStandardSortKey(std::string_view text) {
    const icu::Collator* collator = sharedCollator();
    if (collator == nullptr || !fitsICU(text)) return std::string(text);
    const icu::UnicodeString unicode =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    std::string key(64, '\0');
    for (;;) {
        const int32_t length = collator->getSortKey(unicode, reinterpret_cast<uint8_t*>(key.data()),
                                                    static_cast<int32_t>(key.size()));
        if (length <= 0) return std::string(text);
        if (static_cast<std::size_t>(length) <= key.size()) {
            key.resize(static_cast<std::size_t>(length) - 1); // without the terminating zero
            return key;
        }
        key.resize(static_cast<std::size_t>(length));
    }
}

bool localizedCaseInsensitiveContains(std::string_view haystack, std::string_view needle) {
    if (needle.empty()) {
        return false;
    }
    if (isAscii(haystack) && isAscii(needle)) {
        return asciiContainsIgnoringCase(haystack, needle);
    }
    if (!fitsICU(haystack) || !fitsICU(needle)) {
        return haystack.find(needle) != std::string_view::npos;
    }
    const icu::UnicodeString foldedNeedle = foldedForSearch(needle);
    return !foldedNeedle.isEmpty() && foldedForSearch(haystack).indexOf(foldedNeedle) >= 0;
}

std::vector<std::string> alphanumericRuns(std::string_view text) {
    std::vector<std::string> runs;
    std::string run;
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t offset = 0; offset < length;) {
        const std::int32_t start = offset;
        UChar32 character = 0;
        U8_NEXT(text.data(), offset, length, character);
        if (character >= 0 && u_isalnum(character)) {
            run.append(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(offset - start)));
        } else if (!run.empty()) {
            runs.push_back(std::move(run));
            run.clear();
        }
    }
    if (!run.empty()) runs.push_back(std::move(run));
    return runs;
}

bool isStandaloneAsciiCharacter(std::string_view text, std::size_t at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x20 || byte == 0x7F) return true; // controls never join a neighbour
    if (at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) >= 0x80) {
        std::size_t next = at + 1;
        const UChar32 following = nextCodePoint(text, next);
        const auto kind = following < 0 ? U_GCB_OTHER : u_getIntPropertyValue(following, UCHAR_GRAPHEME_CLUSTER_BREAK);
        if (kind == U_GCB_EXTEND || kind == U_GCB_ZWJ || kind == U_GCB_SPACING_MARK) return false;
    }
    if (at > 0 && static_cast<unsigned char>(text[at - 1]) >= 0x80) {
        int32_t before = static_cast<int32_t>(std::min(at, static_cast<std::size_t>(INT32_MAX)));
        const char* start = text.data() + (at - static_cast<std::size_t>(before));
        UChar32 preceding = 0;
        U8_PREV(start, 0, before, preceding);
        if (preceding >= 0 && u_getIntPropertyValue(preceding, UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_PREPEND) {
            return false;
        }
    }
    return true;
}

} // namespace platform::text
