#include "Platform/Text/Text.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace text = platform::text;

TEST(TextTrim, RemovesUnicodeWhitespaceAtBothEndsOnly) {
    EXPECT_EQ(text::trimmed("\u3000\u00A0 \t\r\nsome  inner\u2028words\u2029\u0085 \u202F"),
              "some  inner\u2028words");
    // Zero-width space is not White_Space and must survive.
    EXPECT_EQ(text::trimmed("\u200Bkept\u200B"), "\u200Bkept\u200B");
    EXPECT_TRUE(text::isBlank(""));
    EXPECT_TRUE(text::isBlank(" \u3000\r\n\u202F\u00A0"));
    EXPECT_FALSE(text::isBlank(" . "));
}

TEST(TextTrim, IllFormedBytesCountAsContent) {
    EXPECT_EQ(text::trimmed(" \xFF "), "\xFF");
    // A stray trail byte must not be read as the tail of U+0085 (C2 85).
    EXPECT_EQ(text::trimmed("a\x85"), "a\x85");
    EXPECT_EQ(text::trimmed("\x85\xC2\x85"), "\x85");
    EXPECT_EQ(text::trimmed("x\xC2\x85\x85"), "x\xC2\x85\x85");
    EXPECT_EQ(text::trimmed("\xE3\x80 x"), "\xE3\x80 x");
    EXPECT_FALSE(text::isBlank("\u3000\xFF"));
}

TEST(TextCharacters, CountsUserPerceivedCharacters) {
    EXPECT_EQ(text::characterCount(""), 0u);
    EXPECT_EQ(text::characterCount("a\r\nb"), 3u);
    EXPECT_EQ(text::characterCount("\r\n\u00E9\r\n"), 3u);
    EXPECT_EQ(text::characterCount("e\u0301"), 1u);
    EXPECT_EQ(text::characterCount("\U0001F44B\U0001F3FD"), 1u);
    EXPECT_EQ(text::characterCount("\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"), 1u);
    EXPECT_EQ(text::characterCount("\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"), 2u);
    EXPECT_EQ(text::characterCount("a\xE2\x80" "b\xFF\xC0\xAF"), 6u);
}

TEST(TextCharacters, PrefixNeverSplitsACharacter) {
    const std::string decomposed = "e\u0301e\u0301e\u0301";
    EXPECT_EQ(text::characterPrefix(decomposed, 2), "e\u0301e\u0301");
    EXPECT_EQ(text::characterPrefix(decomposed, 0), "");
    EXPECT_EQ(text::characterPrefix(decomposed, 99), decomposed);
    EXPECT_EQ(text::characterPrefix("a\r\nb", 2), "a\r\n");
    EXPECT_EQ(text::characterPrefix("ab\r", 3), "ab\r");
    EXPECT_EQ(text::characterPrefix("flag \U0001F1E9\U0001F1EA!", 6), "flag \U0001F1E9\U0001F1EA");
    EXPECT_EQ(text::characterPrefix("a\xE2\x80" "b", 2), "a\xE2\x80");
}

// These hold under a POSIX locale too, where ICU's own default order puts all capitals first.
TEST(TextCollation, ComparesLikeAReader) {
    EXPECT_EQ(text::localizedStandardCompare("apple", "Apple"), std::weak_ordering::equivalent);
    EXPECT_EQ(text::localizedStandardCompare("a", "B"), std::weak_ordering::less);
    EXPECT_NE(text::localizedStandardCompare("résumé", "resume"), std::weak_ordering::equivalent);
}

TEST(TextCollation, SortsLabelsNumericallyAndStably) {
    std::vector<std::string> labels{"Interview 10", "interview 2", "Focus group", "Interview 2",
                                    "Interview 1", "Interview 2b"};
    std::stable_sort(labels.begin(), labels.end(), [](const auto& lhs, const auto& rhs) {
        return text::localizedStandardCompare(lhs, rhs) < 0;
    });
    const std::vector<std::string> expected{"Focus group", "Interview 1", "interview 2",
                                            "Interview 2", "Interview 2b", "Interview 10"};
    EXPECT_EQ(labels, expected);
}

TEST(TextContains, IgnoresCaseButNotAccents) {
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Un Café au lait", "CAFÉ"));
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Café", "afé"));
    EXPECT_FALSE(text::localizedCaseInsensitiveContains("Café", "cafe"));
    // Decomposed and precomposed accents are the same text.
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Cafe\u0301", "CAFÉ"));
    EXPECT_FALSE(text::localizedCaseInsensitiveContains("Cafe\u0301", "cafe"));
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Straße", "SS"));
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("ΣΊΣΥΦΟΣ", "σίσυφος"));
    EXPECT_TRUE(text::localizedCaseInsensitiveContains("Interview NOTES", "notes"));
    EXPECT_FALSE(text::localizedCaseInsensitiveContains("notes", "notes!"));
    EXPECT_FALSE(text::localizedCaseInsensitiveContains("anything", ""));
}
