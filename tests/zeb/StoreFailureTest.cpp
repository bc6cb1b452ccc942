// What users see when the store fails, and that nothing is half done then.
#include <gmock/gmock.h>

#include "zeb/TemporaryFolder.h"
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class StoreFailure : public ZebTest {
 protected:
    using ZebTest::ZebTest;
    void SetUp() override {
        StartZeb();
        uid = AddUser("ana");
        server = RunningServer();
    }
    void Run(const std::string& sql) { store.Use(sql).Run(); }
    // From now on this change of a table fails, in the middle of whatever else a request changes.
    void Fail(const std::string& change) {
        Run("CREATE TRIGGER broken BEFORE " + change +
            " BEGIN SELECT RAISE(FAIL, 'the disk is broken'); END");
    }
    void Mend() { Run("DROP TRIGGER broken"); }
    std::int64_t SessionsInStore() {
        auto query = store.Use("SELECT count(*) FROM sessions");
        return query.Next() ? query.Number(0) : -1;
    }
    ASPasswordChangeResponse Change(const std::string& session, const std::string& new_password) {
        ASPasswordChangeRequest request;
        request.AppID = kApp;
        request.LoginID = "ana";
        request.SessionID = session;
        request.OldPassword = Secret(kPassword);
        request.NewPassword = Secret(new_password);
        return ASPasswordChangeResponse::Read(Ask(request.Build()));
    }

    std::int32_t uid = 0;
    std::unique_ptr<TestAppServer> server;
};

TEST_F(StoreFailure, ALoginWhoseSessionCannotBeStoredKeepsTheOldPassword) {
    Fail("INSERT ON sessions");
    ExpectRefused(Login("ana", kPassword, "battery staple"), Refusal::Failed);
    Mend();
    ExpectRefused(Login("ana", "battery staple"), Refusal::UnknownUser);
    ExpectGranted(Login("ana"));
}

TEST_F(StoreFailure, ALoginWhoseRecordNoMessageCanCarryKeepsTheOldPasswordAndLeavesNoSession) {
    Run("UPDATE users SET last_name = char(1)");
    ExpectRefused(Login("ana", kPassword, "battery staple"), Refusal::Failed);
    EXPECT_EQ(SessionsInStore(), 0);
    Run("UPDATE users SET last_name = ''");
    ExpectGranted(Login("ana"));
}

TEST_F(StoreFailure, ALoginWhosePasswordCannotBeStoredLeavesNoSession) {
    Fail("UPDATE ON users");
    ExpectRefused(Login("ana", kPassword, "battery staple"), Refusal::Failed);
    EXPECT_EQ(SessionsInStore(), 0);
}

TEST_F(StoreFailure, ALoginThatFailsForgetsNoFailedAttempts) {
    for (int i = 0; i < 4; ++i)
        ExpectRefused(Login("ana", "a guess"), Refusal::UnknownUser);
    Fail("INSERT ON sessions");
    ExpectRefused(Login("ana"), Refusal::Failed);
    Mend();
    ExpectRefused(Login("ana", "a guess"), Refusal::UnknownUser);
    ExpectRefused(Login("ana"), Refusal::TooManyAttempts);
}

TEST_F(StoreFailure, ALoginWhoseUserCannotBeReadIsNoAttempt) {
    for (int i = 0; i < 5; ++i)
        ExpectRefused(Login("ana", "a guess"), Refusal::UnknownUser);
    Pass(std::chrono::seconds(1));  // the next attempt may be made, one at a time
    Run("ALTER TABLE users RENAME TO lost");
    ExpectRefused(Login("ana"), Refusal::Failed);
    Run("ALTER TABLE lost RENAME TO users");
    ExpectGranted(Login("ana"));
}

TEST_F(StoreFailure, AChangeThatCannotBeStoredKeepsTheOldPasswordAndForgetsNoFailedAttempts) {
    const auto session = Login("ana").SessionID;
    for (int i = 0; i < 4; ++i)
        ExpectRefused(Login("ana", "a guess"), Refusal::UnknownUser);
    Fail("UPDATE ON users");
    ExpectRefused(Change(session, "battery staple"), Refusal::Failed);
    Mend();
    ExpectRefused(Login("ana", "battery staple"), Refusal::UnknownUser);
    ExpectRefused(Login("ana"), Refusal::TooManyAttempts);
}

TEST_F(StoreFailure, ALoginWhoseDataCannotBeReadLeavesNoSession) {
    Run("ALTER TABLE profiles RENAME TO lost");
    ExpectRefused(Login("ana"), Refusal::Failed);
    EXPECT_EQ(SessionsInStore(), 0);
}

TEST_F(StoreFailure, AnUploadThatDoesNotFitOnTheDiskKeepsTheEarlierProfiles) {
    ASProfilesUpdate request;
    request.AppID = kApp;
    request.LoginID = "ana";
    request.UserUID = std::to_string(uid);
    request.SessionID = Login("ana").SessionID;
    request.Profiles = "<Profiles lastUsed='small'/>";
    ExpectGranted(Ask(request.Build()));
    const auto before = UserData(store).Profiles(uid, kApp);
    Run("PRAGMA max_page_count = 1");  // no page more than there are
    request.Profiles = "<Profiles lastUsed='" + std::string(100'000, 'x') + "'/>";
    ExpectRefused(ASProfilesUpdateResponse::Read(Ask(request.Build())), Refusal::Failed);
    EXPECT_EQ(UserData(store).Profiles(uid, kApp), before);
}

struct DatabaseFile {
    DatabaseFile() { Store::Create(path); }
    const TemporaryFolder folder;
    const std::string path = folder.Path("zeb.db");
};

class LockedStore : private DatabaseFile, public StoreFailure {
 protected:
    LockedStore() : StoreFailure(path) {
        Run("PRAGMA busy_timeout = 0");  // no waiting in a test
    }
    // Another program changes the database from now until the result is destroyed.
    std::unique_ptr<Store::Transaction> Lock() { return std::make_unique<Store::Transaction>(other); }

    Store other{path};
};

TEST_F(LockedStore, RefusesALoginThatChangesThePasswordAndKeepsTheOldOne) {
    auto lock = Lock();
    ExpectRefused(Login("ana", kPassword, "battery staple"), Refusal::Failed);
    EXPECT_THAT(Log(), testing::HasSubstr("database is locked"));
    lock.reset();
    EXPECT_EQ(SessionsInStore(), 0);
    ExpectGranted(Login("ana"));
}

TEST_F(LockedStore, RefusesAPasswordChangeAndKeepsTheOldOne) {
    const auto session = Login("ana").SessionID;
    auto lock = Lock();
    ExpectRefused(Change(session, "battery staple"), Refusal::Failed);
    lock.reset();
    ExpectGranted(Login("ana"));
}

}  // namespace
}  // namespace kq::zeb
