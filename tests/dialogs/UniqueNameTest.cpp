// Names for copies: the first that is free.
#include <set>

#include <gtest/gtest.h>

#include "dialogs/UniqueName.h"
#include "messages/MessagesTesting.h"

namespace kq {
namespace {

std::string UniqueAmong(const std::set<std::string>& taken, const std::string& proposed) {
    return UniqueName(proposed, [&](const std::string& name) { return taken.count(name) != 0; });
}

TEST(UniqueName, IsTheProposedNameWhenThatIsFree) {
    EXPECT_EQ(UniqueAmong({"Other"}, "Main"), "Main");
}

TEST(UniqueName, CountsFromTwo) {
    EXPECT_EQ(UniqueAmong({"Main"}, "Main"), "Main2");
    EXPECT_EQ(UniqueAmong({"Main", "Main2"}, "Main"), "Main3");
}

TEST(UniqueName, ReplacesTheCounterWhenItGrowsByADigit) {
    std::set<std::string> taken{"Main"};
    for (int i = 2; i <= 99; ++i)
        taken.insert("Main" + std::to_string(i));
    EXPECT_EQ(UniqueAmong(taken, "Main"), "Main100");
}

TEST(UniqueName, KeepsDigitsOfTheProposedName) {
    EXPECT_EQ(UniqueAmong({"Area 51"}, "Area 51"), "Area 512");
    EXPECT_EQ(UniqueAmong({"Area 51", "Area 512"}, "Area 51"), "Area 513");
}

TEST(UniqueName, OverflowsWithTheCounter) {
    const Error error = ErrorOf([] { UniqueName("Main", [](const std::string&) { return true; }); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::Overflow));
}

TEST(UniqueName, UsesTheLargestCounter) {
    EXPECT_EQ(UniqueName("Main", [](const std::string& name) { return name != "Main32767"; }), "Main32767");
}

std::string CopyAmong(const std::set<std::string>& taken, const std::string& original) {
    return NameForCopy(original, [&](const std::string& name) { return taken.count(name) != 0; });
}

TEST(NameForCopy, SaysThatItIsOne) {
    EXPECT_EQ(CopyAmong({"Main"}, "Main"), "Copy of Main");
    EXPECT_EQ(CopyAmong({"Main", "Copy of Main"}, "Main"), "Copy of Main2");
}

TEST(NameForCopy, SaysItOnce) {
    EXPECT_EQ(CopyAmong({"Copy of Main"}, "Copy of Main"), "Copy of Main2");
    EXPECT_EQ(CopyAmong({}, "copy of Main"), "Copy of copy of Main");
}

TEST(NameForCopy, IsEmptyWhenNoNumberIsLeft) {
    EXPECT_EQ(NameForCopy("Main", [](const std::string&) { return true; }), "");
}

}  // namespace
}  // namespace kq
