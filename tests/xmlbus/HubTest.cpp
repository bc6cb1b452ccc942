// The hub and its clients: who hears what, who is cut, and what is kept over a cut connection.
#include <map>

#include "xmlbus/HubTesting.h"

namespace kq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(HubTest, CarriesMessagesAsTheyAre) {
    StreamPeer peer(machine, hub->Port());
    peer.Enters(kKey);
    peer.Hears("ZEB");
    const std::string text = "this is not read by the hub";
    peer.SaysBlock("ZEB", text);
    EXPECT_THAT(peer.blocks, Contains(testing::Field(&Block::data, text)));
}

TEST_F(HubTest, BringsAnswersToTheReplyAddressOfTheSender) {
    const auto zeb = Join();
    const auto server = Join();
    const auto other = Join();
    zeb->Says("answer", server->ReplyAddress());
    Settle();
    EXPECT_THAT(server->heard, ElementsAre("answer"));
    EXPECT_THAT(other->heard, IsEmpty());
}

TEST_F(HubTest, BringsABroadcastToEveryServer) {
    const auto zeb = Join();
    const auto one = Join();
    const auto other = Join();
    one->Hears(kBroadcast);
    other->Hears(kBroadcast);
    Settle();
    zeb->Says("all", kBroadcast);
    Settle();
    EXPECT_THAT(one->heard, ElementsAre("all"));
    EXPECT_THAT(other->heard, ElementsAre("all"));
}

TEST_F(HubTest, BringsARequestToOneOfTheLoginServersInTurn) {
    const auto one = Join();
    const auto other = Join();
    const auto server = Join();
    one->Hears(kZeb, BusSubscription::Shared);
    other->Hears(kZeb, BusSubscription::Shared);
    Settle();
    for (const char* text : {"a", "b", "c"})
        server->Says(text);
    Settle();
    EXPECT_THAT(one->heard, ElementsAre("a", "c"));
    EXPECT_THAT(other->heard, ElementsAre("b"));
}

TEST_F(HubTest, SkipsALoginServerThatIsGone) {
    auto one = Join();
    const auto other = Join();
    const auto server = Join();
    one->Hears(kZeb, BusSubscription::Shared);
    other->Hears(kZeb, BusSubscription::Shared);
    Settle();
    one.reset();
    Settle();
    for (const char* text : {"a", "b"})
        server->Says(text);
    Settle();
    EXPECT_THAT(other->heard, ElementsAre("a", "b"));
}

TEST_F(HubTest, EndsASubscription) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    zeb->HearsNoMore(kZeb);
    Settle();
    server->Says("a");
    Settle();
    EXPECT_THAT(zeb->heard, IsEmpty());
}

TEST_F(HubTest, DropsAndCountsAMessageWithoutSubscribers) {
    const auto server = Join();
    server->Says("a");
    Settle();
    EXPECT_EQ(hub->Statistics().taken, 1);
    EXPECT_EQ(hub->Statistics().dropped, 1);
    EXPECT_EQ(hub->Statistics().delivered, 0);
}

TEST_F(HubTest, CarriesMessagesOfEverySizeInOrder) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    const std::vector<std::string> texts = {"a", std::string(300'000, 'b'), "", std::string(3'000'000, 'c'),
                                            "d"};
    for (const auto& text : texts)
        server->Says(text);
    Settle();
    EXPECT_EQ(zeb->heard, texts);
    EXPECT_EQ(server->client->Statistics().waiting, 0);
}

TEST_F(HubTest, CarriesMessagesByteByByte) {
    machine.network->Split(1);
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("a", "b"));
}

