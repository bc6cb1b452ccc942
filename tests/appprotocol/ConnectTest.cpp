// Making a connection: every way in which it does not come to stand, with number and time.
#include "appprotocol/APTesting.h"

namespace kq {
namespace {

class Connecting : public ClientScene {
 protected:
    std::int32_t ConnectError(const std::string& address, std::int32_t port = kPort,
                              std::int32_t time_out = 500) {
        return NumberRaisedBy([&] { client_->Connect(address, port, "", time_out); }, &sentence_);
    }
};

TEST_F(Connecting, StandsWhenItReturns) {
    client_->Connect(kServer, kPort, "", 500);
    EXPECT_TRUE(client_->Connected());
    EXPECT_EQ(client_->RemoteAddress(), kServer);
    EXPECT_EQ(client_->RemotePort(), kPort);
    EXPECT_NE(client_->LocalPort(), 0);
}

TEST_F(Connecting, HasNoAddressesBeforeAndAfter) {
    EXPECT_EQ(client_->LocalAddress() + client_->RemoteAddress(), "");
    Connect();
    EXPECT_EQ(client_->LocalAddress(), machine_.network->OwnAddress());
    client_->Disconnect();
    EXPECT_EQ(client_->LocalAddress() + client_->RemoteAddress(), "");
    EXPECT_EQ(client_->LocalPort() + client_->RemotePort(), 0);
}

TEST_F(Connecting, IsRefusedWhereNobodyListens) {
    EXPECT_EQ(ConnectError(kServer, 1), 10061);
    EXPECT_EQ(sentence_, "The connection was refused");
    EXPECT_FALSE(client_->Connected());
}

TEST_F(Connecting, TimesOutAtItsTimeOutWhenNobodyAnswers) {
    machine_.network->BlackHole(kServer, kPort);
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(ConnectError(kServer), 10060); }), 500);
    EXPECT_EQ(machine_.network->OpenStreams(), 0U);
}

TEST_F(Connecting, TakesTenSecondsForATimeOutOfZeroOrLess) {
    machine_.network->BlackHole(kServer, kPort);
    EXPECT_EQ(TimeOf([&] { ConnectError(kServer, kPort, 0); }), 10'000);
    EXPECT_EQ(TimeOf([&] { ConnectError(kServer, kPort, -5); }), 10'000);
}

TEST_F(Connecting, RefusesAPortThatIsNone) {
    for (const std::int32_t port : {-1, 0, 65536})
        EXPECT_EQ(ConnectError(kServer, port), 10022) << port;
    EXPECT_EQ(sentence_, "The port 65536 is outside 1 to 65535");
    EXPECT_EQ(machine_.network->ConnectCount(), 0U);
}

TEST_F(Connecting, LeavesAStandingConnectionAloneWhenTheCallMakesNoSense) {
    Connect();
    EXPECT_EQ(ConnectError(kServer, 0), 10022);
    EXPECT_TRUE(client_->Connected());
}

TEST_F(Connecting, FindsNoHostOfAnUnknownNameOrOfNone) {
    EXPECT_EQ(ConnectError("nowhere.example"), 11001);
    EXPECT_EQ(ConnectError(""), 11001);
}

TEST_F(Connecting, TriesTheAddressesOfANameInOrder) {
    machine_.resolver->names["server"] = {"10.0.0.3", "10.0.0.4", kServer};
    client_->Connect("server", kPort, "", 500);
    EXPECT_EQ(client_->RemoteAddress(), kServer);
    EXPECT_EQ(machine_.network->Attempts()[0].address, "10.0.0.3");
    EXPECT_EQ(machine_.network->ConnectCount(), 3U);
}

TEST_F(Connecting, RaisesTheErrorOfTheLastAddress) {
    machine_.resolver->names["server"] = {"10.0.0.3", "10.0.0.4"};
    machine_.network->BlackHole("10.0.0.3", kPort);
    EXPECT_EQ(ConnectError("server"), 10061);
}

TEST_F(Connecting, LeavesTimeForTheAddressesBehindASilentOne) {
    machine_.resolver->names["server"] = {"10.0.0.3", kServer};
    machine_.network->BlackHole("10.0.0.3", kPort);
    EXPECT_EQ(TimeOf([&] { client_->Connect("server", kPort, "", 500); }), 250);
    EXPECT_TRUE(client_->Connected());
}

TEST_F(Connecting, SharesTheOneTimeOutWithTheResolver) {
    machine_.resolver->names["server"] = {"10.0.0.3"};
    machine_.resolver->delay = Milliseconds(200);
    machine_.network->BlackHole("10.0.0.3", kPort);
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(ConnectError("server"), 10060); }), 500);
    machine_.resolver->delay = Milliseconds(800);
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(ConnectError("server"), 10060); }), 500);
}

