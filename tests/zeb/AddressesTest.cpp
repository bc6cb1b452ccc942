// Addresses as they are read.
#include <gtest/gtest.h>

#include "zeb/requests/Addresses.h"

namespace kq::zeb {
namespace {

TEST(Addresses, AreReadInEverySpelling) {
    EXPECT_EQ(NumericAddress("192.0.2.1"), "192.0.2.1");
    EXPECT_EQ(NumericAddress("2001:DB8:0::1"), "2001:db8::1");
    EXPECT_EQ(NumericAddress("[2001:db8::1]"), "2001:db8::1");
}

TEST(Addresses, AreNothingElse) {
    for (const char* text : {"", "zeb.example", "localhost", "192.0.2.256", "192.0.2", "[192.0.2.1]", "[]",
                             "[::1", "::1]", "192.0.2.1:7700", "[::1]:7700", " 192.0.2.1"})
        EXPECT_EQ(NumericAddress(text), std::nullopt) << text;
}

TEST(Addresses, EndWithTheirText) {
    EXPECT_EQ(NumericAddress(std::string("192.0.2.1\0.example", 18)), std::nullopt);
}

}  // namespace
}  // namespace kq::zeb
