// The silent server login against an application server that refuses, stalls, drops, lies and registers.
#include "client/LoginFixture.h"

namespace kq {
namespace {

class ServerLoginTest : public LoginFixture {
 protected:
    void SetUp() override { ASSERT_TRUE(SystemLogin()); }

    // The error, and the state that a failed server login leaves.
    void ExpectFailedRegistration(std::int32_t code, const std::string& text) {
        ExpectError(ServerLoginError(), code, text);
        EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
        EXPECT_EQ(client->SessionClient(), nullptr);
        EXPECT_TRUE(client->SessionInfo()->IsInitialized());
    }
};

TEST_F(ServerLoginTest, RegistersTheSession) {
    EXPECT_TRUE(ServerLogin());
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
    EXPECT_EQ(client->SessionInfo()->Client(), client->SessionClient());
    EXPECT_TRUE(client->SessionClient()->Connected());
}

TEST_F(ServerLoginTest, AsksWithApplicationSessionAndLocale) {
    machine.locale->id = 1046;
    ServerLogin();
    EXPECT_EQ(
        app.Latest(FakeAppServer::kRegister).ToXML(),
        R"(<ASMessage type="ASRegisterRequest" version="1"><AppID>Demo</AppID><SessionID>S17</SessionID>)"
        R"(<LocaleID>1046</LocaleID></ASMessage>)");
}

TEST_F(ServerLoginTest, SendsTheEnglishLocaleAs1033) {
    ServerLogin();
    EXPECT_EQ(app.Latest(FakeAppServer::kRegister).Field("LocaleID"), "1033");
}

TEST_F(ServerLoginTest, TakesItsTwoPausesAndNothingMore) {
    const auto time = TimeOf([this] { ServerLogin(); });
    EXPECT_GE(time, Milliseconds(500));
    EXPECT_LE(time, Milliseconds(550));
}

TEST_F(ServerLoginTest, WorksByteByByte) {
    machine.network->Split(1);
    EXPECT_TRUE(ServerLogin());
}

TEST_F(ServerLoginTest, DeliversDataAsEventsAfterwards) {
    std::vector<std::string> received;
    Owner owner;
    app.Once(FakeAppServer::kRegister, [](ScriptedPeer::Link& link, const XMLMessage&) {
        link.Send(FakeAppServer::Registration());
        link.SendFrame(0, "early");
    });
    ServerLogin();
    client->SessionClient()->Receive.Connect(owner,
                                             [&](const Block& block) { received.push_back(block.data); });
    machine.loop->RunReady();
    EXPECT_THAT(received, ElementsAre("early"));
}

TEST_F(ServerLoginTest, OnAFreshClientRaisesNoSystem) {
    KQAppSessClient fresh(platform);
    ExpectError(
        ErrorOf([&] { fresh.ServerLogin(false); }), kqaserrLoginNoSystem,
        "A system login must be performed before a server login, or the proper state must first be set.");
}

TEST_F(ServerLoginTest, WhenRegisteredAlreadyDropsTheStateFirstAndRegistersAgain) {
    ServerLogin();
    KQAppSessLoginState meanwhile = kqaslsServerLogin;
    app.Once(FakeAppServer::kRegister, [&](ScriptedPeer::Link& link, const XMLMessage&) {
        meanwhile = client->LoginState();
        link.Send(FakeAppServer::Registration());
    });
    EXPECT_TRUE(ServerLogin());
    EXPECT_EQ(meanwhile, kqaslsSystemLogin);
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(app.Open(), 1);
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
}

TEST_F(ServerLoginTest, ReportsEveryChangeOfTheState) {
    std::vector<KQAppSessLoginState> states;
    Owner owner;
    client->LoginStateChanged.Connect(owner, [&](KQAppSessLoginState state) {
        EXPECT_EQ(client->LoginState(), state);
        states.push_back(state);
    });
    ServerLogin();
    ServerLogin();
    app.DropAll();
    machine.loop->RunReady();
    SystemLogin();
    EXPECT_THAT(states, ElementsAre(kqaslsServerLogin, kqaslsSystemLogin, kqaslsServerLogin,
                                    kqaslsSystemLogin, kqaslsNotLoggedIn, kqaslsSystemLogin));
}

TEST_F(ServerLoginTest, ReportsTheStateBeforeTheNewConnectionDeliversItsFirstBlock) {
    std::vector<std::string> received;
    std::shared_ptr<APClient> connection;
    Owner owner;
    client->LoginStateChanged.Connect(owner, [&](KQAppSessLoginState state) {
        if (state != kqaslsServerLogin) return;
        connection = client->SessionClient();
        connection->Receive.Connect(owner, [&](const Block& block) { received.push_back(block.data); });
    });
    app.On(FakeAppServer::kRegister, [](ScriptedPeer::Link& link, const XMLMessage&) {
        link.Send(FakeAppServer::Registration());
        link.SendFrame(0, "early");
    });
    ServerLogin();
    const auto first = connection;
    ServerLogin();
    machine.loop->RunReady();
    EXPECT_NE(connection, first);
    EXPECT_FALSE(first->Connected());
    EXPECT_THAT(received, testing::Contains("early"));
}

TEST_F(ServerLoginTest, MayBeDroppedByAHandlerOfItsState) {
    Owner owner;
    client->LoginStateChanged.Connect(owner, [this](KQAppSessLoginState) { client.reset(); });
    KQAppSessClient& dying = *client;
    EXPECT_TRUE(dying.ServerLogin(false));
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(app.Open(), 0);
}

TEST_F(ServerLoginTest, ARefusedConnectionRaisesNoConnectAS) {
    app.StopListening();
    ExpectFailedRegistration(kqaserrLoginNoConnectAS, "Could not connect to the application server.");
}

TEST_F(ServerLoginTest, AConnectionThatNeverStandsTakesTheTimeOutAndNoLonger) {
    client->SetAppServerAddress("192.0.2.99");
    machine.network->BlackHole("192.0.2.99", 7000);
    client->SetAppServerTimeOut(2000);
    EXPECT_EQ(TimeOf([this] {
                  ExpectFailedRegistration(kqaserrLoginNoConnectAS,
                                           "Could not connect to the application server.");
              }),
              Milliseconds(2000));
}

TEST_F(ServerLoginTest, ATimeOutOfZeroTakesTheDefault) {
    client->SetAppServerAddress("192.0.2.99");
    machine.network->BlackHole("192.0.2.99", 7000);
    client->SetAppServerTimeOut(0);
    EXPECT_EQ(TimeOf([this] { ServerLoginError(); }), Milliseconds(10'000));
}

TEST_F(ServerLoginTest, ASilentServerRaisesNoRegisterAfterTheTimeOut) {
    app.Once(FakeAppServer::kRegister, app.Silence());
    const auto time = TimeOf([this] {
        ExpectFailedRegistration(kqaserrLoginNoRegister, "Could not register with the application server.");
    });
    EXPECT_EQ(time, Milliseconds(10'500));
}

TEST_F(ServerLoginTest, ADroppedOrEmptyRegistrationRaisesNoRegisterAtOnce) {
    for (const auto& end : {ScriptedPeer::Drop(), ScriptedPeer::Reset(), ScriptedPeer::Text(""),
                            ScriptedPeer::HalfOf(FakeAppServer::Registration())}) {
        app.Once(FakeAppServer::kRegister, end);
        ExpectFailedRegistration(kqaserrLoginNoRegister, "Could not register with the application server.");
    }
}

// Drops each new connection during the pause before the request, `times` times.
class ADroppingServer {
 public:
    ADroppingServer(FakePlatform& machine, FakeAppServer& app, int times)
        : machine_(machine), app_(app), left_(times) {
        Watch();
    }

 private:
    void Watch() {
        machine_.loop->StartTimer(Milliseconds(1), owner_.Bind([this] {
            if (left_ > 0 && app_.Open() > 0) {
                app_.DropAll();
                --left_;
            }
            if (left_ > 0) Watch();
        }));
    }
    FakePlatform& machine_;
    FakeAppServer& app_;
    int left_;
    Owner owner_;
};

TEST_F(ServerLoginTest, ConnectsAgainUpToFiveTimesWhenTheConnectionIsLostBeforeSending) {
    ADroppingServer drops(machine, app, 5);
    EXPECT_TRUE(ServerLogin());
    EXPECT_EQ(app.Accepted(), 6);
}

TEST_F(ServerLoginTest, ASixthLossBeforeSendingRaisesNoRegister) {
    ADroppingServer drops(machine, app, 6);
    ExpectFailedRegistration(kqaserrLoginNoRegister, "Could not register with the application server.");
    EXPECT_EQ(app.Accepted(), 6);
}

TEST_F(ServerLoginTest, TellsTheCausesOfItsErrors) {
    app.Once(FakeAppServer::kRegister, app.Silence());
    EXPECT_EQ(ServerLoginError().Cause(), ErrorCause::NoReply);
    app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration("1", "No")));
    EXPECT_EQ(ServerLoginError().Cause(), ErrorCause::Registration);
    app.StopListening();
    EXPECT_EQ(ServerLoginError().Cause(), ErrorCause::NoConnection);
}

TEST_F(ServerLoginTest, ARefusalRaisesRegisterFailedWithItsText) {
    app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration("-2147218933", "Not here")));
    ExpectFailedRegistration(kqaserrLoginRegisterFailed, "Registration failed:  Not here.");
}

TEST_F(ServerLoginTest, AnotherTypeOrNoMessageRaisesRegisterFailedWithItsTextOrAGenericOne) {
    XMLMessage unknown("ASUnknownResponse", "1");
    unknown.SetField("ErrorDesc", "Register first");
    app.Once(FakeAppServer::kRegister, app.Answer(unknown));
    ExpectFailedRegistration(kqaserrLoginRegisterFailed, "Registration failed:  Register first.");
    app.Once(FakeAppServer::kRegister, app.Answer(FakeZeb::Validation()));
    ExpectFailedRegistration(kqaserrLoginRegisterFailed,
                             "Registration failed:  An improper response was received.");
    app.Once(FakeAppServer::kRegister, app.Text("hello"));
    ExpectFailedRegistration(kqaserrLoginRegisterFailed,
                             "Registration failed:  An unknown response was received.");
}

TEST_F(ServerLoginTest, AnErrorNumberThatReadsAsZeroIsSuccess) {
    for (const char* number : {"", "0.0", " 0", "none"}) {
        app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration(number)));
        EXPECT_TRUE(ServerLogin()) << number;
    }
}