TEST_F(Connecting, AsksNoResolverForANumericAddress) {
    client_->Connect(kServer, kPort, "", 500);
    EXPECT_TRUE(machine_.resolver->asked.empty());
}

TEST_F(Connecting, StartsFromTheLocalAddressThatIsGiven) {
    client_->Connect(kServer, kPort, "192.0.2.77", 500);
    EXPECT_EQ(client_->LocalAddress(), "192.0.2.77");
}

TEST_F(Connecting, RaisesNoEventWhenItFails) {
    ConnectError(kServer, 1);
    Run();
    EXPECT_EQ(heard_, "");
}

TEST_F(Connecting, EndsTheConnectionThatStoodBefore) {
    Connect();
    const auto first = std::move(peer_);
    Connect();
    EXPECT_TRUE(first->heard_end);
    EXPECT_EQ(heard_, "gone");
    EXPECT_TRUE(client_->Connected());
}

TEST_F(Connecting, RefusesASecondCallInsideTheFirst) {
    machine_.network->BlackHole("10.0.0.3", kPort);
    std::int32_t inner = 0;
    After(10, [&] { inner = ConnectError(kServer); });
    EXPECT_EQ(ConnectError("10.0.0.3"), 10060);
    EXPECT_EQ(inner, NumberOf(RuntimeError::InvalidProcedureCall));
}

TEST_F(Connecting, EndsAtOnceWhenItIsDisconnectedMeanwhile) {
    machine_.network->BlackHole("10.0.0.3", kPort);
    After(10, [&] { client_->Disconnect(); });
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(ConnectError("10.0.0.3"), 10053); }), 10);
    Run();
    EXPECT_EQ(heard_, "");
}

TEST_F(Connecting, EndsAtOnceWhenItIsDisconnectedWhileTheNameIsLookedUp) {
    machine_.resolver->delay = Milliseconds(100);
    After(10, [&] { client_->Disconnect(); });
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(ConnectError("localhost"), 10053); }), 10);
    machine_.loop->Advance(Milliseconds(1000));
}

TEST_F(Connecting, IsInterruptedWhenTheLoopQuits) {
    machine_.network->BlackHole("10.0.0.3", kPort);
    After(10, [&] { machine_.loop->Quit(); });
    EXPECT_EQ(ConnectError("10.0.0.3"), 10004);
}

TEST_F(Connecting, KeepsTheObjectAliveUntilTheCallReturns) {
    machine_.network->BlackHole("10.0.0.3", kPort);
    APClient& client = *client_;
    After(10, [&] { client_.reset(); });
    EXPECT_EQ(NumberRaisedBy([&] { client.Connect("10.0.0.3", kPort, "", 500); }), 10060);
    EXPECT_EQ(machine_.network->OpenStreams(), 0U);
}

TEST_F(Connecting, ReceivesWhatComesBeforeAnInnerWaitReturns) {
    After(0, [&] {
        machine_.loop->RunUntil([&] { return peer_ != nullptr; }, machine_.loop->Now() + Milliseconds(100));
        PeerSends(XMLFrame("early"));
    });
    client_->Connect(kServer, kPort, "", 500);
    EXPECT_EQ(heard_, "xml:=early");
}

TEST_F(Connecting, RaisesWhyWhenTheConnectionHasEndedAgainBeforeItReturns) {
    After(0, [&] {
        machine_.loop->RunUntil([&] { return peer_ != nullptr; }, machine_.loop->Now() + Milliseconds(100));
        PeerDrops();
    });
    EXPECT_EQ(ConnectError(kServer), 10054);
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Connecting, KeepsTheKeepAliveSettingOverConnections) {
    client_->SetKeepAlive(true);
    Connect();
    EXPECT_EQ(machine_.network->KeptAliveStreams(), 1U);
    client_->SetKeepAlive(false);
    EXPECT_EQ(machine_.network->KeptAliveStreams(), 0U);
}

