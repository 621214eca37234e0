#include "Platform/Text/TextDecoding.h"

#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <unicode/utf8.h>

namespace text = platform::text;

namespace {

// ICU's own reading of well-formed UTF-8, the reference for the fast validator.
bool icuAcceptsUTF8(std::string_view bytes) {
    UChar32 codePoint = 0;
    for (std::size_t at = 0; at < bytes.size() && codePoint >= 0;) {
        U8_NEXT(bytes.data(), at, bytes.size(), codePoint);
    }
    return codePoint >= 0;
}

} // namespace

TEST(UTF8Validation, KeepsWellFormedBytesAsTheyAre) {
    for (const std::string_view bytes : {"", "\xEF\xBB\xBF" "bom kept", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(text::decodeUTF8Strict(bytes), std::string(bytes));
    }
}

// Every lead byte with every second byte, then boundary trail bytes, after an ASCII word.
TEST(UTF8Validation, AgreesWithICUOnShortSequences) {
    const char trails[] = {'\x7F', '\x80', '\xBF', '\xC0'};
    for (int lead = 0x80; lead <= 0xFF; ++lead) {
        for (int second = 0; second <= 0xFF; ++second) {
            const std::string bytes =
                std::string("prefix: ") + static_cast<char>(lead) + static_cast<char>(second);
            ASSERT_EQ(text::decodeUTF8Strict(bytes).has_value(), icuAcceptsUTF8(bytes)) << lead;
            for (const char third : trails) {
                for (const char fourth : trails) {
                    const std::string longer = bytes + third + fourth;
                    ASSERT_EQ(text::decodeUTF8Strict(longer).has_value(), icuAcceptsUTF8(longer))
                        << testing::PrintToString(longer);
                }
            }
        }
    }
}

TEST(StrictDecoding, Windows1252FailsOnItsUndefinedBytes) {
    EXPECT_EQ(text::decodeStrict("caf\xE9 \x80", "windows-1252"), "café €");
    for (const char undefined : {'\x81', '\x8D', '\x8F', '\x90', '\x9D'}) {
        EXPECT_FALSE(text::decodeStrict(std::string("ok ") + undefined, "windows-1252").has_value());
        EXPECT_FALSE(text::decodeStrict(std::string(1, undefined), "cp1252").has_value());
    }
}

TEST(StrictDecoding, Latin1AcceptsEveryHighByte) {
    std::string bytes;
    std::string expected;
    for (int byte = 0x80; byte <= 0xFF; ++byte) {
        bytes += static_cast<char>(byte);
        expected += {static_cast<char>(0xC0 | (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
    }
    EXPECT_EQ(text::decodeStrict(bytes, "ISO-8859-1"), expected);
    // The output buffer has to grow past the input's size.
    EXPECT_EQ(text::decodeStrict(std::string(20000, '\xE9'), "latin1").value_or("").size(), 40000u);
}

TEST(StrictDecoding, FailsOnBadInputOrUnknownCharset) {
    EXPECT_FALSE(text::decodeStrict("\x80", "US-ASCII").has_value());
    EXPECT_FALSE(text::decodeStrict("abc", "no-such-charset").has_value());
    EXPECT_FALSE(text::decodeStrict("abc", "").has_value());
    EXPECT_FALSE(text::decodeStrict("abc", nullptr).has_value());
    EXPECT_FALSE(text::decodeStrict("\xC0\xAF", "UTF-8").has_value());
    EXPECT_FALSE(text::decodeStrict(std::string_view("a\0b", 3), "UTF-16LE").has_value());
    EXPECT_FALSE(text::decodeStrict(std::string_view("\x00\xD8" "a\0", 4), "UTF-16LE").has_value());
    EXPECT_EQ(text::decodeStrict("", "windows-1252"), "");
}

TEST(DetectedDecoding, RecognisesUTF16WithByteOrderMark) {
    std::string bytes("\xFF\xFE", 2);
    for (const char ascii : std::string_view("Notes from the second interview.")) {
        bytes += {ascii, '\0'};
    }
    EXPECT_EQ(text::decodeText(bytes), "\xEF\xBB\xBF" "Notes from the second interview.");
    EXPECT_EQ(text::decodeWithDetection(""), "");
}

TEST(DetectedDecoding, FallsBackFromUTF8ToLatin1) {
    const std::string latin1 =
        "Le caf\xE9 \xE9tait ferm\xE9 ce matin, alors nous sommes all\xE9s \xE0 la biblioth\xE8que. "
        "L'\xE9t\xE9 dernier, la r\xE9union s'est d\xE9roul\xE9" "e pr\xE8s de la for\xEAt. "
        "Les enqu\xEAt\xE9s ont r\xE9pondu \xE0 toutes les questions avec beaucoup de d\xE9tails.";
    EXPECT_EQ(text::decodeText(latin1),
              "Le café était fermé ce matin, alors nous sommes allés à la bibliothèque. "
              "L'été dernier, la réunion s'est déroulée près de la forêt. "
              "Les enquêtés ont répondu à toutes les questions avec beaucoup de détails.");
}

TEST(DetectedDecoding, ArbitraryBytesGiveWellFormedTextOrNothing) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> byte(0, 255);
    for (std::size_t length = 0; length < 600; length += 3) {
        std::string bytes(length, '\0');
        for (char& each : bytes) {
            each = static_cast<char>(byte(random));
        }
        const auto decoded = text::decodeText(bytes);
        EXPECT_TRUE(!decoded || text::decodeUTF8Strict(*decoded)) << length;
    }
}
