// The database file: made once, opened by both programs, and never by mistake.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sys/stat.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "zeb/ExpectError.h"
#include "zeb/TemporaryFolder.h"
#include "zeb/store/Accounts.h"
#include "zeb/store/Passwords.h"
#include "zeb/store/PrivateFiles.h"
#include "zeb/store/UserData.h"

namespace kq::zeb {
namespace {

void RunSql(const std::string& path, const char* sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
}

TEST(StoreFile, IsMadeForItsOwnerAlone) {
    const TemporaryFolder folder;
    Store::Create(folder.Path("zeb.db"));
    struct stat file {};
    ASSERT_EQ(stat(folder.Path("zeb.db").c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777, 0600U);
}

TEST(StoreFile, IsNeverMadeOverAnother) {
    const TemporaryFolder folder;
    Store::Create(folder.Path("zeb.db"));
    const auto path = folder.Path("zeb.db");
    ExpectError([&] { Store::Create(path); }, EEXIST, "zebd",
                "The file " + path + " cannot be made: File exists");
}

TEST(StoreFile, MustBeThereToBeOpened) {
    const TemporaryFolder folder;
    const auto path = folder.Path("zeb.db");
    ExpectError([&] { Store store(path); }, ENOENT, "zebd",
                "The file " + path + " cannot be opened: No such file or directory");
}

TEST(StoreFile, CarriesTheVersionOfItsSchema) {
    Store store(":memory:");
    EXPECT_EQ(store.SchemaVersion(), Store::kSchemaVersion);
}

TEST(StoreFile, KeepsItsContent) {
    const TemporaryFolder folder;
    Store::Create(folder.Path("zeb.db"));
    {
        Store store(folder.Path("zeb.db"));
        Account account;
        account.login = "ana";
        Accounts(store).Add(account);
    }
    Store store(folder.Path("zeb.db"));
    EXPECT_TRUE(Accounts(store).Find("ana"));
}

// A file that zebd must not take for its database, and what is in the folder before and after.
class RefusedStoreFile : public testing::Test {
 protected:
    void ExpectRefused(int code, const std::string& why) {
        const auto before = Contents();
        ExpectError([this] { Store store(path); }, code, std::string(kStoreSource), path + " " + why);
        EXPECT_EQ(Contents(), before);
    }
    std::map<std::string, std::string> Contents() const {
        std::map<std::string, std::string> contents;
        for (const auto& file : std::filesystem::directory_iterator(folder.Path(""))) {
            std::ifstream in(file.path(), std::ios::binary);
            contents[file.path().filename()] = {std::istreambuf_iterator<char>(in), {}};
        }
        return contents;
    }
    void Write(const std::string& bytes) {
        CreatePrivateFile(path);
        std::ofstream(path) << bytes;
    }

    const TemporaryFolder folder;
    const std::string path = folder.Path("zeb.db");
};

TEST_F(RefusedStoreFile, OfANewerVersion) {
    Store::Create(path);
    RunSql(path, "PRAGMA user_version = 1000");
    ExpectRefused(SQLITE_SCHEMA, "was written by a newer version of this login server");
}

TEST_F(RefusedStoreFile, OfAnotherProgram) {
    CreatePrivateFile(path);
    RunSql(path, "CREATE TABLE theirs (x); PRAGMA application_id = 17; PRAGMA user_version = 1");
    ExpectRefused(SQLITE_NOTADB, "is not a database of this login server");
}

TEST_F(RefusedStoreFile, WithoutContent) {
    Write("");
    ExpectRefused(SQLITE_NOTADB, "is empty; remove it and run 'zebctl init' again");
}

TEST_F(RefusedStoreFile, ThatIsShort) {
    Write("SQLite format 3");
    ExpectRefused(SQLITE_NOTADB, "is not a database of this login server");
}

TEST_F(RefusedStoreFile, ThatIsNoDatabase) {
    Write(std::string(68, 'x') + "ZEBD" + std::string(5000, 'x'));
    ExpectRefused(SQLITE_NOTADB, "is not a database of this login server");
}

TEST(StoreFile, SaysWhoseItIsFromItsFirstCommitOn) {
    const TemporaryFolder folder;
    const auto path = folder.Path("zeb.db");
    Store::Create(path);
    const Store open(path);  // with a write-ahead log that is not written back yet
    EXPECT_EQ(ReadPrivateFile(path, 72).substr(68), "ZEBD");
}

TEST(StoreFile, CanBeUsedByTwoProgramsAtOnce) {
    const TemporaryFolder folder;
    Store::Create(folder.Path("zeb.db"));
    Store daemon(folder.Path("zeb.db"));
    Store tool(folder.Path("zeb.db"));
    Account account;
    account.login = "ana";
    const auto before = daemon.OutsideChanges();
    Accounts(tool).Add(account);
    EXPECT_TRUE(Accounts(daemon).Find("ana"));
    EXPECT_NE(daemon.OutsideChanges(), before);
}

TEST(StoreTransaction, ThatIsNotCommittedChangesNothing) {
    Store store(":memory:");
    {
        Store::Transaction transaction(store);
        store.Use("INSERT INTO translations VALUES ('1033', 'a', 'b')").Run();
    }
    auto query = store.Use("SELECT count(*) FROM translations");
    ASSERT_TRUE(query.Next());
    EXPECT_EQ(query.Number(0), 0);
}

TEST(StoreTransaction, KeepsRowsTogetherThatBelongTogether) {
    Store store(":memory:");
    ExpectError([&] { store.Use("INSERT INTO profiles VALUES (17, 'Demo', '')").Run(); },
                SQLITE_CONSTRAINT_FOREIGNKEY, std::string(kStoreSource),
                "The database could not run a statement: FOREIGN KEY constraint failed");
}

TEST(AccountsStore, TakesEveryDetail) {
    Store store(":memory:");
    Account account;
    account.login = "ana";
    account.password_hash = "hash";
    account.first_name = "O'Hara; DROP TABLE users";
    account.privileges = "a|b";
    account.must_change = true;
    account.max_sessions = 3;
    const auto uid = Accounts(store).Add(account);
    const auto found = Accounts(store).Find("ana").value();
    EXPECT_EQ(found.uid, uid);
    EXPECT_EQ(found.first_name, account.first_name);
    EXPECT_EQ(found.privileges, "a|b");
    EXPECT_TRUE(found.must_change);
    EXPECT_EQ(found.max_sessions, 3);
}

void ExpectNotAdded(Store& store, const Account& account, const std::string& why) {
    const auto before = Accounts(store).All().size();
    ExpectError([&] { Accounts(store).Add(account); }, NumberOf(RuntimeError::InvalidProcedureCall),
                std::string(kStoreSource), why);
    EXPECT_EQ(Accounts(store).All().size(), before);
}

TEST(AccountsStore, TakesALoginIdOnce) {
    Store store(":memory:");
    Account account;
    account.login = "ana";
    Accounts(store).Add(account);
    ExpectNotAdded(store, account, "There is already a user \"ana\"");
}

TEST(AccountsStore, RefusesWhatIsNoLoginIdAndSaysWhy) {
    const std::pair<std::string, std::string> refused[] = {
        {"", "A login id cannot be empty"},
        {" ana", "A login id cannot begin or end with a space"},
        {"ana ", "A login id cannot begin or end with a space"},
        {"a\nb", "A login id cannot contain control characters"},
        {{"a\0b", 3}, "A login id cannot contain control characters"},
        {"a\xff", "A login id must be UTF-8 text"},
        {std::string(65, 'x'), "A login id may have at most 64 characters"}};
    Store store(":memory:");
    for (const auto& [login, why] : refused) {
        Account account;
        account.login = login;
        ExpectNotAdded(store, account, why);
    }
}

TEST(AccountsStore, TakesALoginIdOfSixtyFourCharactersAndOneWithSpacesInside) {
    Store store(":memory:");
    for (const std::string& login : {std::string(64, 'x'), std::string("ana maria")}) {
        Account account;
        account.login = login;
        Accounts(store).Add(account);
        EXPECT_TRUE(Accounts(store).Find(login)) << login;
    }
}

TEST(AccountsStore, RefusesDetailsThatNoMessageCanCarry) {
    Store store(":memory:");
    for (auto text :
         {&Account::first_name, &Account::last_name, &Account::enterprise_id, &Account::language,
          &Account::tz, &Account::dst, &Account::buid, &Account::buid_union, &Account::privileges}) {
        Account account;
        account.login = "ana";
        for (const char* wrong : {"bell\x07", "\xff"}) {
            account.*text = wrong;
            ExpectNotAdded(store, account,
                           "The details of a user must be UTF-8 text without control characters");
        }
    }
    Account account;
    account.login = "ana";
    account.last_name = "\xef\xbf\xbf";
    EXPECT_THROW(Accounts(store).Add(account), Error) << "XML's own sentence";
}

TEST(AccountsStore, RefusesANegativeNumberOfSessions) {
    Store store(":memory:");
    Account account;
    account.login = "ana";
    account.max_sessions = -1;
    ExpectNotAdded(store, account, "The number of sessions cannot be negative");
}

TEST(TranslationTables, AreThoseThatAnotherProgramHasChanged) {
    const TemporaryFolder folder;
    Store::Create(folder.Path("zeb.db"));
    Store daemon(folder.Path("zeb.db"));
    Store tool(folder.Path("zeb.db"));
    UserData user_data(daemon);
    const auto before = user_data.TranslationTable("1033");
    tool.Use("INSERT INTO translations VALUES ('1033', 'open', 'Open'), ('1031', 'open', 'Öffnen')").Run();
    const auto after = user_data.TranslationTable("1033");
    EXPECT_EQ(before.find("Open"), std::string::npos);
    EXPECT_NE(after.find("Open"), std::string::npos);
    EXPECT_EQ(after.find("Öffnen"), std::string::npos);
}

TEST(PasswordAtRest, IsNotInTheDatabaseFile) {
    const std::string marked = "MarkedPassword17";
    const TemporaryFolder folder;
    Store::Create(folder.Path("zeb.db"));
    Store store(folder.Path("zeb.db"));
    Account account;
    account.login = "ana";
    account.password_hash = Argon2Hasher({.passes = 1, .memory = 8192}).Hash(Secret(marked));
    Accounts(store).Add(account);
    for (const auto& file : std::filesystem::directory_iterator(folder.Path(""))) {
        std::ifstream in(file.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        EXPECT_EQ(bytes.find(marked), std::string::npos) << file.path();
    }
}

}  // namespace
}  // namespace kq::zeb
