#include "Platform/Foundation/Uuid.h"

#include <gtest/gtest.h>

using platform::Uuid;

TEST(Uuid, RandomIsVersionFourWithRfcVariant) {
    const Uuid first = Uuid::random();
    const Uuid second = Uuid::random();
    EXPECT_NE(first, second);
    for (const Uuid& uuid : {first, second}) {
        EXPECT_EQ(uuid.bytes()[6] >> 4, 0x4);
        EXPECT_EQ(uuid.bytes()[8] >> 6, 0b10);
        EXPECT_EQ(uuid.uuidString()[14], '4');
        EXPECT_EQ(Uuid::parse(uuid.uuidString()), uuid);
    }
}

TEST(Uuid, CanonicalTextIsUpperCaseAndParsingIgnoresCase) {
    const auto parsed = Uuid::parse("6f9619ff-8b86-d011-b42d-00cf4fc964ff");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->uuidString(), "6F9619FF-8B86-D011-B42D-00CF4FC964FF");
    EXPECT_EQ(parsed->bytes()[0], 0x6F);
    EXPECT_EQ(Uuid::parse("6F9619FF-8B86-D011-B42D-00CF4FC964FF"), parsed);
    for (const char* text : {"", "6F9619FF-8B86-D011-B42D-00CF4FC964F", "6F9619FF-8B86-D011-B42D-00CF4FC964FF0",
                             // Right length, hyphens moved or missing.
                             "6F9619F-F8B86-D011-B42D-00CF4FC964FF", "6F9619FF08B86-D011-B42D-00CF4FC964FF",
                             // Right shape, not hex.
                             "6F9619FG-8B86-D011-B42D-00CF4FC964FF", "+F9619FF-8B86-D011-B42D-00CF4FC964FF"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
}
