// The session manager's members: what each state allows, what each step leaves behind.
#include <kqappsession/KQAppSessErrorEnum.h>

#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ServerLifecycle : public ServerTest {};

TEST(InterfaceVersionsText, IsSplitAtPipesWhenItHoldsOne) {
    EXPECT_THAT(InterfaceVersions("1.0|2.0,3").All(), ElementsAre("1.0", "2.0,3"));
}

TEST(InterfaceVersionsText, IsSplitAtCommasElseAndKeepsEmptyPieces) {
    EXPECT_THAT(InterfaceVersions("1.0,,2").All(), ElementsAre("1.0", "", "2"));
    EXPECT_THAT(InterfaceVersions(" 1 ").All(), ElementsAre(" 1 "));
}

TEST_F(ServerLifecycle, StartsUninitialisedWithoutSessions) {
    EXPECT_FALSE(Server().IsInitialized());
    EXPECT_EQ(Server().InfoInterval(), 120);
    EXPECT_EQ(Server().Sessions()->Count(), 0);
}

TEST(KQAppSessServerWithoutAPlatform, IsRefused) {
    EXPECT_EQ(NumberRaisedBy([] { KQAppSessServer server(nullptr); }), NumberOf(RuntimeError::ObjectNotSet));
}

TEST_F(ServerLifecycle, RefusesListenStopListeningAndListenerBeforeInitialize) {
    EXPECT_EQ(NumberRaisedBy([this] { Server().Listen(7000); }), kqaserrNotInitialized);
    EXPECT_EQ(NumberRaisedBy([this] { Server().StopListening(); }), kqaserrNotInitialized);
    EXPECT_EQ(NumberRaisedBy([this] { Server().Listener(); }), kqaserrNotInitialized);
}

TEST_F(ServerLifecycle, StaysUninitialisedWithoutStatisticsOrBusClient) {
    Server().Initialize("Demo", app_, bus_client_, nullptr, InterfaceVersions("1"));
    EXPECT_FALSE(Server().IsInitialized());
    EXPECT_EQ(NumberRaisedBy([this] { Server().Listen(7000); }), kqaserrNotInitialized);
    Server().Initialize("Demo", app_, nullptr, statistics_, InterfaceVersions("1"));
    EXPECT_FALSE(Server().IsInitialized());
}

TEST_F(ServerLifecycle, IsInitialisedWithoutAnApplicationObject) {
    Server().Initialize("Demo", nullptr, bus_client_, statistics_, InterfaceVersions("1"));
    EXPECT_TRUE(Server().IsInitialized());
}

TEST_F(ServerLifecycle, TakesEverythingElseInBeforeItRefusesInvalidInterfaces) {
    EXPECT_EQ(NumberRaisedBy([this] {
                  Server().Initialize("VL2", app_, bus_client_, statistics_, InterfaceVersions::Invalid());
              }),
              kqaserrInvalidInterfaces);
    EXPECT_TRUE(Server().IsInitialized());
}

TEST_F(ServerLifecycle, HandsOutItsListenerSetToMessagesAndKeepAlive) {
    Initialize();
    EXPECT_EQ(Server().Listener()->ReceiveType(), DataType::XML);
    EXPECT_TRUE(Server().Listener()->KeepAlive());
}

TEST_F(ServerLifecycle, RefusesASecondListenWithThePort) {
    Listens();
    try {
        Server().Listen(7001);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), kqaserrAlreadyConnected);
        EXPECT_EQ(error.Description(), "Connected on port 7000.");
    }
}

TEST_F(ServerLifecycle, RefusesASecondListenEvenWhenUninitialised) {
    Listens();
    Server().Initialize("Demo", app_, bus_client_, nullptr, InterfaceVersions("1"));
    EXPECT_EQ(NumberRaisedBy([this] { Server().Listen(7001); }), kqaserrAlreadyConnected);
}

TEST_F(ServerLifecycle, ListensOnAFreePortForZero) {
    Initialize();
    Server().Listen(0);
    Run();
    EXPECT_GT(Server().Listener()->Port(), 0);
    EXPECT_EQ(LatestInfo("Port"), std::to_string(Server().Listener()->Port()));
}

TEST_F(ServerLifecycle, ListensOnTheGivenAddress) {
    Initialize();
    Server().Listen(7000, "192.0.2.77");
    Run();
    EXPECT_EQ(LatestInfo("Address"), "192.0.2.77");
}

TEST_F(ServerLifecycle, PassesTheListenersErrorOnAndLeavesTheBusAlone) {
    Initialize();
    machine_.network->FailNextListen(NetError::AddressInUse);
    EXPECT_EQ(NumberRaisedBy([this] { Server().Listen(7000); }), 10048);
    EXPECT_FALSE(bus_client_->Running());
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ServerLifecycle, HearsTheBroadcastsToAllApplicationServersWhileListening) {
    Listens();
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    EXPECT_THAT(heard_.Of("XMLBusReceive"), ElementsAre("RequestBroadcastAS 0 "));
}

TEST_F(ServerLifecycle, HearsNoBroadcastsAfterStopListening) {
    bus_client_->Start();
    Listens();
    Server().StopListening();
    Forget();
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ServerLifecycle, LeavesARunningBusClientRunning) {
    bus_client_->Start();
    Listens();
    EXPECT_TRUE(bus_client_->Running());
    Server().StopListening();
    EXPECT_TRUE(bus_client_->Running());
}

TEST_F(ServerLifecycle, LeavesABusClientStoppedThatDidNotRun) {
    Listens();
    EXPECT_TRUE(bus_client_->Running());
    Server().StopListening();
    EXPECT_FALSE(bus_client_->Running());
}

