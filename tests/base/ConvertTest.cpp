// The conversions between texts and values: what counts as a number, how halves are rounded, what overflows.
#include <clocale>
#include <limits>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "base/Convert.h"

namespace kq {
namespace {

template <class F>
std::int32_t ErrorOf(F f) {
    try {
        f();
    } catch (const Error& error) {
        return error.Number();
    }
    return 0;
}

constexpr auto kOverflow = NumberOf(RuntimeError::Overflow);
constexpr auto kMismatch = NumberOf(RuntimeError::TypeMismatch);

TEST(Val, TakesTheLongestNumericPrefix) {
    EXPECT_EQ(Val("12abc"), 12);
    EXPECT_EQ(Val("1.5.2"), 1.5);
    EXPECT_EQ(Val("7 8"), 7);
    EXPECT_EQ(Val("1,5"), 1);
    EXPECT_EQ(Val("-3-"), -3);
}

TEST(Val, SkipsLeadingBlanks) {
    EXPECT_EQ(Val("  7x"), 7);
    EXPECT_EQ(Val("\t 7"), 7);
}

TEST(Val, IsZeroWithoutANumber) {
    for (const char* text : {"", "   ", "-", "+", ".", "e5", "abc", "- 3", ".e3", "--1", "inf", "nan"}) {
        EXPECT_EQ(Val(text), 0) << text;
    }
}

TEST(Val, AcceptsASignAndABarePoint) {
    EXPECT_EQ(Val("+3"), 3);
    EXPECT_EQ(Val(".5"), 0.5);
    EXPECT_EQ(Val("5."), 5);
    EXPECT_EQ(Val("-.25"), -0.25);
}

TEST(Val, ReadsAnExponentOnlyWhenItHasDigits) {
    EXPECT_EQ(Val("1e5"), 100000);
    EXPECT_EQ(Val("1E-2"), 0.01);
    EXPECT_EQ(Val("1e"), 1);
    EXPECT_EQ(Val("1e+"), 1);
    EXPECT_EQ(Val("5.e1"), 50);
}

TEST(Val, KnowsNoHexadecimalNumbers) {
    EXPECT_EQ(Val("0x10"), 0);
    EXPECT_EQ(Val("&H10"), 0);
}

TEST(Val, OverflowsWhenNoDoubleCanHoldTheNumber) {
    for (const char* text : {"1e999", "-1e999", "1e99999999999999999999", "0.0001e400"}) {
        EXPECT_EQ(ErrorOf([&] { Val(text); }), kOverflow) << text;
    }
}

TEST(ReceivedVal, IsInfiniteWhereValOverflows) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const char* text : {"1e999", "0.0001e400", "  9e99999999999999999999x"}) {
        EXPECT_EQ(ReceivedVal(text), kInfinity) << text;
    }
    EXPECT_EQ(ReceivedVal("-1e999"), -kInfinity);
    EXPECT_EQ(ReceivedVal("-1e-999"), 0);
}

TEST(ReceivedVal, IsValOtherwise) {
    for (const char* text : {"", "abc", "12abc", " -7.5", "1e5"}) {
        EXPECT_EQ(ReceivedVal(text), Val(text)) << text;
    }
}

