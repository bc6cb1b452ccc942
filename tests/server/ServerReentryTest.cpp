// Hosts that call back into the session manager from its events, or destroy it there.
#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ServerReentry : public ServerTest {
 protected:
    void SetUp() override { Listens(); }
    void OrdersLogout() {
        XMLElement list("SessionIDs");
        list.Add("SessionID", "S1");
        list.Add("SessionID", "S2");
        auto order = MessageOf("ASLogoutUser");
        order.SetField(std::move(list));
        zeb_.SaysToAll(order);
    }
};

// Everything that raises events, one after the other, with whatever is left of the server.
class ServerDestroyedIn : public ServerReentry, public testing::WithParamInterface<const char*> {
 protected:
    void PlayEverything() {
        auto& client = Client();
        client.Registers("S17");
        if (server_) zeb_.Grants("S17");
        if (client.Connected()) client.Sends(MessageOf("Order"));
        machine_.network->FailNextAccept(10024);
        if (server_) Client();
        if (server_) machine_.network->CutAll();
        Run();
    }
};

TEST_P(ServerDestroyedIn, RaisesNothingMore) {
    std::vector<std::string> before;
    heard_.At(GetParam(), [&] {
        server_.reset();
        before = heard_.All();
    });
    PlayEverything();
    ASSERT_FALSE(server_);
    EXPECT_EQ(heard_.All().size(), before.size() + 1) << "only the event itself is still noted";
    EXPECT_FALSE(bus_client_->Running());
}

INSTANTIATE_TEST_SUITE_P(EachEvent, ServerDestroyedIn,
                         testing::Values("Connected", "ReceivedData", "Disconnected", "Error", "SessionError",
                                         "XMLBusSend", "XMLBusReceive", "Count"),
                         [](const auto& event) { return std::string(event.param); });

TEST_F(ServerReentry, DestructionInsideAnEventDisconnectsTheClients) {
    auto& client = RegisteredClient("S17");
    heard_.At("ReceivedData", [this] { server_.reset(); });
    client.Sends(MessageOf("Order"));
    EXPECT_FALSE(client.Connected());
}

TEST_F(ServerReentry, TerminateInsideConnectedKeepsTheClientConnected) {
    auto& client = Client();
    client.Registers("S17");
    heard_.At("Connected", [this] { Server().Terminate(); });
    zeb_.Grants("S17");
    EXPECT_FALSE(Server().IsInitialized());
    EXPECT_TRUE(client.Connected());
    EXPECT_EQ(heard_.All().back(), "XMLBusReceive ASRegistrationResponse 0 ");
}

TEST_F(ServerReentry, TerminateInsideCountStillAnswersTheClient) {
    auto& client = Client();
    client.Registers("S17");
    heard_.At("Count", [this] { Server().Terminate(); });
    zeb_.Grants("S17");
    EXPECT_EQ(client.Answer().Field("ErrorNum"), "0");
    EXPECT_THAT(heard_.Of("Connected"), ElementsAre("S17"));
}

TEST_F(ServerReentry, RequestsAfterTerminateAreDroppedWithoutAWord) {
    auto& client = RegisteredClient("S17");
    Server().Terminate();
    Run();
    Forget();
    client.Sends(MessageOf("ASLoginRequest"));
    client.Registers("S18");
    EXPECT_THAT(heard_.All(), IsEmpty());
    client.Sends(MessageOf("Order"));
    client.Leaves();
    EXPECT_THAT(heard_.All(), ElementsAre("ReceivedData S17", "Count", "Disconnected S17"));
}

TEST_F(ServerReentry, StopListeningInsideReceivedDataEndsTheSession) {
    auto& client = RegisteredClient("S17");
    heard_.At("ReceivedData", [this] { Server().StopListening(true); });
    client.Sends(MessageOf("Order"));
    Run();
    EXPECT_FALSE(client.Connected());
    EXPECT_THAT(heard_.Of("Disconnected"), ElementsAre("S17"));
    EXPECT_FALSE(Server().Listener()->Listening());
}

TEST_F(ServerReentry, StopListeningInsideTheFirstAnnouncementEndsListen) {
    Server().StopListening();
    Forget();
    heard_.At("XMLBusSend", [this] { Server().StopListening(); });
    Server().Listen(7000);
    machine_.loop->Advance(Milliseconds(500'000));
    std::vector<std::string> states;
    for (const auto& message : heard_.sent)
        states.push_back(StateOf(message));
    EXPECT_THAT(states, ElementsAre("C", "D"));
    EXPECT_FALSE(bus_client_->Running());
}

TEST_F(ServerReentry, ListenInsideStopListeningStands) {
    Server().StopListening();
    bus_client_->Start();
    Server().Listen(7000);
    RegisteredClient("S17");
    heard_.At("Disconnected", [this] { Server().Listen(7000); });
    Server().StopListening(true);
    Run();
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    EXPECT_THAT(heard_.Of("XMLBusReceive"), ElementsAre("RequestBroadcastAS 0 "));
    EXPECT_EQ(StateOf(zeb_.announcements.back()), "C");
    Server().StopListening();
    EXPECT_TRUE(bus_client_->Running()) << "as it was before the first Listen";
}

TEST_F(ServerReentry, StopListeningWhileListenWaitsForTheBusEndsListen) {
    auto& client = RegisteredClient("S17");
    Server().StopListening();
    bus_client_->Start();
    bus_.SetRoom(false);  // what waits keeps the bus client from stopping at once
    client.Sends(MessageOf("ASLoginRequest"));
    Forget();
    machine_.loop->Post([this] { Server().StopListening(); });
    Server().Listen(7000);
    EXPECT_FALSE(Server().Listener()->Listening());
    bus_.SetRoom(true);
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    machine_.loop->Advance(Milliseconds(500'000));
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ServerReentry, LogoutGoesOnWhenAnEventTerminates) {
    RegisteredClient("S1");
    auto& second = RegisteredClient("S2");
    heard_.At("Disconnected", [this] { Server().Terminate(); });
    OrdersLogout();
    EXPECT_FALSE(second.Connected());
    EXPECT_THAT(heard_.Of("Disconnected"), ElementsAre("S1", "S2"));
}

TEST_F(ServerReentry, LogoutEndsWhenAnEventDestroysTheServer) {
    RegisteredClient("S1");
    RegisteredClient("S2");
    heard_.At("Disconnected", [this] { server_.reset(); });
    OrdersLogout();
    EXPECT_THAT(heard_.Of("Disconnected"), ElementsAre("S1"));
    EXPECT_THAT(heard_.Of("XMLBusReceive"), IsEmpty());
    EXPECT_THAT(handled_, ElementsAre(true));
}

TEST_F(ServerReentry, SessionsOfABurstAreEachAnnouncedOnce) {
    for (int i = 0; i < 20; ++i)
        Client().Registers("S" + std::to_string(i));
    for (int i = 0; i < 20; ++i)
        zeb_.Grants("S" + std::to_string(i));
    EXPECT_EQ(heard_.Of("Connected").size(), 20U);
    EXPECT_EQ(SessionsIn(zeb_.announcements.back()).size(), 20U);
}

}  // namespace
}  // namespace kq
