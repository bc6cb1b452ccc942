// How arguments get into a text.
#include <gtest/gtest.h>

#include "messages/MessagesTesting.h"

namespace kq {
namespace {

std::string Format(const std::string& text, const Args& args) {
    return Texts::FormatText(text, args);
}

TEST(FormatText, PutsAnArgumentInPlaceOfItsPlaceholder) {
    EXPECT_EQ(Format("Login failed: %0%.", {"x"}), "Login failed: x.");
    EXPECT_EQ(Format("%1% before %0%", {"a", "b"}), "b before a");
}

TEST(FormatText, AppendsAnArgumentWithoutAPlaceholderAfterABlank) {
    EXPECT_EQ(Format("Password must be changed before login may be completed.", {"a"}),
              "Password must be changed before login may be completed. a");
    EXPECT_EQ(Format("", {"a", "b"}), " a b");
}

TEST(FormatText, ReplacesEveryOccurrence) {
    EXPECT_EQ(Format("%0% and %0%%0%", {"x"}), "x and xx");
}

TEST(FormatText, LeavesAPlaceholderWithoutAnArgument) {
    EXPECT_EQ(Format("%0% %1%", {}), "%0% %1%");
    EXPECT_EQ(Format("%1%", {"a"}), "%1% a");
}

TEST(FormatText, ReplacesALaterPlaceholderThatAnArgumentBroughtIn) {
    EXPECT_EQ(Format("%0%", {"<%1%>", "b"}), "<b>");
    EXPECT_EQ(Format("no place", {"%1%", "b"}), "no place b");
}

TEST(FormatText, LeavesAnEarlierPlaceholderThatAnArgumentBroughtIn) {
    EXPECT_EQ(Format("%0% %1%", {"a", "%0%"}), "a %0%");
}

TEST(FormatText, DoesNotSearchAnArgumentForItsOwnPlaceholder) {
    EXPECT_EQ(Format("%0%", {"<%0%>"}), "<%0%>");
}

TEST(FormatText, ReplacesByAnEmptyArgument) {
    EXPECT_EQ(Format("(%0%)", {""}), "()");
    EXPECT_EQ(Format("none", {""}), "none ");
}

TEST(FormatText, DropsTheFullStopOfAnArgumentBeforeOneOfTheText) {
    EXPECT_EQ(Format("Login failed: %0%.", {"The account is disabled."}),
              "Login failed: The account is disabled.");
    EXPECT_EQ(Format("Login failed: %0%.", {"Try again later. \n"}), "Login failed: Try again later.");
    EXPECT_EQ(Format("Login failed: %0%.", {"Please wait..."}), "Login failed: Please wait...");
    EXPECT_EQ(Format("%0%.", {"."}), ".");
}

TEST(FormatText, KeepsTheFullStopOfAnArgumentElsewhere) {
    EXPECT_EQ(Format("Validation failed: %0%  Again?", {"Not now."}), "Validation failed: Not now.  Again?");
    EXPECT_EQ(Format("(%0%). %0%", {"x."}), "(x.). x.");
    EXPECT_EQ(Format("Failed.", {"x."}), "Failed. x.");
    EXPECT_EQ(Format("%0%.", {"Who are you? "}), "Who are you? .");
}

TEST(FormatText, KnowsNoLeadingZeros) {
    EXPECT_EQ(Format("%00%", {"a"}), "%00% a");
}

TEST(FormatText, NumbersPlaceholdersInDecimal) {
    Args args(11, "");
    args[10] = "ten";
    EXPECT_EQ(Format("%0%%1%%2%%3%%4%%5%%6%%7%%8%%9%%10%", args), "ten");
}

TEST(FormatText, Bears32767ArgumentsAndOverflowsBeyond) {
    EXPECT_EQ(Format("", Args(32'767, "")), std::string(32'767, ' '));
    EXPECT_EQ(ErrorOf([] { Format("", Args(32'768, "")); }).Number(), NumberOf(RuntimeError::Overflow));
}

}  // namespace
}  // namespace kq