TEST(ReceivedValLong, IsZeroOutsideThirtyTwoBits) {
    for (const char* text : {"2147483647.5", "-2147483649", "99999999999", "1e999", "-1e999", "x"}) {
        EXPECT_EQ(ReceivedValLong(text), 0) << text;
    }
    EXPECT_EQ(ReceivedValLong("2147483647.4"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(ReceivedValLong("-2147483648.5"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ReceivedValLong("2.5"), 2);
}

TEST(Val, TakesATooSmallNumberAsZero) {
    for (const char* text : {"1e-999", "1e-99999999999999999999", "0e999", "0.0e99999999999999999999"}) {
        EXPECT_EQ(Val(text), 0) << text;
    }
}

TEST(Val, IgnoresTheProcessLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "pt_BR.UTF-8", "C.UTF-8"}) {
        std::setlocale(LC_ALL, name);
        EXPECT_EQ(Val("1.5"), 1.5);
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(ValLong, RoundsHalvesToTheEvenNeighbour) {
    EXPECT_EQ(ValLong("0.5"), 0);
    EXPECT_EQ(ValLong("1.5"), 2);
    EXPECT_EQ(ValLong("2.5"), 2);
    EXPECT_EQ(ValLong("-0.5"), 0);
    EXPECT_EQ(ValLong("-1.5"), -2);
    EXPECT_EQ(ValLong("-2.5"), -2);
    EXPECT_EQ(ValLong("2.51"), 3);
}

TEST(ValLong, OverflowsOutside32Bits) {
    EXPECT_EQ(ValLong("2147483647.4"), 2147483647);
    EXPECT_EQ(ValLong("-2147483648.5"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ErrorOf([] { ValLong("2147483647.5"); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { ValLong("2147483648"); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { ValLong("-2147483649"); }), kOverflow);
}

TEST(RoundToLong, OverflowsForWhatIsNoNumber) {
    EXPECT_EQ(ErrorOf([] { RoundToLong(std::numeric_limits<double>::quiet_NaN()); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { RoundToLong(std::numeric_limits<double>::infinity()); }), kOverflow);
}

TEST(TextToLong, TakesTheWholeTrimmedText) {
    EXPECT_EQ(TextToLong(" 42 "), 42);
    EXPECT_EQ(TextToLong("1e3"), 1000);
    EXPECT_EQ(TextToLong("+2.5"), 2);
}

TEST(TextToLong, RefusesEverythingElse) {
    for (const char* text : {"", "  ", "12a", "1 2", "1e", "-", ".", "0x10", "True", "1,000"}) {
        EXPECT_EQ(ErrorOf([&] { TextToLong(text); }), kMismatch) << text;
    }
}

TEST(TextToLong, OverflowsOutside32Bits) {
    EXPECT_EQ(ErrorOf([] { TextToLong("4294967296"); }), kOverflow);
    EXPECT_EQ(ErrorOf([] { TextToLong("1e400"); }), kOverflow);
}

TEST(TextToDouble, RefusesAnEmptyText) {
    EXPECT_EQ(ErrorOf([] { TextToDouble(""); }), kMismatch);
    EXPECT_EQ(TextToDouble("1.25"), 1.25);
}

TEST(TextToBoolean, IsTrueForEveryNumberButZero) {
    EXPECT_TRUE(TextToBoolean("1"));
    EXPECT_TRUE(TextToBoolean("-1"));
    EXPECT_TRUE(TextToBoolean("0.001"));
    EXPECT_FALSE(TextToBoolean("0"));
    EXPECT_FALSE(TextToBoolean("0.0"));
}

TEST(TextToBoolean, AcceptsTheTwoWordsInAnyCase) {
    EXPECT_TRUE(TextToBoolean("True"));
    EXPECT_TRUE(TextToBoolean("tRUE"));
    EXPECT_FALSE(TextToBoolean("FALSE"));
}

TEST(TextToBoolean, RefusesEveryOtherText) {
    for (const char* text : {"", "yes", "Truex", "1x"}) {
        EXPECT_EQ(ErrorOf([&] { TextToBoolean(text); }), kMismatch) << text;
    }
}

TEST(TextOf, WritesNumbersWithoutSeparatorsAndBooleansAsWords) {
    EXPECT_EQ(TextOf(std::int32_t{-1234567}), "-1234567");
    EXPECT_EQ(TextOf(true), "True");
    EXPECT_EQ(TextOf(false), "False");
}

TEST(UpperCase, LeavesOtherThanAsciiLettersAlone) {
    EXPECT_EQ(UpperCase("az{\xC3\xA4"), "AZ{\xC3\xA4");
    EXPECT_TRUE(EqualsIgnoringCase("AbC", "aBc"));
    EXPECT_FALSE(EqualsIgnoringCase("abc", "abcd"));
    EXPECT_FALSE(EqualsIgnoringCase("\xC3\xA4", "\xC3\x84"));
}

TEST(Trim, DropsBlanksAtBothEndsOnly) {
    EXPECT_EQ(Trim("  a b "), "a b");
    EXPECT_EQ(Trim("\ta"), "\ta");
    EXPECT_EQ(Trim("   "), "");
}

TEST(Split, KeepsEmptyAndUntrimmedPieces) {
    EXPECT_EQ(Split("a;; b;", ';'), (std::vector<std::string>{"a", "", " b", ""}));
    EXPECT_EQ(Split("", ';'), std::vector<std::string>{""});
}

}  // namespace
}  // namespace kq
