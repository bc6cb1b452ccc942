#include <gtest/gtest.h>

#include "tools/program/OneLine.h"

namespace kq {
namespace {

TEST(OneLine, KeepsWhatIsSeen) {
    for (const auto* text :
         {"", "Ann Lee", "a\"b\\c", "\\u000a", "é € 日本 \U0001F600", "١٢٣ \u0601", "\u00A0"})
        EXPECT_EQ(OneLine(text), text);
}

TEST(OneLine, EscapesControlCharacters) {
    EXPECT_EQ(OneLine("a\nb\r\tc\x1b[2Jd\x7f"), R"(a\u000ab\u000d\u0009c\u001b[2Jd\u007f)");
    EXPECT_EQ(OneLine(std::string_view("\0", 1)), R"(\u0000)");
    EXPECT_EQ(OneLine("\u0080\u009b31m\u009f"), R"(\u0080\u009b31m\u009f)");
}

TEST(OneLine, EscapesWhatTurnsTheOrderOfItsNeighbours) {
    EXPECT_EQ(OneLine("\u202Egpj.exe\u202C"), R"(\u202egpj.exe\u202c)");
    EXPECT_EQ(OneLine("\u200E\u200F\u061C\u202A\u202B\u202D\u2066\u2067\u2068\u2069"),
              R"(\u200e\u200f\u061c\u202a\u202b\u202d\u2066\u2067\u2068\u2069)");
}

TEST(OneLine, EscapesWhatIsInvisible) {
    EXPECT_EQ(OneLine("a\u200Bb\u00ADc\uFEFFd\u2060"), R"(a\u200bb\u00adc\ufeffd\u2060)");
    EXPECT_EQ(OneLine("\u2028\u2029"), R"(\u2028\u2029)");
    EXPECT_EQ(OneLine("\U000E0041\U000E0FFF"), R"(\udb40\udc41\udb43\udfff)");
}

TEST(OneLine, ReplacesIllFormedUtf8) {
    EXPECT_EQ(OneLine("a\xC3"), "a\uFFFD");
}

TEST(OneLine, TwiceIsTheSameAsOnce) {
    const auto once = OneLine("a\n\u202E\U000E0041\xFF");
    EXPECT_EQ(OneLine(once), once);
}

TEST(ShortLine, KeepsSixtyFourCharacters) {
    std::string text;
    for (int i = 0; i < 64; ++i)
        text += "é";
    EXPECT_EQ(ShortLine(text), text);
    EXPECT_EQ(ShortLine(text + "x"), text + "…");
}

TEST(ShortLine, CutsBetweenCharacters) {
    std::string text(63, 'x');
    EXPECT_EQ(ShortLine(text + "日本"), text + "日…");
    EXPECT_EQ(ShortLine(text + "\n\n"), text + "\\u000a…");
}

TEST(AddressAndPort, PutsOnlyIPv6IntoBrackets) {
    EXPECT_EQ(AddressAndPort("127.0.0.1", 7700), "127.0.0.1:7700");
    EXPECT_EQ(AddressAndPort("::1", 7700), "[::1]:7700");
    EXPECT_EQ(AddressAndPort("[2001:db8::1]", 7700), "[2001:db8::1]:7700");
    EXPECT_EQ(AddressAndPort("", 7700), ":7700");
}

}  // namespace
}  // namespace kq
