// The file that the setting "TraceFile" names, and what no trace may hold.
#include <fstream>

#include "client/InteractiveFixture.h"
#include "client/TracedLogin.h"

namespace kq {
namespace {

constexpr const char* kFile = "/var/log/login trace.txt";

class TraceFileTest : public LoginFixture {
 protected:
    void WantsTrace(const std::string& file = kFile) { Settings().SetSetting("TraceFile", file); }
    std::string Written(const std::string& file = kFile) { return machine.folders->appended[file]; }
};

TEST_F(TraceFileTest, HasALineForEachStepWithItsTime) {
    WantsTrace();
    zeb.RefusesLogin("7721");
    SystemLoginError();
    EXPECT_EQ(Written(),
              "2024-03-01T12:00:00.000Z SystemLogin lsGetLoginInfo 0 lsAttemptConnectZEB\n"
              "2024-03-01T12:00:00.000Z SystemLogin lsAttemptConnectZEB 0 lsValidateClient\n"
              "2024-03-01T12:00:00.250Z SystemLogin lsValidateClient 250 lsCheckValidZEBInterface\n"
              "2024-03-01T12:00:00.250Z SystemLogin lsCheckValidZEBInterface 0 lsCheckValidInterface\n"
              "2024-03-01T12:00:00.250Z SystemLogin lsCheckValidInterface 0 lsAttemptLogin\n"
              "2024-03-01T12:00:00.500Z SystemLogin lsAttemptLogin 250 0x80040A0D\n"
              "2024-03-01T12:00:00.500Z SystemLogin lsFailed 0 ended\n");
}

TEST_F(TraceFileTest, GrowsWithEachProcedure) {
    WantsTrace();
    ASSERT_TRUE(SystemLogin());
    const std::string first = Written();
    ASSERT_TRUE(ServerLogin());
    EXPECT_THAT(Written(), testing::StartsWith(first));
    EXPECT_THAT(Written(), testing::EndsWith("Z ServerLogin lsFinish 0 ended\n"));
}

TEST_F(TraceFileTest, IsNotWrittenWithoutTheSettingOrWithAnEmptyOne) {
    LogInWhole();
    WantsTrace("");
    LogInWhole();
    EXPECT_THAT(machine.folders->appended, IsEmpty());
}

TEST_F(TraceFileTest, IsThatOfTheApplicationThatLogsIn) {
    Settings("Other").SetSetting("TraceFile", kFile);
    SystemLogin();
    EXPECT_EQ(Written(), "");
    login.AppID = "Other";
    SystemLogin();
    EXPECT_NE(Written(), "");
}

TEST_F(TraceFileTest, CostsALoginNothingWhenItCannotBeWritten) {
    WantsTrace();
    machine.folders->read_only = true;
    TracedLogin trace(*client);
    LogInWhole();
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
    EXPECT_EQ(trace.Lines().size(), 13U);
}

TEST_F(TraceFileTest, IsKeptByALoginThatStoresItsSettings) {
    WantsTrace();
    SystemLogin();
    client->SetSystemConnectState(FakeZeb::kAddress, FakeZeb::kPort, 10'000);
    EXPECT_EQ(Settings().Setting("TraceFile", ""), kFile);
}

// --- what no trace holds

class DiscreetTraceTest : public InteractiveFixture {
 protected:
    DiscreetTraceTest() { Settings().SetSetting("TraceFile", kFile); }
    // Logs in with marked texts and a marked new password.
    void LogsInMarked() {
        user.Expect("frmLogin", [](FakeUser& at) {
            at.Types("txtLoginID", "MARKED-login");
            at.Types("txtPassword", "MARKED-password");
            at.Clicks("cmdShowHide");
            at.Types("txtNewPassword", "MARKED-new");
            at.Clicks("cmdOK");
        });
    }
    void ExpectDiscreet() {
        std::string all = machine.folders->appended[kFile];
        for (const LoginStep& step : trace.Steps())
            all += LineOf(step) + std::string(step.Role);
        EXPECT_NE(all, "");
        EXPECT_THAT(all, testing::Not(testing::HasSubstr("MARKED")));
        EXPECT_THAT(all, testing::Not(testing::HasSubstr(FakeZeb::kAddress)));
    }

    TracedLogin trace{*client};
};

TEST_F(DiscreetTraceTest, HoldsNothingThatAUserHasTyped) {
    LogsInMarked();
    ASSERT_TRUE(client->Login("Demo", "1.0", nullptr));
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("Password"), "MARKED-password");
    ExpectDiscreet();
}

TEST_F(DiscreetTraceTest, HoldsNothingThatAServerHasSent) {
    zeb.RefusesLogin("1", "MARKED-desc", "MARKED-param");
    LogsInMarked();
    user.Answer(BoxButton::No);
    EXPECT_FALSE(Login());
    ExpectDiscreet();
}

}  // namespace
}  // namespace kq
