// A user who closes the window that shows what a procedure waits for: the procedure ends without a question.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class GivingUpTest : public InteractiveFixture {
 protected:
    // What a server does at a request: nothing, while the user closes the window.
    ScriptedPeer::Reaction UserClosesTheWindow() {
        return [this](ScriptedPeer::Link&, const XMLMessage&) { user.Window("frmWait").Closes(); };
    }
    void UserPressesEscapeAfter(Milliseconds span) {
        machine.loop->StartTimer(span, [this] { user.Window("frmWait").Presses(Key::Escape); });
    }
    void ExpectNothingLeft() {
        EXPECT_TRUE(user.Boxes().empty());
        EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
        EXPECT_EQ(client->TranslationTable(), nullptr);
        EXPECT_EQ(client->Profiles(), nullptr);
        machine.loop->ProcessPending();
        EXPECT_EQ(zeb.Open(), 0);
    }
    static constexpr Milliseconds kALittle{100};
};

TEST_F(GivingUpTest, EndsALoginWithoutAQuestionAndReleasesItsConnection) {
    for (const auto* const request : {FakeZeb::kValidate, FakeZeb::kLogin}) {
        zeb.Once(request, UserClosesTheWindow());
        LogsIn();
        EXPECT_FALSE(Login());
        ExpectNothingLeft();
    }
}

TEST_F(GivingUpTest, EndsTheWaitForAReplyImmediately) {
    zeb.Once(FakeZeb::kValidate, zeb.Silence());
    LogsIn();
    UserPressesEscapeAfter(Milliseconds(5000));
    EXPECT_LT(TimeOf([this] { EXPECT_FALSE(Login()); }), Milliseconds(5000) + kALittle);
    ExpectNothingLeft();
}

TEST_F(GivingUpTest, EndsAnAttemptToConnectImmediately) {
    machine.network->BlackHole(FakeZeb::kAddress, FakeZeb::kPort);
    LogsIn();
    UserPressesEscapeAfter(Milliseconds(5000));
    EXPECT_LT(TimeOf([this] { EXPECT_FALSE(Login()); }), Milliseconds(5000) + kALittle);
    ExpectNothingLeft();
}

TEST_F(GivingUpTest, EndsThePauseAfterARequestImmediately) {
    zeb.Once(FakeZeb::kLogin, zeb.Silence());
    LogsIn();
    UserPressesEscapeAfter(Milliseconds(300));
    EXPECT_LT(TimeOf([this] { EXPECT_FALSE(Login()); }), Milliseconds(300) + kALittle);
}

TEST_F(GivingUpTest, LeavesTheNextLoginAlone) {
    zeb.Once(FakeZeb::kLogin, UserClosesTheWindow());
    LogsIn();
    EXPECT_FALSE(Login());
    LogsIn();
    EXPECT_TRUE(Login());
}

TEST_F(GivingUpTest, EndsAServerLoginAndKeepsTheSystemLogin) {
    LogsIn();
    ASSERT_TRUE(Login());
    app.Once(FakeAppServer::kRegister, UserClosesTheWindow());
    EXPECT_FALSE(client->ServerLogin(true));
    EXPECT_TRUE(user.Boxes().empty());
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(client->SessionClient(), nullptr);
    machine.loop->ProcessPending();
    EXPECT_EQ(app.Open(), 0);
    EXPECT_EQ(zeb.Open(), 1);
}

TEST_F(GivingUpTest, EndsBothLoginsAtTheSecond) {
    app.Once(FakeAppServer::kRegister, UserClosesTheWindow());
    LogsIn();
    EXPECT_FALSE(client->Login("Demo", "1.0", nullptr));
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(GivingUpTest, EndsAnUploadOfTheProfiles) {
    LogsIn();
    ASSERT_TRUE(Login());
    zeb.Once(FakeZeb::kUpload, UserClosesTheWindow());
    std::string address = FakeZeb::kAddress;
    std::int32_t port = FakeZeb::kPort;
    std::int32_t time_out = 1000;
    EXPECT_FALSE(client->UpdateProfilesEx(true, address, port, time_out));
    EXPECT_TRUE(user.Boxes().empty());
    machine.loop->ProcessPending();
    EXPECT_EQ(zeb.Open(), 0);
}

TEST_F(GivingUpTest, EndsALoginThatUploadsItsProfiles) {
    zeb.Once(FakeZeb::kUpload, UserClosesTheWindow());
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithProfiles(Profiles())));
    client->SetUseProfiles(false);  // makes the profile "Default"
    LogsIn();
    EXPECT_FALSE(Login());
    ExpectNothingLeft();
}

}  // namespace
}  // namespace kq
