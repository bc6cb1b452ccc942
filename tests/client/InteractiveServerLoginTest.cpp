// The server login with a user at the dialogs.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class InteractiveServerLoginTest : public InteractiveFixture {
 protected:
    void SetUp() override {
        LogsIn();
        ASSERT_TRUE(Login());
    }
    bool Register() { return client->ServerLogin(true); }
    static constexpr const char* kNoConnect =
        "Could not connect to the application server.  Click Yes to try again, No to perform another login, "
        "or Cancel "
        "to quit.";
    static constexpr const char* kNoReply =
        "Could not register with the application server.  Click Yes to try again, No to perform another "
        "login, or "
        "Cancel to quit.";
};

TEST_F(InteractiveServerLoginTest, ShowsTheWaitWindowWhileItRegisters) {
    std::string caption;
    app.Once(FakeAppServer::kRegister, [&](ScriptedPeer::Link& link, const XMLMessage&) {
        caption = user.Window("frmWait").SeesCaption();
        link.Send(FakeAppServer::Registration());
    });
    EXPECT_TRUE(Register());
    EXPECT_EQ(caption, "Registering...");
}

TEST_F(InteractiveServerLoginTest, NoAtAnUnreachableServerWantsANewLogin) {
    app.StopListening();
    IsAsked(kNoConnect, BoxButton::No);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    EXPECT_FALSE(client->SessionInfo()->IsInitialized());
    EXPECT_EQ(client->Profiles(), nullptr);
}

TEST_F(InteractiveServerLoginTest, CancelAtAnUnreachableServerKeepsTheSystemLogin) {
    app.StopListening();
    IsAsked(kNoConnect, BoxButton::Yes);
    IsAsked(kNoConnect, BoxButton::Cancel);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(InteractiveServerLoginTest, YesAfterASilenceRegistersAgainOnTheSameConnection) {
    app.Once(FakeAppServer::kRegister, app.Silence());
    IsAsked(kNoReply, BoxButton::Yes);
    EXPECT_TRUE(Register());
    EXPECT_EQ(app.Accepted(), 1);
}

TEST_F(InteractiveServerLoginTest, YesAfterALostConnectionWantsANewLogin) {
    app.Once(FakeAppServer::kRegister, app.Drop());
    IsAsked(kNoReply, BoxButton::Yes);
    EXPECT_FALSE(Register());
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(InteractiveServerLoginTest, NoAtARefusalKeepsTheSystemLogin) {
    app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration("7", "Not here")));
    IsAsked("Registration failed:  Not here.  Would you like to login again?", BoxButton::No);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

}  // namespace
}  // namespace kq
