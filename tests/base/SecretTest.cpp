// A password leaves nothing behind where it was.
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <kqappsession/Secret.h>

namespace kq {
namespace {

TEST(Secret, RevealsItsText) {
    const Secret secret(std::string_view("open sesame"));
    EXPECT_EQ(secret.Reveal(), "open sesame");
    EXPECT_FALSE(secret.Empty());
    EXPECT_TRUE(Secret().Empty());
}

TEST(Secret, WipesTheTextItIsMadeFrom) {
    std::string text(100, 'p');
    const char* const memory = text.data();
    const Secret secret(std::move(text));
    EXPECT_EQ(std::string(memory, 100), std::string(100, '\0'));
    EXPECT_EQ(secret.Reveal(), std::string(100, 'p'));
}

TEST(Secret, LeavesNothingInTheOneItMovesFrom) {
    Secret from(std::string_view("short"));
    Secret to;
    to = std::move(from);
    EXPECT_TRUE(from.Empty());
    EXPECT_EQ(to.Reveal(), "short");
    EXPECT_EQ(std::string(from.Reveal().data(), 5), std::string(5, '\0'));
}

TEST(Secret, LeavesNothingInTheOneItIsMadeFromByMoving) {
    Secret from(std::string_view("short"));
    const Secret to(std::move(from));
    EXPECT_EQ(to.Reveal(), "short");
    EXPECT_EQ(std::string(from.Reveal().data(), 5), std::string(5, '\0'));
}

TEST(Secret, MovesALongTextWithoutCopyingIt) {
    Secret from(std::string_view("longer than any text that is kept in place"));
    const char* const memory = from.Reveal().data();
    const Secret to(std::move(from));
    EXPECT_EQ(to.Reveal().data(), memory);
}

TEST(Secret, SurvivesAssignmentToItself) {
    Secret secret(std::string_view("same"));
    auto& same = secret;
    secret = same;
    secret = std::move(same);
    EXPECT_EQ(secret.Reveal(), "same");
}

TEST(Secret, CopiesKeepTheOriginal) {
    const Secret one(std::string_view("one"));
    Secret two(std::string_view("two, which is longer than any text kept in place"));
    two = one;
    EXPECT_EQ(two.Reveal(), "one");
    EXPECT_EQ(one.Reveal(), "one");
}

TEST(Wipe, OverwritesCharactersBehindTheEndToo) {
    std::string text(64, 'x');
    text.resize(3);
    const char* const memory = text.data();
    Wipe(text);
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(memory[0], '\0');
    EXPECT_EQ(memory[40], '\0');
}

}  // namespace
}  // namespace kq
