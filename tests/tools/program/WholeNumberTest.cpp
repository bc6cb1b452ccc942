#include <gtest/gtest.h>

#include "tools/program/WholeNumber.h"

namespace kq {
namespace {

constexpr NumberRange kSome{-5, 1'000};

TEST(WholeNumber, IsReadWithinItsRange) {
    EXPECT_EQ(WholeNumber("0", kSome), 0);
    EXPECT_EQ(WholeNumber("-5", kSome), -5);
    EXPECT_EQ(WholeNumber("1000", kSome), 1'000);
    EXPECT_EQ(WholeNumber("007", kSome), 7);
}

TEST(WholeNumber, OutsideItsRangeIsNone) {
    EXPECT_FALSE(WholeNumber("-6", kSome));
    EXPECT_FALSE(WholeNumber("1001", kSome));
    EXPECT_FALSE(WholeNumber("4294967296", kSome));
    EXPECT_FALSE(WholeNumber("1" + std::string(308, '0'), kSome));
    EXPECT_FALSE(WholeNumber("-1" + std::string(308, '0'), kSome));
}

TEST(WholeNumber, HasNothingBesidesItsDigits) {
    for (const auto* text : {"", "-", "+1", " 1", "1 ", "1.0", "1e2", "0x10", "one", "1\n"})
        EXPECT_FALSE(WholeNumber(text, kSome)) << text;
}

TEST(WholeNumber, TellsItsRange) {
    EXPECT_EQ(RangeText(kSome), "-5 to 1000");
    EXPECT_EQ(RangeRule(kSome), "must be a whole number from -5 to 1000");
}

}  // namespace
}  // namespace kq
