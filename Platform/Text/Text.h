#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Text helpers over UTF-8 strings. A "character" is a user-perceived character
// (an extended grapheme cluster), which is what lengths, prefixes and offsets count.
namespace platform::text {

// Removes Unicode whitespace and newlines (the White_Space property) from both ends.
std::string trimmed(std::string_view text);
// The same, as a view of the text: for hot loops that need no copy.
std::string_view trimmedView(std::string_view text);

// True when every byte is below 0x80.
bool isAscii(std::string_view text);

// The runs of letters and digits (Unicode alphanumerics), in order; every other
// character, apostrophes and hyphens included, separates them.
std::vector<std::string> alphanumericRuns(std::string_view text);

// Removes blanks only (spaces of every kind and tabs) from both ends; newlines stay.
std::string trimmedOfBlanks(std::string_view text);

// Calls `visit` with each user-perceived character in order ("\r\n" is one).
void forEachCharacter(std::string_view text, const std::function<void(std::string_view)>& visit);

// True when the ASCII byte at `at` is a user-perceived character on its own: no prepended
// mark before it and no combining mark (or joiner) after it. Lets byte-level scanners
// agree with character-level rules without walking the characters.
bool isStandaloneAsciiCharacter(std::string_view text, std::size_t at);

// True when nothing is left after trimming.
bool isBlank(std::string_view text);

// Number of user-perceived characters; "\r\n" counts as one.
std::size_t characterCount(std::string_view text);

// The first `count` user-perceived characters (the whole text when it is shorter).
std::string characterPrefix(std::string_view text, std::size_t count);

// Runs of characters other than Unicode white space (newlines included): a word count in
// which punctuation stays part of its word.
std::size_t whitespaceSeparatedRunCount(std::string_view text);

// Unicode full lower-casing, independent of the locale ("İ" becomes "i̇", "ẞ" becomes "ß").
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

// Localized standard order: case-insensitive, accent-sensitive, digit runs compared
// as numbers ("Interview 2" before "Interview 10"). One shared collator.
std::weak_ordering localizedStandardCompare(std::string_view lhs, std::string_view rhs);

// Bytes that compare (as plain bytes) the way localizedStandardCompare compares the texts:
// for sorting many rows, where one key per row beats a collation per comparison.
std::string localizedStandardSortKey(std::string_view text);

// True when `needle` occurs in `haystack`, ignoring case. An empty needle never matches.
bool localizedCaseInsensitiveContains(std::string_view haystack, std::string_view needle);

} // namespace platform::text
