#include "Platform/Text/Text.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace text = platform::text;

TEST(TextTrim, RemovesUnicodeWhitespaceAtBothEndsOnly) {
    EXPECT_EQ(text::trimmed("\u3000\u00A0 \t\r\nsome  inner\u2028words\u2029\u0085 \u202F"), "some  inner\u2028words");
    // Zero-width space is not White_Space and must survive.
    EXPECT_EQ(text::trimmed("\u200Bkept\u200B"), "\u200Bkept\u200B");
    EXPECT_TRUE(text::isBlank(" \u3000\r\n\u202F\u00A0"));
    EXPECT_FALSE(text::isBlank(" . "));
    // Ill-formed bytes are content, and a stray trail byte is not the tail of U+0085 (C2 85).
    EXPECT_EQ(text::trimmed(" \xFF "), "\xFF");
    EXPECT_EQ(text::trimmed("\x85\xC2\x85"), "\x85");
    EXPECT_EQ(text::trimmed("\xE3\x80 x"), "\xE3\x80 x");
}

TEST(TextCharacters, CountAndPrefixWholeUserPerceivedCharacters) {
    EXPECT_EQ(text::characterCount("a\r\nb"), 3u);
    EXPECT_EQ(text::characterCount("e\u0301"), 1u);
    EXPECT_EQ(text::characterCount("\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"), 1u);
    EXPECT_EQ(text::characterCount("\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"), 2u);
    EXPECT_EQ(text::characterCount("a\xE2\x80" "b\xFF\xC0\xAF"), 6u);
    EXPECT_EQ(text::characterPrefix("e\u0301e\u0301e\u0301", 2), "e\u0301e\u0301");
    EXPECT_EQ(text::characterPrefix("a\r\nb", 2), "a\r\n");
    EXPECT_EQ(text::characterPrefix("ab", 99), "ab");
}

// These hold under a POSIX locale too, where ICU's own default order puts all capitals first.
TEST(TextCollation, SortsLabelsLikeAReader) {
    std::vector<std::string> labels{"Interview 10", "interview 2", "Focus group", "Interview 2", "Interview 1",
                                    "apple"};
    std::stable_sort(labels.begin(), labels.end(),
                     [](const auto& lhs, const auto& rhs) { return text::localizedStandardCompare(lhs, rhs) < 0; });
    EXPECT_EQ(labels, (std::vector<std::string>{"apple", "Focus group", "Interview 1", "interview 2", "Interview 2",
                                                "Interview 10"}));
    EXPECT_NE(text::localizedStandardCompare("résumé", "resume"), std::weak_ordering::equivalent);
}

TEST(TextContains, IgnoresCaseButNotAccents) {
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Un Café au lait", "CAFÉ"));
    EXPECT_FALSE(text::localizedCaseInsensitiveContains("Café", "cafe"));
    // Decomposed and precomposed accents are the same text.
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Cafe\u0301", "CAFÉ"));
    EXPECT_FALSE(text::localizedCaseInsensitiveContains("Cafe\u0301", "cafe"));
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Straße", "SS"));
    EXPECT_FALSE(text::localizedCaseInsensitiveContains("anything", ""));
}

TEST(TextCharacters, WalkByCharacterAndTrimBlanksButNotNewlines) {
    std::vector<std::string> pieces;
    platform::text::forEachCharacter("a\r\nb", [&](std::string_view c) { pieces.emplace_back(c); });
    EXPECT_EQ(pieces, (std::vector<std::string>{"a", "\r\n", "b"}));
    pieces.clear();
    platform::text::forEachCharacter("e\xCC\x81,\xC3\xBC", [&](std::string_view c) { pieces.emplace_back(c); });
    EXPECT_EQ(pieces, (std::vector<std::string>{"e\xCC\x81", ",", "\xC3\xBC"}));

    EXPECT_EQ(platform::text::trimmedOfBlanks("\t \xC2\xA0" "a b\n "), "a b\n");
    EXPECT_EQ(platform::text::trimmedOfBlanks(" \t "), "");
}

TEST(TextWords, RunsBetweenWhiteSpaceAcrossBlocksAndScripts) {
    using platform::text::whitespaceSeparatedRunCount;
    EXPECT_EQ(whitespaceSeparatedRunCount(""), 0u);
    EXPECT_EQ(whitespaceSeparatedRunCount(" \t\n\v\f\r "), 0u);
    // A word straddling the sixteen-byte boundary, tabs and line ends as separators.
    EXPECT_EQ(whitespaceSeparatedRunCount("one two three fourfive\tsix\r\nseven, eight."), 7u);
    EXPECT_EQ(whitespaceSeparatedRunCount(std::string(15, ' ') + "ab" + std::string(15, ' ') + "c"), 2u);
    // Non-ASCII white space (no-break space, line separator) separates; other characters belong to words.
    EXPECT_EQ(whitespaceSeparatedRunCount("sixteen ascii by\xC2\xA0" "caf\xC3\xA9\xE2\x80\xA8" "end"), 5u);
    EXPECT_EQ(whitespaceSeparatedRunCount("\xE2\x80\x94 dash-only \xE2\x80\x94"), 3u);
}
