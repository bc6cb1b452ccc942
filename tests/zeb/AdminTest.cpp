// The commands of zebctl.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <kqappsession/WebData.h>

#include "zeb/ExpectError.h"
#include "zeb/TemporaryFolder.h"
#include "zeb/admin/Admin.h"
#include "zeb/store/PrivateFiles.h"
#include "zeb/store/UserData.h"

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
    static void ExpectRefused(const std::function<void()>& command, const std::string& description) {
        ExpectError(command, NumberOf(RuntimeError::InvalidProcedureCall), "zebctl", description);
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
    ExpectRefused([&] { InitData(folder.Path("data")); },
                  "There is already a database in " + folder.Path("data") + "; nothing was changed");
    EXPECT_TRUE(OpenData(folder.Path("data")));
}

TEST_F(Admin, InitNamesAFolderThatCannotBeMade) {
    ExpectError([&] { InitData(folder.Path("no/data")); }, ENOENT, "zebd",
                "The folder " + folder.Path("no/data") + " cannot be made: No such file or directory");
}

TEST_F(Admin, ThereMustBeADatabase) {
    const auto data = folder.Path("data");
    ExpectRefused([&] { OpenData(data); },
                  "There is no database in " + data + "; 'zebctl init --data " + data + "' makes one");
}

TEST_F(Admin, AddedUsersHaveUidsOfTheirOwnAndTheirPasswords) {
    const auto ana = Add("ana");
    const auto bob = Add("bob", "another one");
    EXPECT_NE(ana, bob);
    EXPECT_TRUE(hasher.Verify(Accounts(store).Find("bob")->password_hash, Secret("another one")));
}

TEST_F(Admin, AUserIsAddedOnce) {
    Add("ana");
    ExpectRefused([&] { Add("ana", "another one"); }, "There is already a user \"ana\"");
    EXPECT_EQ(Accounts(store).All().size(), 1U);
    EXPECT_TRUE(hasher.Verify(Accounts(store).Find("ana")->password_hash, Secret("correct horse")));
}

TEST_F(Admin, BadNamesAndPasswordsAreRefused) {
    ExpectRefused([&] { Add(" ana"); }, Accounts::WhyNoLogin(" ana"));
    ExpectRefused([&] { Add("ana", "short"); }, "The password must have 8 to 64 characters");
    ExpectRefused([&] { Add("anastasia", "Anastasia"); }, std::string(SentenceOf(Refusal::PasswordIsLogin)));
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

TEST_F(Admin, TheListShowsNamesInTheOrderOfTheColumns) {
    Account ana;
    ana.login = "ana";
    ana.first_name = "A\u202Ena";
    AddUser(store, hasher, ana, Secret("correct horse"));
    EXPECT_NE(ListUsers(store).find("\tana\tA\\u202ena\t\t0\t\n"), std::string::npos) << ListUsers(store);
}

class AdminProfiles : public Admin {
 protected:
    void SetUp() override {
        uid = Add("ana");
        Add("bob");
        ExpectStored("Demo", {"Home", "Work"});
        ExpectStored("Other", {});
    }
    void ExpectStored(const std::string& app_id, const std::vector<std::string>& names) {
        Profiles profiles;
        for (const auto& name : names)
            profiles.Add(std::make_shared<Profile>(name));
        EXPECT_EQ(UserData(store).SetProfiles(uid, app_id, profiles.ToXML()), Refusal::None);
    }
    std::int32_t uid = 0;
};

TEST_F(AdminProfiles, AreListedByApplicationWithTheirSizes) {
    const auto demo = std::to_string(ShowProfiles(store, "ana", "Demo").size());
    const auto other = std::to_string(ShowProfiles(store, "ana", "Other").size());
    EXPECT_EQ(ListProfiles(store, "ana"),
              "APP\tBYTES\tPROFILES\nDemo\t" + demo + "\t2\nOther\t" + other + "\t0\n");
    EXPECT_EQ(ListProfiles(store, "bob"), "APP\tBYTES\tPROFILES\n");
}

TEST_F(AdminProfiles, AreListedOnALineEachWhateverTheApplicationIsCalled) {
    ExpectStored("A\nB", {});
    EXPECT_NE(ListProfiles(store, "ana").find("\nA\\u000aB\t"), std::string::npos);
}

TEST_F(AdminProfiles, AreShownAsTheyAreStored) {
    EXPECT_EQ(ShowProfiles(store, "ana", "Demo"), UserData(store).Profiles(uid, "Demo"));
}

TEST_F(AdminProfiles, AreRemovedForOneApplicationOrAll) {
    EXPECT_EQ(RemoveProfiles(store, "ana", "Other"), std::vector<std::string>{"Other"});
    EXPECT_EQ(RemoveProfiles(store, "ana", ""), std::vector<std::string>{"Demo"});
    EXPECT_TRUE(UserData(store).AllProfiles(uid).empty());
}

TEST_F(AdminProfiles, ThatAreNotThereAreNamed) {
    ExpectRefused([&] { ListProfiles(store, "eve"); }, "There is no user \"eve\"");
    ExpectRefused([&] { RemoveProfiles(store, "eve", ""); }, "There is no user \"eve\"");
    ExpectRefused([&] { ShowProfiles(store, "ana", "None"); }, "\"ana\" has no profiles for \"None\"");
    ExpectRefused([&] { RemoveProfiles(store, "bob", ""); }, "\"bob\" has no profiles");
}

}  // namespace
}  // namespace kq::zeb
