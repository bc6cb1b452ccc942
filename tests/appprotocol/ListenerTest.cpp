// The listener: its collection, its events and what a bad client cannot do to it.
#include "appprotocol/APTesting.h"

namespace kq {
namespace {

class Listening : public ListenerScene {};

TEST_F(Listening, AcceptsAndForwardsTheEventsOfAClient) {
    Listen();
    auto caller = Call();
    Sends(*caller, XMLFrame("a", "t") + RawFrame("b"));
    caller.reset();
    Run();
    EXPECT_EQ(heard_, "accepted t=a =b gone");
}

TEST_F(Listening, ReturnsTheTagWithTheAnswer) {
    Listen();
    listener_->Receive.Connect(owner_, [](const Listener::ClientPtr& client, const Block& block) {
        client->SendText("re " + block.data, block.tag);
    });
    const auto caller = Call();
    Sends(*caller, XMLFrame("a", "17"));
    EXPECT_EQ(caller->heard, XMLFrame("re a", "17"));
}

TEST_F(Listening, ForwardsOnlyTheWantedType) {
    listener_->SetReceiveType(DataType::XML);
    Listen();
    const auto caller = Call();
    Sends(*caller, RawFrame("raw") + XMLFrame("xml"));
    EXPECT_EQ(heard_, "accepted =xml");
}

TEST_F(Listening, TakesAFreePortForZero) {
    EXPECT_EQ(listener_->Port(), 0);
    listener_->Listen(0, "");
    EXPECT_NE(listener_->Port(), 0);
    listener_->StopListening(false);
    EXPECT_EQ(listener_->Port(), 0);
}

TEST_F(Listening, RaisesThatThePortIsInUse) {
    Listen();
    const auto other = Listener::Create(machine_.platform);
    EXPECT_EQ(NumberRaisedBy([&] { other->Listen(kPort, ""); }), 10048);
    EXPECT_FALSE(other->Listening());
}

TEST_F(Listening, RefusesToListenTwiceOrOnNoPort) {
    const auto wrong = NumberOf(RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(NumberRaisedBy([&] { listener_->Listen(-1, ""); }), wrong);
    EXPECT_EQ(NumberRaisedBy([&] { listener_->Listen(65536, ""); }), wrong);
    Listen();
    EXPECT_EQ(NumberRaisedBy([&] { listener_->Listen(kPort + 1, ""); }), wrong);
    EXPECT_EQ(listener_->Port(), kPort);
}

TEST_F(Listening, KeepsItsAddressAfterItStopped) {
    Listen();
    listener_->StopListening(false);
    EXPECT_EQ(listener_->LocalAddress(), machine_.network->OwnAddress());
    listener_->Listen(kPort, "127.0.0.1");
    EXPECT_EQ(listener_->LocalAddress(), "127.0.0.1");
}

TEST_F(Listening, TellsWhatItIsBoundTo) {
    EXPECT_EQ(listener_->BoundAddress(), "");
    Listen();
    EXPECT_EQ(listener_->BoundAddress(), "0.0.0.0");
    listener_->StopListening(false);
    listener_->Listen(kPort, "127.0.0.1");
    EXPECT_EQ(listener_->BoundAddress(), "127.0.0.1");
}

TEST_F(Listening, KeepsTheClientsWhenItStops) {
    Listen();
    const auto caller = Call();
    listener_->StopListening(false);
    Sends(*caller, XMLFrame("still"));
    EXPECT_EQ(heard_, "accepted =still");
    EXPECT_EQ(listener_->Count(), 1);
}

TEST_F(Listening, DisconnectsTheClientsWhenAskedEvenAfterItStopped) {
    Listen();
    const auto first = Call();
    const auto second = Call();
    listener_->StopListening(false);
    listener_->StopListening(true);
    Run();
    EXPECT_EQ(heard_, "accepted accepted gone gone");
    EXPECT_TRUE(first->heard_end && second->heard_end);
    EXPECT_EQ(listener_->Count(), 0);
}

TEST_F(Listening, ListensAgainAfterItStopped) {
    Listen();
    listener_->StopListening(true);
    Listen();
    const auto caller = Call();
    EXPECT_EQ(listener_->Count(), 1);
}

TEST_F(Listening, FindsItsClientsByIdentifierInTheOrderOfTheirComing) {
    Listen();
    std::vector<std::unique_ptr<RawPeer>> callers;
    for (int i = 0; i < 5; ++i)
        callers.push_back(Call());
    callers.erase(callers.begin() + 2);
    Run();
    const auto clients = listener_->Clients();
    EXPECT_EQ(clients, (std::vector{accepted_[0], accepted_[1], accepted_[3], accepted_[4]}));
    EXPECT_EQ(listener_->Client(accepted_[3]->Identifier()), accepted_[3]);
    EXPECT_EQ(listener_->Client(accepted_[2]->Identifier()), nullptr);
    EXPECT_FALSE(listener_->Exists("none"));
}

TEST_F(Listening, GivesManyClientsIdentifiersOfTheirOwn) {
    Listen();
    std::vector<std::unique_ptr<RawPeer>> callers;
    for (int i = 0; i < 200; ++i) {
        callers.push_back(std::make_unique<RawPeer>(machine_.network->Connect("127.0.0.1", kPort, "")));
    }
    Run();
    EXPECT_EQ(listener_->Count(), 200);
    for (const auto& client : accepted_)
        EXPECT_EQ(listener_->Client(client->Identifier()), client);
}

TEST_F(Listening, LosesOnlyTheClientThatSendsGarbage) {
    Listen();
    const auto good = Call();
    const auto bad = Call();
    Heard();
    Sends(*bad, "GET / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(Heard(), "client-error:10053 gone");
    Sends(*good, XMLFrame("fine"));
    EXPECT_EQ(Heard(), "=fine");
}

TEST_F(Listening, AllowsSmallBlocksBeforeAdmissionAndLargerOnesAfterwards) {
    ListenWith({.frame = 10, .admitted_frame = 20});
    const auto caller = Call();
    Sends(*caller, RawFrame("0123456789"));
    accepted_[0]->Admit();
    Sends(*caller, XMLFrame("01234567890123456789"));
    EXPECT_EQ(Heard(), "accepted =0123456789 =01234567890123456789");
    Sends(*caller, RawFrame("012345678901234567890"));
    EXPECT_EQ(Heard(), "client-error:10040 gone");
}

TEST_F(Listening, ClosesAStrangerWhoseFirstBlockIsTooLong) {
    ListenWith({.frame = 10});
    const auto caller = Call();
    Sends(*caller, XMLFrame("01234567890"));
    EXPECT_EQ(Heard(), "accepted client-error:10040 gone");
    EXPECT_EQ(sentence_, "A block of 11 bytes arrived; at most 10 are allowed");
}

TEST_F(Listening, ClosesAClientThatNeverCompletesItsFirstBlock) {
    Listen();
    const auto caller = Call();
    for (int second = 0; second < 9; ++second) {
        Sends(*caller, XMLFrame("0123456789").substr(static_cast<std::size_t>(second), 1));
        machine_.loop->Advance(Milliseconds(1000));
    }
    machine_.loop->Advance(Milliseconds(999));
    EXPECT_EQ(Heard(), "accepted");
    machine_.loop->Advance(Milliseconds(1));
    EXPECT_EQ(Heard(), "client-error:10060 gone");
    EXPECT_TRUE(caller->heard_end);
}

TEST_F(Listening, LetsAClientBeSilentAfterItsFirstBlock) {
    Listen();
    const auto caller = Call();
    Sends(*caller, XMLFrame("hello"));
    machine_.loop->Advance(Milliseconds(1'000'000));
    EXPECT_EQ(Heard(), "accepted =hello");
}

TEST_F(Listening, LimitsNoFirstBlockWhenTheLimitIsZero) {
    ListenWith({.first_frame = Milliseconds(0)});
    const auto caller = Call();
    machine_.loop->Advance(Milliseconds(1'000'000));
    EXPECT_EQ(Heard(), "accepted");
}

TEST_F(Listening, ClosesAClientThatDoesNotReadAndServesTheOthers) {
    machine_.network->SetPipeSize(100);
    ListenWith({.unsent = 1000});
    const auto deaf = Call();
    const auto good = Call();
    deaf->StopReading();
    const std::string block(900, 'x');
    EXPECT_EQ(NumberRaisedBy([&] { accepted_[0]->SendBytes(block); }), 0);
    Run();
    EXPECT_EQ(NumberRaisedBy([&] { accepted_[0]->SendBytes(block); }), 10055);
    accepted_[1]->SendBytes(block);
    Run();
    EXPECT_EQ(Heard(), "accepted accepted gone");
    EXPECT_EQ(good->heard, RawFrame(block));
}

TEST_F(Listening, TurnsAwayMoreClientsThanItMayHave) {
    listener_->SetMaxClients(1);
    Listen();
    const auto first = Call();
    const auto second = Call();
    EXPECT_EQ(Heard(), "accepted client-error:10024");
    EXPECT_TRUE(second->heard_end);
    Sends(*first, XMLFrame("a"));
    EXPECT_EQ(Heard(), "=a");
}

TEST_F(Listening, GoesOnAfterAFailureToAccept) {
    Listen();
    machine_.network->FailNextAccept(10024);
    const auto caller = Call();
    EXPECT_EQ(Heard(), "error:10024 accepted");
}

TEST_F(Listening, ProbesIdleConnectionsWhenAsked) {
    Listen();
    const auto first = Call();
    EXPECT_EQ(machine_.network->KeptAliveStreams(), 0U);
    listener_->SetKeepAlive(true);
    const auto second = Call();
    EXPECT_EQ(machine_.network->KeptAliveStreams(), 1U);
}

TEST_F(Listening, SendsARefusalBeforeItDisconnects) {
    Listen();
    listener_->Receive.Connect(owner_, [](const Listener::ClientPtr& client, const Block&) {
        client->SendText("refused");
        client->Disconnect();
    });
    const auto caller = Call();
    Sends(*caller, XMLFrame("a") + XMLFrame("b"));
    EXPECT_EQ(Heard(), "accepted =a gone");
    EXPECT_EQ(caller->heard, XMLFrame("refused"));
    EXPECT_TRUE(caller->heard_end);
}

TEST_F(Listening, RaisesTheClientsOwnEventsAfterItsOwn) {
    Listen();
    listener_->Accepted.Connect(owner_, [this](const Listener::ClientPtr& client) {
        client->Receive.Connect(owner_, [this](const Block&) { Note("own-receive"); });
        client->Disconnected.Connect(owner_, [this] { Note("own-gone"); });
    });
    auto caller = Call();
    Sends(*caller, XMLFrame("a"));
    caller.reset();
    Run();
    EXPECT_EQ(Heard(), "accepted =a own-receive gone own-gone");
}

TEST_F(Listening, IsNotConcernedWhenTheHostConnectsAClientAnew) {
    Listen();
    auto caller = Call();
    caller.reset();
    Run();
    Heard();
    accepted_[0]->Connect("127.0.0.1", kPort, "", 100);
    accepted_[0]->Disconnect();
    Run();
    EXPECT_EQ(Heard(), "accepted gone");
}

TEST_F(Listening, CanBeStoppedInsideAccepted) {
    Listen();
    listener_->Accepted.Connect(owner_,
                                [this](const Listener::ClientPtr&) { listener_->StopListening(true); });
    std::vector<std::unique_ptr<RawPeer>> callers;
    for (int i = 0; i < 3; ++i)
        callers.push_back(std::make_unique<RawPeer>(machine_.network->Connect("127.0.0.1", kPort, "")));
    Run();
    EXPECT_EQ(Heard(), "accepted gone");
}

class DroppingTheListener : public ListenerScene {
 protected:
    void Drop() { listener_.reset(); }
    void ListenQuietly() {
        owner_.Cancel();
        Listen();
    }
};

TEST_F(DroppingTheListener, InsideAcceptedEndsItsConnections) {
    ListenQuietly();
    listener_->Accepted.Connect(owner_, [this](const Listener::ClientPtr&) { Drop(); });
    const auto caller = Call();
    EXPECT_TRUE(caller->heard_end);
}

TEST_F(DroppingTheListener, InsideReceiveEndsItsConnections) {
    ListenQuietly();
    int received = 0;
    listener_->Receive.Connect(owner_, [&](const Listener::ClientPtr&, const Block&) {
        ++received;
        Drop();
    });
    const auto caller = Call();
    const auto other = Call();
    Sends(*caller, XMLFrame("a") + XMLFrame("b"));
    EXPECT_TRUE(caller->heard_end && other->heard_end);
    EXPECT_EQ(received, 1);
}

TEST_F(DroppingTheListener, InsideDisconnectedEndsTheOthers) {
    ListenQuietly();
    listener_->Disconnected.Connect(owner_, [this](const Listener::ClientPtr&) { Drop(); });
    auto caller = Call();
    const auto other = Call();
    caller.reset();
    Run();
    EXPECT_TRUE(other->heard_end);
}

TEST_F(DroppingTheListener, InsideClientErrorEndsTheOthers) {
    ListenQuietly();
    listener_->ClientError.Connect(
        owner_, [this](const Listener::ClientPtr&, std::int32_t, const std::string&) { Drop(); });
    const auto caller = Call();
    const auto other = Call();
    Sends(*caller, "garbage");
    EXPECT_TRUE(caller->heard_end && other->heard_end);
}

TEST_F(DroppingTheListener, LeavesAKeptClientDisconnected) {
    Listen();
    const auto caller = Call();
    int gone = 0;
    accepted_[0]->Disconnected.Connect(owner_, [&] { ++gone; });
    Drop();
    EXPECT_FALSE(accepted_[0]->Connected());
    EXPECT_EQ(gone, 0);
    Run();
    EXPECT_EQ(gone, 1);
}

}  // namespace
}  // namespace kq
