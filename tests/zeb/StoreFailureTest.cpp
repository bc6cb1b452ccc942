// What users see when the store fails, and that nothing is half done then.
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class StoreFailure : public ZebTest {
 protected:
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
    EXPECT_EQ(Login("ana").ErrorNumber, "0");
}

TEST_F(StoreFailure, ALoginWhoseRecordNoMessageCanCarryKeepsTheOldPasswordAndLeavesNoSession) {
    Run("UPDATE users SET last_name = char(1)");
    ExpectRefused(Login("ana", kPassword, "battery staple"), Refusal::Failed);
    EXPECT_EQ(SessionsInStore(), 0);
    Run("UPDATE users SET last_name = ''");
    EXPECT_EQ(Login("ana").ErrorNumber, "0");
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

}  // namespace
}  // namespace kq::zeb