TEST_F(ServerLoginTest, AnErrorNumberBeyondAllNumbersIsARefusal) {
    for (const char* number : {"99999999999", "1e999", "-1e999"}) {
        app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration(number, "Not here")));
        ExpectFailedRegistration(kqaserrLoginRegisterFailed, "Registration failed:  Not here.");
    }
}

TEST_F(ServerLoginTest, ALostConnectionTurnsServerLoginIntoSystemLogin) {
    ServerLogin();
    app.DropAll();
    machine.loop->RunReady();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_TRUE(ServerLogin());
}

TEST_F(ServerLoginTest, OurOwnDisconnectTurnsItTooButNotAtOnce) {
    ServerLogin();
    client->SessionClient()->Disconnect();
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
    machine.loop->RunReady();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(ServerLoginTest, ALostConnectionTurnsNotLoggedInIntoSystemLoginToo) {
    ServerLogin();
    zeb.RefusesLogin("7721");
    SystemLoginError();
    ASSERT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    app.DropAll();
    machine.loop->RunReady();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(ServerLoginTest, TheEndOfAReplacedConnectionIsNotHeard) {
    ServerLogin();
    const auto old = client->SessionClient();
    ServerLogin();
    old->Disconnect();
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
}

TEST_F(ServerLoginTest, TerminateClientInsideEndsItAtOnceWithoutAnotherConnection) {
    app.Once(FakeAppServer::kRegister,
             [this](ScriptedPeer::Link&, const XMLMessage&) { client->TerminateClient(); });
    const auto time = TimeOf(
        [this] { EXPECT_EQ(ServerLoginError().Number(), static_cast<std::int32_t>(NetError::Interrupted)); });
    EXPECT_LT(time, Milliseconds(300));
    EXPECT_EQ(app.Accepted(), 1);
}

TEST_F(ServerLoginTest, DroppingTheClientObjectInsideEndsItAtOnce) {
    app.Once(FakeAppServer::kRegister, [this](ScriptedPeer::Link&, const XMLMessage&) { client.reset(); });
    KQAppSessClient& dying = *client;
    const auto time = TimeOf([&] {
        EXPECT_EQ(ErrorOf([&] { dying.ServerLogin(false); }).Number(),
                  static_cast<std::int32_t>(NetError::Interrupted));
    });
    EXPECT_LT(time, Milliseconds(300));
}

TEST_F(ServerLoginTest, AProcedureInsideItRaisesInvalidProcedureCall) {
    std::int32_t inner = 0;
    app.Once(FakeAppServer::kRegister, [&](ScriptedPeer::Link& link, const XMLMessage&) {
        inner = ServerLoginError().Number();
        link.Send(FakeAppServer::Registration());
    });
    EXPECT_TRUE(ServerLogin());
    EXPECT_EQ(inner, NumberOf(RuntimeError::InvalidProcedureCall));
}

}  // namespace
}  // namespace kq
