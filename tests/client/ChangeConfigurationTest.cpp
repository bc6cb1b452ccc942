// The server dialog that a client opens after its login.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

using ChangeConfigurationTest = InteractiveFixture;

TEST_F(ChangeConfigurationTest, NeedsASession) {
    EXPECT_EQ(ErrorOf([this] { client->ChangeConfiguration(); }).Number(), kqaserrLoginSessionRequired);
}

TEST_F(ChangeConfigurationTest, ShowsAndKeepsTheSettings) {
    LogsIn();
    Login();
    user.Expect("frmServer", [](FakeUser& at) {
        EXPECT_EQ(at.Sees("txtTimeOut"), "10");
        EXPECT_TRUE(at.SeesTicked("chkUseASServerforLogin"));
        at.Unticks("chkUseASServerforLogin");
        at.Clicks("cmdOK");
    });
    EXPECT_TRUE(client->ChangeConfiguration());
    EXPECT_EQ(Settings().Setting("UseASServerForLogin", ""), "0");
}

TEST_F(ChangeConfigurationTest, WritesNothingWhenItIsCancelled) {
    LogsIn();
    Login();
    const int writes = machine.profile_file->write_count;
    Cancels("frmServer");
    EXPECT_FALSE(client->ChangeConfiguration());
    EXPECT_EQ(machine.profile_file->write_count, writes);
}

TEST_F(ChangeConfigurationTest, RaisesTheErrorOfAMalformedStoredFlag) {
    LogsIn();
    Login();
    Settings().SetSetting("UseASServerForLogin", "yes");
    EXPECT_EQ(ErrorOf([this] { client->ChangeConfiguration(); }).Number(),
              NumberOf(RuntimeError::TypeMismatch));
}

}  // namespace
}  // namespace kq