TEST_F(Connecting, GivesEveryObjectAnIdentifierOfItsOwn) {
    const auto other = APClient::Create(machine_.platform);
    EXPECT_NE(client_->Identifier(), other->Identifier());
    EXPECT_EQ(client_->Identifier().find_first_not_of("0123456789"), std::string::npos);
}

class BeginningToConnect : public ClientScene {
 protected:
    BeginningToConnect() {
        client_->ConnectEnded.Connect(owner_, [this](std::int32_t number, const std::string& sentence) {
            Note("ended:" + std::to_string(number));
            sentence_ = sentence;
        });
    }
    void Begin(const std::string& address = kServer, std::int32_t port = kPort) {
        client_->BeginConnect(address, port, "", 500);
    }
};

TEST_F(BeginningToConnect, ReturnsAtOnceAndTellsLaterThatTheConnectionStands) {
    EXPECT_EQ(TimeOf([&] { Begin(); }), 0);
    EXPECT_FALSE(client_->Connected());
    EXPECT_EQ(heard_, "");
    Run();
    EXPECT_TRUE(client_->Connected());
    EXPECT_EQ(heard_, "ended:0");
    EXPECT_EQ(sentence_, "");
}

TEST_F(BeginningToConnect, TellsARefusalAndAnUnknownName) {
    Begin(kServer, 1);
    Run();
    EXPECT_EQ(sentence_, "The connection was refused");
    Begin("nowhere.example");
    Run();
    EXPECT_EQ(heard_, "ended:10061 ended:11001");
}

TEST_F(BeginningToConnect, TellsTheTimeOutWhenItHasPassed) {
    machine_.network->BlackHole(kServer, kPort);
    Begin();
    machine_.loop->Advance(Milliseconds(499));
    EXPECT_EQ(heard_, "");
    machine_.loop->Advance(Milliseconds(1));
    EXPECT_EQ(heard_, "ended:10060");
    EXPECT_EQ(machine_.network->OpenStreams(), 0U);
}

TEST_F(BeginningToConnect, TellsTheTimeOutOfANameThatIsNeverFound) {
    machine_.resolver->delay = Milliseconds(60'000);
    Begin("server");
    machine_.loop->Advance(Milliseconds(500));
    EXPECT_EQ(heard_, "ended:10060");
}

TEST_F(BeginningToConnect, TellsNothingAfterADisconnect) {
    Begin();
    client_->Disconnect();
    machine_.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(heard_, "");
    EXPECT_FALSE(client_->Connected());
}

TEST_F(BeginningToConnect, IsRefusedWhileAConnectionIsBeingMade) {
    Begin();
    EXPECT_EQ(NumberRaisedBy([&] { Begin(); }), NumberOf(RuntimeError::InvalidProcedureCall));
    EXPECT_EQ(NumberRaisedBy([&] { client_->Connect(kServer, kPort, "", 500); }),
              NumberOf(RuntimeError::InvalidProcedureCall));
    Run();
    EXPECT_EQ(heard_, "ended:0");
}

TEST_F(BeginningToConnect, RaisesWhatIsWrongWithItsArguments) {
    EXPECT_EQ(NumberRaisedBy([&] { Begin(kServer, 0); }), 10022);
    EXPECT_EQ(NumberRaisedBy([&] { Begin(""); }), 11001);
}

TEST_F(BeginningToConnect, MayDropTheObjectInItsEvent) {
    client_->ConnectEnded.Connect(owner_, [this](std::int32_t, const std::string&) { client_.reset(); });
    Begin(kServer, 1);
    Run();
    EXPECT_EQ(client_, nullptr);
}

TEST_F(BeginningToConnect, DoesNotHoldUpAnotherWait) {
    machine_.network->BlackHole("10.0.0.9", kPort);
    Begin("10.0.0.9");
    EXPECT_EQ(TimeOf([&] {
                  machine_.loop->RunUntil([] { return false; }, machine_.loop->Now() + Milliseconds(100));
              }),
              100);
}

}  // namespace
}  // namespace kq
