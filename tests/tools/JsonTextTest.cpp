#include <gtest/gtest.h>

#include "tools/JsonText.h"

namespace kq {
namespace {

TEST(JsonText, QuotesAPlainTextAsItIs) {
    EXPECT_EQ("\"Ann Lee\"", JsonString("Ann Lee"));
}

TEST(JsonText, EscapesQuotationMarksAndBackslashes) {
    EXPECT_EQ(R"("a\"b\\c")", JsonString(R"(a"b\c)"));
}

TEST(JsonText, EscapesEveryControlCharacter) {
    for (int code = 0; code < 0x20; ++code) {
        const std::string text = JsonString(std::string(1, static_cast<char>(code)));
        EXPECT_EQ(8U, text.size()) << code;
        EXPECT_EQ("\"\\u00", text.substr(0, 5)) << code;
    }
    EXPECT_EQ(R"("\u000a\u001b\u007f")", JsonString("\n\x1b\x7f"));
}

TEST(JsonText, EscapesControlCharactersBeyondAscii) {
    EXPECT_EQ(R"("\u0080\u009f")", JsonString("\xC2\x80\xC2\x9F"));
    EXPECT_EQ(R"("\u2028\u2029")", JsonString("\xE2\x80\xA8\xE2\x80\xA9"));
}

TEST(JsonText, KeepsOtherCharactersAsUtf8) {
    EXPECT_EQ("\"\xC2\xA0 \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80\"",
              JsonString("\xC2\xA0 \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"));
}

TEST(JsonText, IllFormedUtf8BecomesReplacementCharacters) {
    EXPECT_EQ(
        "\"a\xEF\xBF\xBD"
        "b\"",
        JsonString("a\xFF"
                   "b"));
    EXPECT_EQ("\"\xEF\xBF\xBD\"", JsonString("\xC2"));
}

TEST(JsonText, EscapesWhatTurnsTheOrderOfItsNeighbours) {
    EXPECT_EQ(R"("\u202e\udb40\udc41")", JsonString("\xE2\x80\xAE\xF3\xA0\x81\x81"));
}

TEST(JsonObject, WithoutMembersIsAnEmptyObject) {
    EXPECT_EQ("{}", JsonObject().Text());
}

TEST(JsonObject, WritesMembersInTheirOrder) {
    JsonObject inner;
    inner.Add("n", -1);
    JsonObject object;
    object.Add("text", "x")
        .Add("number", 7)
        .Add("list", std::vector<std::string>{"a", "\""})
        .Add("object", inner);
    EXPECT_EQ(R"({"text":"x","number":7,"list":["a","\""],"object":{"n":-1}})", object.Text());
}

TEST(JsonObject, WritesAnEmptyList) {
    EXPECT_EQ(R"({"list":[]})", JsonObject().Add("list", std::vector<std::string>{}).Text());
}

}  // namespace
}  // namespace kq
