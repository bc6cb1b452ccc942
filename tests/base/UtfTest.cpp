// UTF-8 and UTF-16: the limits of every length, and one replacement for each ill-formed part.
#include <gtest/gtest.h>

#include "base/Utf.h"

namespace kq {
namespace {

const std::string kReplaced = "\xEF\xBF\xBD";

TEST(Utf8, AcceptsTheFirstAndLastCharacterOfEveryLength) {
    for (const char* text : {"\x01", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                             "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(IsValidUtf8(text));
        EXPECT_EQ(RepairUtf8(text), text);
        EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text);
    }
}

TEST(Utf8, RefusesOverlongFormsSurrogatesAndWhatIsTooLarge) {
    for (const char* text : {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                             "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\x80", "\xE2\x82"}) {
        EXPECT_FALSE(IsValidUtf8(text)) << text;
    }
}

TEST(Utf8, HoldsTheNulCharacter) {
    EXPECT_TRUE(IsValidUtf8(std::string_view("a\0b", 3)));
    EXPECT_EQ(Utf8ToUtf16(std::string_view("a\0b", 3)).size(), 3U);
}

TEST(RepairUtf8, ReplacesEachMaximalIllFormedPartOnce) {
    EXPECT_EQ(RepairUtf8("a\xE2\x82z"), "a" + kReplaced + "z");
    EXPECT_EQ(RepairUtf8("\xF0\x90\x80"), kReplaced);
    EXPECT_EQ(RepairUtf8("\xC0\x80"), kReplaced + kReplaced);
    EXPECT_EQ(RepairUtf8("\xED\xA0\x80"), kReplaced + kReplaced + kReplaced);
    EXPECT_EQ(RepairUtf8("\xE2\xC3\xA4"), kReplaced + "\xC3\xA4");
}

TEST(FirstCharacters, NeverEndsInsideACharacter) {
    EXPECT_EQ(FirstCharacters("a\xC3\xA4\xE2\x82\xACz", 3), "a\xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(FirstCharacters("ab", 9), "ab");
    EXPECT_EQ(FirstCharacters("ab", 0), "");
    EXPECT_EQ(FirstCharacters("\xFF\xFFz", 2), "\xFF\xFF");
}

TEST(Utf16, PairsSurrogates) {
    EXPECT_EQ(Utf16ToUtf8(u"\U0001F600"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf8ToUtf16("\xF0\x9F\x98\x80"), u"\U0001F600");
}

TEST(Utf16, ReplacesALoneSurrogate) {
    const std::u16string high = {u'a', char16_t{0xD800}, u'b'};
    const std::u16string low = {char16_t{0xDC00}};
    const std::u16string swapped = {char16_t{0xDC00}, char16_t{0xD800}};
    EXPECT_EQ(Utf16ToUtf8(high), "a" + kReplaced + "b");
    EXPECT_EQ(Utf16ToUtf8(low), kReplaced);
    EXPECT_EQ(Utf16ToUtf8(swapped), kReplaced + kReplaced);
}

TEST(Utf16, ReplacesIllFormedUtf8) {
    EXPECT_EQ(Utf8ToUtf16("x\xFFy"), u"x\uFFFDy");
}

}  // namespace
}  // namespace kq
