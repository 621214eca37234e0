#include "Platform/Text/TextDecoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

namespace platform::text {
namespace {

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

struct DetectorCloser {
    void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};
using Detector = std::unique_ptr<UCharsetDetector, DetectorCloser>;

bool isTrail(unsigned char byte) {
    return byte >= 0x80 && byte <= 0xBF;
}

// Length of the well-formed multi-byte sequence at `at`, or 0. The allowed range of the
// second byte is what excludes overlongs, surrogates and code points above U+10FFFF.
std::size_t sequenceLength(const unsigned char* at, const unsigned char* end) {
    const unsigned char lead = at[0];
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (static_cast<std::size_t>(end - at) < length || at[1] < low || at[1] > high) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (!isTrail(at[i])) {
            return 0;
        }
    }
    return length;
}

// Skips whole eight-byte words of ASCII, which is most of most text.
const unsigned char* skipAscii(const unsigned char* at, const unsigned char* end) {
    constexpr std::uint64_t highBits = 0x8080808080808080ULL;
    while (end - at >= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, at, sizeof word);
        if ((word & highBits) != 0) {
            break;
        }
        at += 8;
    }
    while (at < end && *at < 0x80) {
        ++at;
    }
    return at;
}


// Any illegal, unassigned or truncated sequence must end the conversion rather than be
// replaced, so both directions stop on the first one.
Converter openStrictConverter(const char* charset) {
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(charset, &status));
    if (U_FAILURE(status)) {
        return nullptr;
    }
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

// ICU fills the holes in the Windows ANSI code pages with the C1 controls of the same value,
// where Windows defines nothing; from these converters a C1 control marks an undefined byte.
bool mapsUndefinedBytesToControls(UConverter* converter) {
    UErrorCode status = U_ZERO_ERROR;
    const char* name = ucnv_getName(converter, &status);
    const char* windowsName = ucnv_getStandardName(name, "WINDOWS", &status);
    if (U_FAILURE(status) || windowsName == nullptr) {
        return false;
    }
    const std::string_view windows(windowsName);
    return (windows.size() == 12 && windows.starts_with("windows-125")) || windows == "windows-874";
}

// U+0080..U+009F are C2 80..C2 9F in UTF-8.
bool containsC1Control(std::string_view utf8) {
    for (std::size_t at = utf8.find('\xC2'); at != std::string_view::npos;
         at = utf8.find('\xC2', at + 1)) {
        if (at + 1 < utf8.size() && static_cast<unsigned char>(utf8[at + 1]) <= 0x9F) {
            return true;
        }
    }
    return false;
}

// Converts in one pass, growing the output whenever ICU reports it full.
std::optional<std::string> convert(UConverter* from, UConverter* toUTF8, std::string_view bytes) {
    std::array<UChar, 4096> pivot{};
    UChar* pivotSource = pivot.data();
    UChar* pivotTarget = pivot.data();
    const char* source = bytes.data();
    std::string output(bytes.size() + 16, '\0');
    std::size_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    for (bool first = true;; first = false) {
        char* target = output.data() + written;
        ucnv_convertEx(toUTF8, from, &target, output.data() + output.size(), &source,
                       bytes.data() + bytes.size(), pivot.data(), &pivotSource, &pivotTarget,
                       pivot.data() + pivot.size(), first, true, &status);
        written = static_cast<std::size_t>(target - output.data());
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            break;
        }
        status = U_ZERO_ERROR;
        output.resize(output.size() * 2);
    }
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    output.resize(written);
    return output;
}

} // namespace

bool isWellFormedUTF8(std::string_view bytes) {
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* end = at + bytes.size();
    while ((at = skipAscii(at, end)) < end) {
        const std::size_t length = sequenceLength(at, end);
        if (length == 0) {
            return false;
        }
        at += length;
    }
    return true;
}

std::optional<std::string> decodeUTF8Strict(std::string_view bytes) {
    if (!isWellFormedUTF8(bytes)) {
        return std::nullopt;
    }
    return std::string(bytes);
}

std::string repairedUTF8(std::string_view bytes) {
    const auto* begin = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* end = begin + bytes.size();
    const auto* at = skipAscii(begin, end);
    if (at == end) return std::string(bytes);
    std::string repaired(bytes.substr(0, static_cast<std::size_t>(at - begin)));
    while (at < end) {
        const auto* run = at;
        at = skipAscii(at, end);
        repaired.append(reinterpret_cast<const char*>(run), static_cast<std::size_t>(at - run));
        if (at == end) break;
        const std::size_t length = sequenceLength(at, end);
        if (length == 0) {
            repaired += "\xEF\xBF\xBD"; // U+FFFD for the one byte that cannot start a sequence here
            ++at;
        } else {
            repaired.append(reinterpret_cast<const char*>(at), length);
            at += length;
        }
    }
    return repaired;
}

std::optional<std::string> decodeStrict(std::string_view bytes, const char* charset) {
    // ICU reads a missing name as "the platform default", which is not what was asked.
    if (charset == nullptr) {
        return std::nullopt;
    }
    const Converter from = openStrictConverter(charset);
    if (!from) {
        return std::nullopt;
    }
    if (bytes.empty()) {
        return std::string();
    }
    const Converter toUTF8 = openStrictConverter("UTF-8");
    if (!toUTF8) {
        return std::nullopt;
    }
    std::optional<std::string> decoded = convert(from.get(), toUTF8.get(), bytes);
    if (decoded && mapsUndefinedBytesToControls(from.get()) && containsC1Control(*decoded)) {
        return std::nullopt;
    }
    return decoded;
}

std::optional<std::string> decodeWithDetection(std::string_view bytes) {
    if (bytes.empty()) {
        return std::string();
    }
    // ICU measures the sample in int32_t; the strict conversion still checks every byte.
    const auto sampleSize = static_cast<int32_t>(
        std::min<std::size_t>(bytes.size(), std::numeric_limits<int32_t>::max()));
    UErrorCode status = U_ZERO_ERROR;
    const Detector detector(ucsdet_open(&status));
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    ucsdet_setText(detector.get(), bytes.data(), sampleSize, &status);
    const UCharsetMatch* match = ucsdet_detect(detector.get(), &status);
    if (U_FAILURE(status) || match == nullptr) {
        return std::nullopt;
    }
    const char* charset = ucsdet_getName(match, &status);
    if (U_FAILURE(status) || charset == nullptr) {
        return std::nullopt;
    }
    return decodeStrict(bytes, charset);
}

std::optional<std::string> decodeText(std::string_view bytes) {
    if (auto utf8 = decodeUTF8Strict(bytes)) {
        return utf8;
    }
    return decodeWithDetection(bytes);
}

std::optional<std::string> decodeDocumentText(std::string_view bytes) {
    constexpr std::string_view byteOrderMark("\xEF\xBB\xBF");
    auto text = decodeText(bytes);
    if (text && text->starts_with(byteOrderMark)) text->erase(0, byteOrderMark.size());
    return text;
}

} // namespace platform::text
