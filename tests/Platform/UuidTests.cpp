#include "Platform/Foundation/Uuid.h"

#include <string>
#include <vector>

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
    }
}

TEST(Uuid, CanonicalTextIsUpperCaseAndParsingRoundTrips) {
    const auto parsed = Uuid::parse("6f9619ff-8b86-d011-b42d-00cf4fc964ff");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->uuidString(), "6F9619FF-8B86-D011-B42D-00CF4FC964FF");
    EXPECT_EQ(parsed->bytes()[0], 0x6F);
    EXPECT_EQ(parsed->bytes()[15], 0xFF);
    EXPECT_EQ(Uuid::parse("6F9619FF-8B86-D011-B42D-00CF4FC964FF"), parsed);
    const Uuid random = Uuid::random();
    EXPECT_EQ(random.uuidString().size(), 36u);
    EXPECT_EQ(Uuid::parse(random.uuidString()), random);
}

TEST(Uuid, ParseRejectsMalformedText) {
    for (const char* text : {"", "6F9619FF-8B86-D011-B42D-00CF4FC964F", "6F9619FF-8B86-D011-B42D-00CF4FC964FF0",
                             "{6F9619FF-8B86-D011-B42D-00CF4FC964F}",
                             // Right length, hyphens moved or missing.
                             "6F9619F-F8B86-D011-B42D-00CF4FC964FF", "6F9619FF08B86-D011-B42D-00CF4FC964FF",
                             "6F9619FF8B86D011B42D00CF4FC964FF----",
                             // Right shape, not hex.
                             "6F9619FG-8B86-D011-B42D-00CF4FC964FF", "6F9619FF-8B86-D011-B42D-00CF4FC964F ",
                             "+F9619FF-8B86-D011-B42D-00CF4FC964FF"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
}

TEST(Uuid, OrderingMatchesCanonicalStrings) {
    std::vector<Uuid> uuids;
    for (int i = 0; i < 32; ++i) uuids.push_back(Uuid::random());
    for (const char* text : {"0A000000-0000-4000-8000-000000000000", "A0000000-0000-4000-8000-000000000000",
                             "90000000-0000-4000-8000-000000000000"}) {
        uuids.push_back(*Uuid::parse(text));
    }
    for (const Uuid& a : uuids) {
        for (const Uuid& b : uuids) EXPECT_EQ(a < b, a.uuidString() < b.uuidString()) << a.uuidString();
    }
}
