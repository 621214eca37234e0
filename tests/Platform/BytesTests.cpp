#include "Platform/Foundation/Bytes.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

using platform::Bytes;

TEST(Bytes, Base64MatchesRfc4648VectorsAndRoundTripsEveryByte) {
    const std::pair<std::string, std::string> vectors[] = {{"", ""},         {"f", "Zg=="},        {"fo", "Zm8="},
                                                           {"foo", "Zm9v"},  {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="},
                                                           {"foobar", "Zm9vYmFy"}};
    for (const auto& [plain, encoded] : vectors) {
        EXPECT_EQ(Bytes(plain).base64Encoded(), encoded);
        EXPECT_EQ(Bytes::fromBase64(encoded), Bytes(plain)) << encoded;
    }
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    EXPECT_EQ(Bytes::fromBase64(Bytes(all).base64Encoded()), Bytes(all));
}

TEST(Bytes, FromBase64RejectsMalformedText) {
    // Bad length, characters outside the standard alphabet, padding before the end.
    for (const char* text : {"Zg=", "Zm9v!mFy", "Zm9v-_Fy", "Zm9v\nYmFy", "Zg==Zm9v", "Z==="}) {
        EXPECT_FALSE(Bytes::fromBase64(text)) << text;
    }
}
