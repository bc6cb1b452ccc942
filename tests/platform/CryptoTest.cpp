// Keyed hashes against their published examples, random numbers, comparing.
#include <string>

#include <gtest/gtest.h>

#include <kqappsession/Platform.h>

#include "platform/Crypto.h"
#include "platform/Machine.h"

namespace kq {
namespace {

TEST(PortCrypto, MakesTheWellKnownKeyedHashes) {
    const auto crypto = MakePlatform()->Parts().crypto;
    EXPECT_EQ(crypto->HmacSha256Hex("Jefe", "what do ya want for nothing?"),
              "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
    EXPECT_EQ(crypto->HmacSha256Hex(std::string(131, '\xAA'),
                                    "Test Using Larger Than Block-Size Key - Hash Key First"),
              "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54");
    EXPECT_EQ(crypto->HmacSha256Hex("", "").size(), 64U);
}

TEST(PortCrypto, DrawsDifferentNumbersOfTheRightLength) {
    const auto crypto = MakePlatform()->Parts().crypto;
    const std::string one = crypto->RandomHex(16);
    EXPECT_EQ(one.size(), 32U);
    EXPECT_EQ(one.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_NE(one, crypto->RandomHex(16));
    EXPECT_EQ(crypto->RandomHex(0), "");
}

TEST(PortCrypto, ComparesWholeTexts) {
    const auto crypto = MakePlatform()->Parts().crypto;
    EXPECT_TRUE(crypto->EqualConstantTime("same", "same"));
    EXPECT_TRUE(crypto->EqualConstantTime("", ""));
    EXPECT_FALSE(crypto->EqualConstantTime("same", "sama"));
    EXPECT_FALSE(crypto->EqualConstantTime("same", "sam"));
}

}  // namespace
}  // namespace kq
