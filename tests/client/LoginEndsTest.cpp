// What the logins keep and release at their starts and ends.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class LoginEndsTest : public InteractiveFixture {
 protected:
    void SetUp() override {
        LogsIn();
        ASSERT_TRUE(Login());
    }
    void EndsTheServerLoginWith(BoxButton answer) {
        app.Once(FakeAppServer::kRegister, app.Silence());
        user.Answer(answer);
        EXPECT_FALSE(client->ServerLogin(true));
        machine.loop->Advance(Milliseconds(2000));
    }
};

TEST_F(LoginEndsTest, AnotherLoginStartsAsNotLoggedIn) {
    KQAppSessLoginState at_validation = kqaslsSystemLogin;
    zeb.Once(FakeZeb::kValidate, [&](ScriptedPeer::Link& link, const XMLMessage&) {
        at_validation = client->LoginState();
        link.Send(FakeZeb::Validation());
    });
    LogsIn();
    EXPECT_TRUE(Login());
    EXPECT_EQ(at_validation, kqaslsNotLoggedIn);
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(LoginEndsTest, AnotherLoginClosesTheConnectionOfTheFirstBeforeItAsksItsUser) {
    user.Expect("frmLogin", [this](FakeUser& at) {
        EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
        at.Waits(Milliseconds(2000));
        EXPECT_EQ(zeb.Open(), 0);
        at.Clicks("cmdCancel");
    });
    EXPECT_FALSE(Login());
}

TEST_F(LoginEndsTest, AFailedLoginReleasesAllThatAnEarlierOneBrought) {
    Cancels("frmLogin");
    EXPECT_FALSE(Login());
    EXPECT_EQ(client->TranslationTable(), nullptr);
    EXPECT_EQ(client->Profiles(), nullptr);
    EXPECT_EQ(client->CurrentProfile(), nullptr);
    EXPECT_FALSE(client->SessionInfo()->IsInitialized());
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Open(), 0);
}

TEST_F(LoginEndsTest, AServerLoginThatIsGivenUpForANewLoginKeepsOnlyTheTranslationTable) {
    EndsTheServerLoginWith(BoxButton::No);
    EXPECT_NE(client->TranslationTable(), nullptr);
    EXPECT_EQ(client->Profiles(), nullptr);
    EXPECT_EQ(client->CurrentProfile(), nullptr);
    EXPECT_EQ(client->SessionClient(), nullptr);
    EXPECT_FALSE(client->SessionInfo()->IsInitialized());
    EXPECT_EQ(zeb.Open(), 0);
    EXPECT_EQ(app.Open(), 0);
}

TEST_F(LoginEndsTest, AServerLoginThatIsCancelledReleasesOnlyItsConnection) {
    EndsTheServerLoginWith(BoxButton::Cancel);
    EXPECT_NE(client->TranslationTable(), nullptr);
    EXPECT_NE(client->Profiles(), nullptr);
    EXPECT_NE(client->CurrentProfile(), nullptr);
    EXPECT_EQ(client->SessionClient(), nullptr);
    EXPECT_TRUE(client->SessionInfo()->IsInitialized());
    EXPECT_EQ(zeb.Open(), 1);
    EXPECT_EQ(app.Open(), 0);
}

// --- the collection

class LoginCollectionTest : public LoginEndsTest {
 protected:
    std::ptrdiff_t Uploads() { return std::ranges::count(zeb.HeardTypes(), FakeZeb::kUpload); }
};

TEST_F(LoginCollectionTest, IsUploadedWhenTheProgramAddsOrRemovesAProfile) {
    client->SetSystemConnectState(FakeZeb::kAddress, FakeZeb::kPort, 4000);
    client->Profiles()->Add(std::make_shared<Profile>("Third"));
    EXPECT_EQ(Uploads(), 1);
    client->Profiles()->Remove("Third");
    EXPECT_EQ(Uploads(), 2);
}

TEST_F(LoginCollectionTest, IsNotUploadedOnceTheClientHasAnother) {
    client->SetSystemConnectState(FakeZeb::kAddress, FakeZeb::kPort, 4000);
    const auto old = client->Profiles();
    LogsIn();
    ASSERT_TRUE(Login());
    old->Add(std::make_shared<Profile>("Third"));
    EXPECT_EQ(Uploads(), 0);
}

// --- connections that end while they are made

class LostWhileConnectingTest : public LoginFixture {
 protected:
    // While the client waits for its connection the host runs the loop itself, as for a dialog of its own,
    // until the connection has come and gone.
    void HostWaitsUntilTheConnectionIsLost(ScriptedPeer& peer) {
        machine.loop->Post([this, &peer] {
            machine.loop->RunReady();
            EXPECT_EQ(peer.Open(), 1);
            peer.DropAll();
            machine.loop->RunReady();
        });
    }
};

TEST_F(LostWhileConnectingTest, IsNoConnectionToTheLoginServer) {
    HostWaitsUntilTheConnectionIsLost(zeb);
    ExpectFailedLogin(kqaserrLoginNoConnect,
                      "Could not connect to login server: The connection was closed by the other side.");
}

TEST_F(LostWhileConnectingTest, IsNoConnectionToTheApplicationServer) {
    ASSERT_TRUE(SystemLogin());
    HostWaitsUntilTheConnectionIsLost(app);
    ExpectError(ServerLoginError(), kqaserrLoginNoConnectAS, "Could not connect to the application server.");
    EXPECT_EQ(app.Accepted(), 1);
}

TEST_F(LostWhileConnectingTest, IsNoConnectionForAnUpload) {
    ASSERT_TRUE(SystemLogin());
    machine.loop->Advance(Milliseconds(2000));
    zeb.DropAll();
    HostWaitsUntilTheConnectionIsLost(zeb);
    std::string address = FakeZeb::kAddress;
    std::int32_t port = FakeZeb::kPort;
    std::int32_t time_out = 1000;
    EXPECT_EQ(ErrorOf([&] { client->UpdateProfilesEx(false, address, port, time_out); }).Number(),
              kqaserrLoginNoConnect);
}

}  // namespace
}  // namespace kq