TEST_F(ServerLifecycle, ListensAgainAfterStopListening) {
    Listens();
    Server().StopListening();
    Server().Listen(7001);
    EXPECT_EQ(Server().Listener()->Port(), 7001);
}

TEST_F(ServerLifecycle, KeepsItsClientsWhenListeningStops) {
    Listens();
    auto& client = RegisteredClient("S17");
    Server().StopListening();
    Run();
    EXPECT_TRUE(client.Connected());
    EXPECT_TRUE(Server().Sessions()->Exists("S17"));
}

TEST_F(ServerLifecycle, DropsItsClientsWhenToldSo) {
    Listens();
    auto& client = RegisteredClient("S17");
    Server().StopListening(true);
    Run();
    EXPECT_FALSE(client.Connected());
    EXPECT_THAT(heard_.Of("Disconnected"), ElementsAre("S17"));
    EXPECT_EQ(Server().Sessions()->Count(), 0);
}

TEST_F(ServerLifecycle, DoesNothingOnTerminateUnlessInitialised) {
    Server().Terminate();
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ServerLifecycle, StopsListeningOnTerminateAndKeepsTheSessions) {
    Listens();
    RegisteredClient("S17");
    Server().Terminate();
    Run();
    EXPECT_FALSE(Server().IsInitialized());
    ASSERT_EQ(zeb_.announcements.size(), 1U);
    EXPECT_EQ(StateOf(zeb_.announcements[0]), "D");
    EXPECT_TRUE(Server().Sessions()->Exists("S17"));
}

TEST_F(ServerLifecycle, ReleasesBusClientAndStatisticsOnTerminate) {
    const auto before = bus_client_.use_count();
    Initialize();
    EXPECT_GT(bus_client_.use_count(), before);
    EXPECT_EQ(statistics_.use_count(), 2);
    Server().Terminate();
    EXPECT_EQ(bus_client_.use_count(), before);
    EXPECT_EQ(statistics_.use_count(), 1);
}

TEST_F(ServerLifecycle, IsDeafToTheBusAfterTerminate) {
    bus_client_->Start();
    Listens();
    Server().Terminate();
    Forget();
    zeb_.Says(MessageOf("RequestBroadcastAS"), {bus_client_->ReplyType(), bus_client_->ReplySubType()});
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ServerLifecycle, HearsEachBusMessageOnceWhenInitialisedTwice) {
    Initialize();
    Listens();
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    EXPECT_EQ(heard_.Of("XMLBusReceive").size(), 1U);
}

TEST_F(ServerLifecycle, ForgetsWhoIsConnectedButNoSessionsWhenInitialisedAgain) {
    Listens();
    auto& client = RegisteredClient("S17");
    Initialize();
    EXPECT_TRUE(Server().Sessions()->Exists("S17"));
    client.Sends(MessageOf("Order"));
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASRegisterResponse", "ASUnknownResponse"));
    EXPECT_THAT(heard_.Of("Disconnected"), IsEmpty());
}

TEST_F(ServerLifecycle, TellsTheBusThatItGoesWhenDestroyedButRaisesNothing) {
    Listens();
    server_.reset();
    Run();
    ASSERT_EQ(zeb_.announcements.size(), 1U);
    EXPECT_EQ(StateOf(zeb_.announcements[0]), "D");
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ServerLifecycle, FinishesListenBeforeItRaisesWhatTheBusRefused) {
    Initialize();
    FillBus(true);
    EXPECT_EQ(NumberRaisedBy([this] { Server().Listen(7000); }), 10055);
    FillBus(false);
    machine_.loop->Advance(Milliseconds(120'000));
    ASSERT_EQ(zeb_.announcements.size(), 1U);
    EXPECT_EQ(StateOf(zeb_.announcements[0]), "C");
}

TEST_F(ServerLifecycle, LeavesTheBusBeforeItRaisesThatTheDownNoticeFailed) {
    Listens();
    FillBus(true);
    EXPECT_EQ(NumberRaisedBy([this] { Server().StopListening(); }), 10055);
    EXPECT_FALSE(bus_client_->Running());
}

TEST_F(ServerLifecycle, IsTerminatedEvenWhenTheDownNoticeFailed) {
    Listens();
    FillBus(true);
    EXPECT_EQ(NumberRaisedBy([this] { Server().Terminate(); }), 10055);
    EXPECT_FALSE(Server().IsInitialized());
}

class CheckMessage : public ServerTest {
 protected:
    bool IsMine(const std::string& type, const std::string& schema) {
        const auto message = std::make_shared<XMLMessage>(type, "1");
        message->SetSchema(schema);
        return Server().CheckMessage(message);
    }
};

TEST_F(CheckMessage, KnowsTheThreeTypesOfTheSchemaInAnyCase) {
    EXPECT_TRUE(IsMine("RequestBroadcastAS", "ZEBSchemas"));
    EXPECT_TRUE(IsMine("ASRegistrationResponse", "urn:ZEBSCHEMAS:2"));
    EXPECT_TRUE(IsMine("ASLogoutUser", "x-zebschemas"));
}

TEST_F(CheckMessage, KnowsNoOtherTypeSchemaOrNull) {
    EXPECT_FALSE(IsMine("ASLoginRequest", "ZEBSchemas"));
    EXPECT_FALSE(IsMine("aslogoutuser", "ZEBSchemas"));
    EXPECT_FALSE(IsMine("ASLogoutUser", "ZEB"));
    EXPECT_FALSE(IsMine("ASLogoutUser", ""));
    EXPECT_FALSE(Server().CheckMessage(nullptr));
}

}  // namespace
}  // namespace kq
