// The end of the program's event loop inside a procedure, in each of its steps, and before it.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

constexpr auto kInterrupted = static_cast<std::int32_t>(NetError::Interrupted);

// The end comes while the message of this type is answered.
class QuitTest : public LoginFixture, public testing::WithParamInterface<const char*> {
 protected:
    QuitTest() {
        Profiles one;
        one.Add(std::make_shared<Profile>("A"));  // is not the last used, so the login uploads it
        zeb.On(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithProfiles(one)));
        zeb.Once(GetParam(), Quits());
        app.Once(GetParam(), Quits());
    }
    ScriptedPeer::Reaction Quits() {
        return [this](ScriptedPeer::Link&, const XMLMessage&) { machine.loop->Quit(); };
    }
};

TEST_P(QuitTest, EndsTheProcedureAsTerminateClientDoes) {
    const auto whole = [this] {
        SystemLogin();
        ServerLogin();
    };
    const auto time =
        TimeOf([&] { ExpectError(ErrorOf(whole), kInterrupted, "The program's event loop was ended"); });
    EXPECT_LT(time, Milliseconds(1500));
    const bool registering = std::string(GetParam()) == FakeAppServer::kRegister;
    EXPECT_EQ(client->LoginState(), registering ? kqaslsSystemLogin : kqaslsNotLoggedIn);
}

INSTANTIATE_TEST_SUITE_P(Step, QuitTest,
                         testing::Values(FakeZeb::kValidate, FakeZeb::kLogin, FakeZeb::kUpload,
                                         FakeAppServer::kRegister));

class QuitLoginTest : public LoginFixture {};

TEST_F(QuitLoginTest, EndsAConnectOfEitherLogin) {
    ASSERT_TRUE(SystemLogin());
    machine.network->BlackHole("192.0.2.99", 7000);
    client->SetAppServerAddress("192.0.2.99");
    machine.loop->StartTimer(Milliseconds(100), [this] { machine.loop->Quit(); });
    EXPECT_EQ(TimeOf([this] { EXPECT_EQ(ServerLoginError().Number(), kInterrupted); }), Milliseconds(100));
}

TEST_F(QuitLoginTest, EndsThePauseBeforeARegistration) {
    ASSERT_TRUE(SystemLogin());
    machine.loop->StartTimer(Milliseconds(100), [this] { machine.loop->Quit(); });
    EXPECT_EQ(TimeOf([this] { EXPECT_EQ(ServerLoginError().Number(), kInterrupted); }), Milliseconds(100));
}

TEST_F(QuitLoginTest, EndsAnUpload) {
    ASSERT_TRUE(SystemLogin());
    zeb.Once(FakeZeb::kUpload, [this](ScriptedPeer::Link&, const XMLMessage&) { machine.loop->Quit(); });
    EXPECT_EQ(ErrorOf([this] {
                  client->UpdateProfilesEx(false, login.Address, login.Port, login.TimeOut);
              }).Number(),
              kInterrupted);
}

TEST_F(QuitLoginTest, KeepsAProcedureFromStartingAndWhatAnEarlierOneLeft) {
    ASSERT_TRUE(SystemLogin());
    machine.loop->Quit();
    EXPECT_EQ(SystemLoginError().Number(), kInterrupted);
    EXPECT_EQ(ServerLoginError().Number(), kInterrupted);
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_TRUE(client->SessionInfo()->IsInitialized());
    EXPECT_EQ(zeb.Accepted(), 1);
}

using QuitDialogTest = InteractiveFixture;

TEST_F(QuitDialogTest, EndsALoginAtItsDialog) {
    user.Expect("frmLogin", [this](FakeUser&) { machine.loop->Quit(); });
    EXPECT_EQ(ErrorOf([this] { Login(); }).Number(), kInterrupted);
}

TEST_F(QuitDialogTest, AsksNobodyWhatToDoNext) {
    LogsIn();
    zeb.Once(FakeZeb::kLogin, [this](ScriptedPeer::Link&, const XMLMessage&) { machine.loop->Quit(); });
    EXPECT_EQ(ErrorOf([this] { Login(); }).Number(), kInterrupted);
    EXPECT_THAT(user.Boxes(), IsEmpty());
}

TEST_F(QuitDialogTest, EndsAChangeOfTheConfiguration) {
    LogsIn();
    ASSERT_TRUE(Login());
    user.Expect("frmServer", [this](FakeUser&) { machine.loop->Quit(); });
    EXPECT_EQ(ErrorOf([this] { client->ChangeConfiguration(); }).Number(), kInterrupted);
}

}  // namespace
}  // namespace kq