TEST_F(HubTest, HoldsStatesBackWhileTooMuchIsUnconfirmed) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    server->Says(std::string(300'000, 'x'));
    machine.loop->ProcessPending();  // written, not confirmed
    for (const char* text : {"C1", "C2", "C3"}) {
        server->States('C', text);
        machine.loop->ProcessPending();
    }
    EXPECT_GT(server->client->Statistics().replaced, 0);
    Settle();
    EXPECT_EQ(zeb->heard.back(), "C3");
}

TEST_F(HubTest, CutsAPeerThatReadsTooSlowly) {
    ListenWith({.unsent = 200'000});
    StreamPeer slow(machine, hub->Port());
    slow.Enters(kKey);
    slow.Hears("ZEB");
    slow.StopsReading();
    const auto server = Join();
    for (int i = 0; i < 10; ++i)
        server->Says(std::string(50'000, 'x'));
    Settle();
    EXPECT_EQ(hub->Statistics().peers, 1);
    EXPECT_THAT(notes, ElementsAre(HasSubstr("was cut")));
}

TEST_F(HubTest, LetsASlowPeerHarmNobodyElse) {
    ListenWith({.unsent = 200'000});
    StreamPeer slow(machine, hub->Port());
    slow.Enters(kKey);
    slow.Hears("ZEB");
    slow.StopsReading();
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    for (int i = 0; i < 10; ++i)
        server->Says(std::to_string(i) + std::string(50'000, 'x'));
    Settle();
    ASSERT_EQ(zeb->heard.size(), 10U);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(zeb->heard[static_cast<std::size_t>(i)][0], '0' + i);
}

TEST_F(HubTest, GivesASharedMessageToTheNextWhenASlowPeerIsCut) {
    ListenWith({.unsent = 200'000});
    StreamPeer slow(machine, hub->Port());
    slow.Enters(kKey);
    slow.Hears("ZEB", "1");
    slow.StopsReading();
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb, BusSubscription::Shared);
    Settle();
    for (const char first : {'a', 'b', 'c'}) {  // the third is the slow one's turn again, and too much
        server->Says(std::string(150'000, first));
        Settle();
    }
    ASSERT_EQ(zeb->heard.size(), 2U);
    EXPECT_EQ(zeb->heard[1][0], 'c');
}

// What the hub has said about an address: "+" reachable, "-" no longer.
struct HubReachTest : HubTest {
    HubReachTest() {
        hub->Reachable.Connect(
            owner, [this](const BusAddress& address, bool there) { said[address] += there ? '+' : '-'; });
    }
    std::map<BusAddress, std::string> said;
};

TEST_F(HubReachTest, SaysWhenAReplyAddressComesAndGoesWithItsPeer) {
    auto server = Join();
    const auto address = server->ReplyAddress();
    EXPECT_EQ(said[address], "+");
    machine.network->CutAll();
    Settle();
    EXPECT_EQ(said[address], "+-");
    Pass(250);
    EXPECT_EQ(said[address], "+-+");
}

TEST_F(HubReachTest, SaysThatAPeerIsGoneBeforeItsNewestConnectionIsThere) {
    StreamPeer old(machine, hub->Port());
    old.Enters(kKey);
    old.Hears("Mine");
    StreamPeer newer(machine, hub->Port());
    newer.Enters(kKey);
    newer.Hears("Mine");
    EXPECT_EQ((said[{"Mine", ""}]), "+-+");
}

TEST_F(HubReachTest, SaysThatAPeerIsGoneAfterItsLastWord) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    bool gone_before = true;
    zeb->client->ReceiveMessage.Connect(
        owner, [&](const auto&, bool&) { gone_before = said[server->ReplyAddress()] != "+"; });
    server->States('D', "down");
    server->client->Stop();
    Settle();
    EXPECT_FALSE(gone_before);
    EXPECT_EQ(said[server->ReplyAddress()], "+-");
}

TEST_F(HubReachTest, SaysItOfAnAddressOnceForAllItsSubscribers) {
    auto one = Join();
    auto other = Join();
    for (const auto* party : {&one, &other})
        (*party)->Hears(kBroadcast);
    Settle();
    one->HearsNoMore(kBroadcast);
    Settle();
    EXPECT_EQ(said[kBroadcast], "+");
    other->HearsNoMore(kBroadcast);
    Settle();
    EXPECT_EQ(said[kBroadcast], "+-");
}

TEST_F(HubReachTest, LetsItsHostDestroyItWhenAPeerIsGone) {
    const auto server = Join();
    hub->Reachable.Connect(owner, [&](const BusAddress&, bool) { hub.reset(); });
    machine.network->CutAll();
    Settle();
    EXPECT_EQ(hub, nullptr);
}

TEST_F(HubTest, StopsAndServesAgain) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    const auto port = hub->Port();
    hub->Stop();
    Settle();
    EXPECT_FALSE(zeb->client->Connected());
    server->Says("a");
    server->Says("b");
    hub->Listen("127.0.0.1", port, kKey);
    Pass(30'000);
    EXPECT_TRUE(server->client->Connected());
    server->Says("c");
    Settle();
    EXPECT_EQ(hub->Statistics().taken, 3);
    EXPECT_EQ(zeb->heard.back(), "c");
}

TEST_F(HubTest, TakesEveryMessageOnceOverACutConnection) {
    for (int steps = 1; steps < 60; ++steps) {
        machine.network->Split(steps % 2 == 0 ? 7 : 0);
        const auto before = hub->Statistics().taken;
        const auto server = Join();
        for (int i = 0; i < 5; ++i)
            server->Says(std::to_string(i));
        for (int i = 0; i < steps; ++i)
            machine.loop->ProcessPending();
        machine.network->CutAll();
        Pass(30'000);
        EXPECT_EQ(hub->Statistics().taken - before, 5) << "cut after " << steps;
    }
}

TEST_F(HubTest, GivesThePlaceOfAClientToItsNewestConnection) {
    StreamPeer old(machine, hub->Port());
    old.Enters(kKey);
    old.SaysBlock("Nobody", "a");
    StreamPeer newer(machine, hub->Port());
    newer.Enters(kKey);
    EXPECT_TRUE(old.ended);
    EXPECT_EQ(newer.Last().Type(), BusWelcome::kType);
    EXPECT_EQ(newer.Last().Field("Taken"), "1");
    EXPECT_EQ(hub->Statistics().peers, 1);
}

TEST_F(HubTest, RemembersWhatItTookOfAClientThatIsGone) {
    auto old = std::make_unique<StreamPeer>(machine, hub->Port());
    old->Enters(kKey);
    old->SaysBlock("Nobody", "a");
    old->SaysBlock("Nobody", "b");
    EXPECT_EQ(old->Last().Field("Taken"), "2");
    old.reset();
    Settle();
    StreamPeer again(machine, hub->Port());
    again.Enters(kKey);
    EXPECT_EQ(again.Last().Field("Taken"), "2");
}

TEST_F(HubTest, ForgetsTheOldestOfTooManyClientsThatAreGone) {
    ListenWith({.remembered = 1});
    auto old = std::make_unique<StreamPeer>(machine, hub->Port());
    old->Enters(kKey);
    old->SaysBlock("Nobody", "a");
    old.reset();
    Settle();
    Join()->client->Stop();
    StreamPeer again(machine, hub->Port());
    again.Enters(kKey);
    EXPECT_EQ(again.Last().Field("Taken"), "0");
}

TEST_F(HubTest, BelievesTheCountOfAClientThatItDoesNotKnow) {
    StreamPeer peer(machine, hub->Port());
    peer.Says(BusHello::kType, {{"Client", "c1"}, {"Nonce", "a1"}, {"Taken", "41"}});
    peer.SaysProof(kKey);
    EXPECT_EQ(peer.Last().Field("Taken"), "41");
}

TEST_F(HubTest, ConfirmsAllMessagesOfOneTurnAtOnce) {
    StreamPeer peer(machine, hub->Port());
    peer.Enters(kKey);
    const auto header = EncodeHeader(DataType::XML, 3, 1);
    const std::string frame = std::string(header.data(), header.size()) + "ZEBa";
    peer.SaysBytes(frame + frame + frame);
    EXPECT_THAT(peer.Types(), ElementsAre("BusChallenge", "BusWelcome", "BusTaken"));
    EXPECT_EQ(peer.Last().Field("Taken"), "3");
}

TEST_F(HubTest, WritesTheEndOfServiceBeforeTheClientStops) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    Settle();
    server->States('D', "down");
    server->client->Stop();
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("down"));
    EXPECT_EQ(hub->Statistics().peers, 1);
}

TEST_F(HubTest, LetsAHandlerStopTheClientWhenItsPlaceIsGained) {
    Party server(XMLBusClient::Create(machine.platform, {"127.0.0.1", hub->Port(), kKey}));
    server.client->ConnectionChanged.Connect(owner, [&](bool, const std::string&) { server.client->Stop(); });
    server.client->Start();
    server.Says("a");
    Settle();
    EXPECT_FALSE(server.client->Running());
    EXPECT_EQ(hub->Statistics().taken, 1);
    EXPECT_EQ(hub->Statistics().peers, 0);
}

TEST_F(HubTest, LetsAHandlerDropTheClientWhenItsPlaceIsGained) {
    auto server =
        std::make_unique<Party>(XMLBusClient::Create(machine.platform, {"127.0.0.1", hub->Port(), kKey}));
    server->client->ConnectionChanged.Connect(owner, [&](bool, const std::string&) { server.reset(); });
    server->client->Start();
    Settle();
    EXPECT_EQ(server, nullptr);
    EXPECT_EQ(hub->Statistics().peers, 0);
}

TEST_F(HubTest, LetsItsHostStopItFromANote) {
    hub->Note.Connect(owner, [&](const std::string&) { hub->Stop(); });
    StreamPeer(machine, hub->Port()).Enters("another");
    EXPECT_FALSE(hub->Listening());
}

TEST_F(HubTest, LetsItsHostDestroyItFromANote) {
    const auto server = Join();
    hub->Note.Connect(owner, [&](const std::string&) { hub.reset(); });
    StreamPeer(machine, hub->Port()).Enters("another");
    EXPECT_EQ(hub, nullptr);
    Settle();
    EXPECT_FALSE(server->client->Connected());
}

TEST_F(HubTest, LeavesNothingBehindWhenDestroyed) {
    StreamPeer peer(machine, hub->Port());
    hub.reset();
    Pass(2'000);
    EXPECT_TRUE(peer.ended);
    EXPECT_EQ(machine.loop->TimerCount(), 0U);
}

}  // namespace
}  // namespace kq
