#include "Platform/Text/TextDecoding.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <unicode/utf8.h>

namespace text = platform::text;

namespace {

// ICU's own reading of well-formed UTF-8, the reference for the fast validator.
bool icuAcceptsUTF8(std::string_view bytes) {
    UChar32 codePoint = 0;
    for (std::size_t at = 0; at < bytes.size() && codePoint >= 0;) U8_NEXT(bytes.data(), at, bytes.size(), codePoint);
    return codePoint >= 0;
}

} // namespace

TEST(UTF8Validation, KeepsWellFormedBytesAndRejectsOverlongsAndSurrogates) {
    for (const std::string_view bytes : {"", "\xEF\xBB\xBF" "bom kept", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(text::decodeUTF8Strict(bytes), std::string(bytes));
    }
    for (const char* bytes : {"\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_FALSE(text::decodeUTF8Strict(bytes)) << testing::PrintToString(bytes);
    }
}

// Every lead byte with every second byte and some trail bytes, after a word of ASCII.
TEST(UTF8Validation, AgreesWithICUOnShortSequences) {
    for (int lead = 0x80; lead <= 0xFF; ++lead) {
        for (int second = 0; second <= 0xFF; ++second) {
            for (const std::string_view tail : {"", "\x80", "\x80\xBF", "\x7F\x80", "\xBF\xC0"}) {
                const std::string bytes = std::string("prefix: ") + char(lead) + char(second) + std::string(tail);
                ASSERT_EQ(text::decodeUTF8Strict(bytes).has_value(), icuAcceptsUTF8(bytes))
                    << testing::PrintToString(bytes);
            }
        }
    }
}

TEST(StrictDecoding, FailsOnBytesTheCharsetLeavesUndefined) {
    EXPECT_EQ(text::decodeStrict("caf\xE9 \x80", "windows-1252"), "café €");
    EXPECT_FALSE(text::decodeStrict("ok \x81", "windows-1252"));
    EXPECT_FALSE(text::decodeStrict("\x9D", "cp1252"));
    EXPECT_FALSE(text::decodeStrict("\x80", "US-ASCII"));
    EXPECT_FALSE(text::decodeStrict(std::string_view("a\0b", 3), "UTF-16LE"));
    EXPECT_FALSE(text::decodeStrict("abc", "no-such-charset"));
    EXPECT_FALSE(text::decodeStrict("abc", nullptr));
    // The output buffer has to grow past the input's size.
    EXPECT_EQ(text::decodeStrict(std::string(20000, '\xE9'), "latin1").value_or("").size(), 40000u);
}

TEST(DetectedDecoding, RecognisesUTF16ByteOrderMarkAndLatin1) {
    std::string utf16("\xFF\xFE", 2);
    for (const char ascii : std::string_view("Notes from the second interview.")) utf16 += {ascii, '\0'};
    EXPECT_EQ(text::decodeText(utf16), "\xEF\xBB\xBF" "Notes from the second interview.");

    const std::string latin1 =
        "Le caf\xE9 \xE9tait ferm\xE9 ce matin, alors nous sommes all\xE9s \xE0 la biblioth\xE8que. "
        "L'\xE9t\xE9 dernier, la r\xE9union s'est d\xE9roul\xE9" "e pr\xE8s de la for\xEAt. "
        "Les enqu\xEAt\xE9s ont r\xE9pondu \xE0 toutes les questions avec beaucoup de d\xE9tails.";
    EXPECT_EQ(text::decodeText(latin1),
              "Le café était fermé ce matin, alors nous sommes allés à la bibliothèque. "
              "L'été dernier, la réunion s'est déroulée près de la forêt. "
              "Les enquêtés ont répondu à toutes les questions avec beaucoup de détails.");
}
