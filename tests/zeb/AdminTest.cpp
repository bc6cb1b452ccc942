// The commands of zebctl, and the reading of passwords and keys.
#include <fstream>
#include <sstream>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "zeb/Admin.h"
#include "zeb/PrivateFiles.h"
#include "zeb/TemporaryFolder.h"
#include "zeb/Terminal.h"

namespace kq::zeb {
namespace {

unsigned ModeOf(const std::string& path) {
    struct stat file {};
    return stat(path.c_str(), &file) == 0 ? file.st_mode & 0777U : 0U;
}

class Admin : public testing::Test {
 protected:
    TemporaryFolder folder;
    Store store{":memory:"};
    Argon2Hasher hasher{{.passes = 1, .memory = 8192}};

    std::int32_t Add(const std::string& login, const std::string& password = "correct horse") {
        Account account;
        account.login = login;
        return AddUser(store, hasher, account, Secret(password));
    }
};

TEST_F(Admin, InitMakesAPrivateFolderWithAPrivateDatabase) {
    InitData(folder.Path("data"));
    EXPECT_EQ(ModeOf(folder.Path("data")), 0700U);
    EXPECT_EQ(ModeOf(folder.Path("data/zeb.db")), 0600U);
    EXPECT_TRUE(OpenData(folder.Path("data")));
}

TEST_F(Admin, InitNeverTouchesADatabase) {
    InitData(folder.Path("data"));
    EXPECT_THROW(InitData(folder.Path("data")), Error);
    EXPECT_TRUE(OpenData(folder.Path("data")));
}

TEST_F(Admin, InitNamesAFolderThatCannotBeMade) {
    EXPECT_THROW(InitData(folder.Path("no/data")), Error);
}

TEST_F(Admin, ThereMustBeADatabase) {
    EXPECT_THROW(OpenData(folder.Path("data")), Error);
}

TEST_F(Admin, AddedUsersHaveUidsOfTheirOwnAndTheirPasswords) {
    const auto ana = Add("ana");
    const auto bob = Add("bob", "another one");
    EXPECT_NE(ana, bob);
    EXPECT_TRUE(hasher.Verify(Accounts(store).Find("bob")->password_hash, Secret("another one")));
}

TEST_F(Admin, AUserIsAddedOnce) {
    Add("ana");
    EXPECT_THROW(Add("ana"), Error);
}

TEST_F(Admin, BadNamesAndPasswordsAreRefused) {
    EXPECT_THROW(Add(" ana"), Error);
    EXPECT_THROW(Add("ana", "short"), Error);
    EXPECT_THROW(Add("anastasia", "Anastasia"), Error);
    EXPECT_TRUE(Accounts(store).All().empty());
}

TEST_F(Admin, TheListNamesEveryUserInOrder) {
    Add("bob");
    Account ana;
    ana.login = "ana";
    ana.must_change = true;
    ana.disabled = true;
    AddUser(store, hasher, ana, Secret("correct horse"));
    const auto list = ListUsers(store);
    EXPECT_LT(list.find("\tana\t"), list.find("\tbob\t"));
    EXPECT_NE(list.find("disabled must-change"), std::string::npos);
    EXPECT_EQ(list.find("argon2"), std::string::npos);
}

TEST(NewPassword, IsTheFirstLineOfTheInput) {
    std::istringstream in("correct horse\r\nmore\n");
    std::ostringstream prompt;
    EXPECT_EQ(ReadNewPassword(in, false, prompt).Reveal(), "correct horse");
    EXPECT_EQ(prompt.str(), "");
}

TEST(NewPassword, IsAskedForTwiceOnATerminal) {
    std::istringstream in("correct horse\ncorrect horse\n");
    std::ostringstream prompt;
    EXPECT_EQ(ReadNewPassword(in, true, prompt).Reveal(), "correct horse");
    EXPECT_EQ(prompt.str(), "Password: \nThe same again: \n");
}

TEST(NewPassword, TypedInTwoWaysIsRefused) {
    std::istringstream in("correct horse\ncorrect hose\n");
    std::ostringstream prompt;
    EXPECT_THROW(ReadNewPassword(in, true, prompt), Error);
}

TEST(NewPassword, MustBeThere) {
    std::istringstream in;
    std::ostringstream prompt;
    EXPECT_THROW(ReadNewPassword(in, false, prompt), Error);
}

}  // namespace
}  // namespace kq::zeb
