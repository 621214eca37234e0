#pragma once

#include <optional>
#include <string>
#include <string_view>

// Turning bytes of unknown origin into UTF-8 text. Each function returns absent when
// the bytes cannot be decoded; none of them throws.
namespace platform::text {

// True for well-formed UTF-8: no overlongs, surrogates, code points above U+10FFFF or
// truncated sequences.
bool isWellFormedUTF8(std::string_view bytes);

// The bytes as they are when they are well-formed UTF-8 (a byte order mark is kept).
std::optional<std::string> decodeUTF8Strict(std::string_view bytes);

// The bytes as UTF-8, each byte that starts no well-formed sequence replaced by U+FFFD.
std::string repairedUTF8(std::string_view bytes);

// The bytes converted from the named charset (an ICU converter name such as
// "windows-1252", "ISO-8859-1", "UTF-16LE", "US-ASCII"). Conversion stops, and the
// result is absent, at the first byte sequence that is invalid or undefined in it.
std::optional<std::string> decodeStrict(std::string_view bytes, const char* charset);

// The charset guessed by detection, then a strict conversion from it.
std::optional<std::string> decodeWithDetection(std::string_view bytes);

// Strict UTF-8 first; when that fails in any way, detection.
std::optional<std::string> decodeText(std::string_view bytes);

// `decodeText` without a leading byte order mark: for documents and tables, whose first
// header or paragraph must not begin with an invisible U+FEFF.
std::optional<std::string> decodeDocumentText(std::string_view bytes);

} // namespace platform::text
