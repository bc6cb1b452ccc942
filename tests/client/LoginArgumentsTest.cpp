// Which of the arguments, settings and answers a login goes by.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class LoginArgumentsTest : public LoginFixture {};

TEST_F(LoginArgumentsTest, ABadAddressIsRaisedBeforeMissingCredentials) {
    login.Address = "";
    login.LoginID = "";
    login.Password = Secret();
    ExpectFailedLogin(kqaserrLoginBadAddr,
                      "Invalid address (), port (0), or timeout value (10000) was specified.");
}

TEST_F(LoginArgumentsTest, TheApplicationServersTimeOutIsTheArgumentThoughTheSettingIsUsed) {
    login.Address = "";
    login.TimeOut = 7000;
    Settings().SetSetting("Address", FakeZeb::kAddress);
    Settings().SetSetting("Port", "7710");
    Settings().SetSetting("TimeOut", "4000");
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(client->AppServerTimeOut(), 7000);
}

class InteractiveArgumentsTest : public InteractiveFixture {
 protected:
    bool Login2() { return client->SystemLogin2(true, login); }
    bool IsRestricted(const char* request) { return zeb.Latest(request).HasField("RestrictIP"); }
};

TEST_F(InteractiveArgumentsTest, TheServerAndTheCredentialsAreNotUsed) {
    login.Address = "192.0.2.99";
    login.Port = 1;
    login.LoginID = "bob";
    login.Password = Secret("other word");
    LogsIn();
    EXPECT_TRUE(Login());
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("LoginID"), "ann");
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("Password"), "secret word");
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("RestrictPort"), "7710");
    EXPECT_EQ(client->AppServerAddress(), FakeZeb::kAddress);
}

TEST_F(InteractiveArgumentsTest, TheTimeOutIsNotUsedButRecordedForTheApplicationServer) {
    login.TimeOut = 1000;
    Settings().SetSetting("TimeOut", "3000");
    zeb.Once(FakeZeb::kValidate, zeb.Silence());
    LogsIn();
    IsAsked("Did not receive a validation reply from the login server.  Would you like to try again?",
            BoxButton::Yes);
    LogsIn();
    EXPECT_EQ(TimeOf([this] { EXPECT_TRUE(Login()); }), Milliseconds(250 + 3000 + 250 + 250));
    EXPECT_EQ(client->AppServerTimeOut(), 1000);
}

TEST_F(InteractiveArgumentsTest, TheFlagOfSystemLogin2ReplacesTheStoredOne) {
    login.UseASServerForLogin = false;
    LogsIn();
    EXPECT_TRUE(Login2());
    EXPECT_FALSE(IsRestricted(FakeZeb::kValidate) || IsRestricted(FakeZeb::kLogin));
    EXPECT_FALSE(client->UseASServerForLogin());
    Settings().SetSetting("UseASServerForLogin", "0");
    login.UseASServerForLogin = true;
    LogsIn();
    EXPECT_TRUE(Login2());
    EXPECT_TRUE(IsRestricted(FakeZeb::kValidate) && IsRestricted(FakeZeb::kLogin));
    EXPECT_TRUE(client->UseASServerForLogin());
}

TEST_F(InteractiveArgumentsTest, TheStoredFlagCountsWhenNoneIsGiven) {
    Settings().SetSetting("UseASServerForLogin", "0");
    LogsIn();
    EXPECT_TRUE(Login2());
    EXPECT_FALSE(IsRestricted(FakeZeb::kLogin));
}

}  // namespace
}  // namespace kq
