#include "Platform/Foundation/Bytes.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

using platform::Bytes;

TEST(Bytes, Base64MatchesRfc4648Vectors) {
    const std::pair<std::string, std::string> vectors[] = {{"", ""},         {"f", "Zg=="},        {"fo", "Zm8="},
                                                           {"foo", "Zm9v"},  {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="},
                                                           {"foobar", "Zm9vYmFy"}};
    for (const auto& [plain, encoded] : vectors) {
        EXPECT_EQ(Bytes(plain).base64Encoded(), encoded);
        const auto decoded = Bytes::fromBase64(encoded);
        ASSERT_TRUE(decoded) << encoded;
        EXPECT_EQ(decoded->view(), plain);
    }
}

TEST(Bytes, EveryByteValueRoundTrips) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    // Each length remainder exercises a different padding.
    for (std::size_t drop = 0; drop < 3; ++drop) {
        const Bytes bytes(all.substr(drop));
        const auto decoded = Bytes::fromBase64(bytes.base64Encoded());
        ASSERT_TRUE(decoded);
        EXPECT_EQ(*decoded, bytes);
    }
}

TEST(Bytes, FromBase64RejectsMalformedText) {
    for (const char* text : {"Zg=", "Zm9vY", "Zm9v!mFy", "Zm9v-_Fy", "Zm9v\nYmFy", "Zm 9", "Zg==Zm9v", "Zm=v", "Z===",
                             "===="}) {
        EXPECT_FALSE(Bytes::fromBase64(text)) << text;
    }
}

TEST(Bytes, CopiesCompareEqualAndShareTheBuffer) {
    const Bytes original(std::string(1000, 'x'));
    const Bytes copy = original;
    EXPECT_EQ(copy, original);
    EXPECT_EQ(copy.view().data(), original.view().data());
    EXPECT_FALSE(Bytes(std::string("abc")) == Bytes(std::string("abd")));
    EXPECT_EQ(Bytes(), Bytes(std::string()));
}
