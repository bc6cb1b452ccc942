// Where the hub listens, and whom it lets in.
#include <limits>

#include "xmlbus/HubTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;

constexpr auto kInvalid = NumberOf(RuntimeError::InvalidProcedureCall);

using HubListenTest = HubBase;

TEST_F(HubListenTest, RefusesToListenBeyondLoopbackWithoutAKey) {
    for (const char* address :
         {"", "0.0.0.0", "192.0.2.10", "::", "::ffff:0.0.0.0", "127.example.org", "host"})
        EXPECT_EQ(ErrorOf([&] { hub->Listen(address, 0, ""); }), kInvalid) << address;
    EXPECT_FALSE(hub->Listening());
}

TEST_F(HubListenTest, SaysWhatToDoWhenItRefusesToListen) {
    try {
        hub->Listen("0.0.0.0", 0, "");
        ADD_FAILURE() << "listens";
    } catch (const Error& error) {
        EXPECT_EQ(error.Description(),
                  "A hub without a key listens on loopback only: give it a key, or the address 127.0.0.1");
    }
}

TEST_F(HubListenTest, TellsWhatItIsBoundTo) {
    EXPECT_EQ(hub->BoundAddress(), "");
    hub->Listen("localhost", 0, "");
    EXPECT_EQ(hub->BoundAddress(), "127.0.0.1");
}

TEST_F(HubListenTest, ListensOnLoopbackAddressesWithoutAKey) {
    for (const char* address : {"127.0.0.1", "127.0.0.2", "::1", "localhost"}) {
        hub->Listen(address, 0, "");
        EXPECT_TRUE(hub->Listening()) << address;
        hub->Stop();
    }
}

TEST_F(HubListenTest, ListensEverywhereWithAKeyAndWithoutAnAddress) {
    hub->Listen("", 0, kKey);
    EXPECT_TRUE(Join()->client->Connected());
    EXPECT_TRUE(Join(kKey, machine.network->OwnAddress())->client->Connected());
}

TEST_F(HubListenTest, RefusesLimitsThatMakeNoSense) {
    constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
    for (const Hub::Limits& limits : {Hub::Limits{.peers = 0},
                                      {.peers = -1},
                                      {.peers = kMost},
                                      {.greeting_peers = 0},
                                      {.greeting_peers = kMost},
                                      {.greeting_time = Milliseconds(0)},
                                      {.greeting_time = Milliseconds(-1)},
                                      {.greeting_time = Milliseconds::max()}})
        EXPECT_EQ(ErrorOf([&] { hub->SetLimits(limits); }), kInvalid);
}

TEST_F(HubListenTest, RefusesToListenTwice) {
    hub->Listen("", 0, kKey);
    EXPECT_EQ(ErrorOf([&] { hub->Listen("", 0, kKey); }), kInvalid);
}

TEST_F(HubListenTest, HasAPortOnlyWhileItListens) {
    EXPECT_EQ(hub->Port(), 0);
    hub->Listen("", 0, kKey);
    EXPECT_GT(hub->Port(), 0);
    hub->Stop();
    EXPECT_EQ(hub->Port(), 0);
}

TEST_F(HubListenTest, CanBeTriedAgainAfterAnErrorOfTheNetwork) {
    machine.network->FailNextListen(NetError::AddressInUse);
    EXPECT_EQ(ErrorOf([&] { hub->Listen("", 0, kKey); }), NumberOf(NetError::AddressInUse));
    EXPECT_FALSE(hub->Listening());
    hub->Listen("", 0, kKey);
    EXPECT_TRUE(Join()->client->Connected());
}

using HubGreetingTest = HubTest;

TEST_F(HubGreetingTest, AdmitsAClientThatKnowsTheKey) {
    const auto server = Join();
    EXPECT_TRUE(server->client->Connected());
    EXPECT_THAT(server->changes, ElementsAre("there"));
    EXPECT_EQ(hub->Statistics().peers, 1);
}

TEST_F(HubGreetingTest, RefusesAClientWithAnotherKey) {
    const auto server = Join("open says me");
    EXPECT_FALSE(server->client->Connected());
    EXPECT_THAT(server->changes, ElementsAre("The hub refuses this client: Wrong key"));
    EXPECT_EQ(hub->Statistics().refused, 1);
    EXPECT_EQ(hub->Statistics().peers, 0);
}

TEST_F(HubGreetingTest, RefusesAClientWithoutAKey) {
    EXPECT_FALSE(Join("")->client->Connected());
}

TEST_F(HubGreetingTest, AnswersAWrongKeyWithOneRefusalAndTheEnd) {
    StreamPeer peer(machine, hub->Port());
    peer.Enters("another");
    EXPECT_THAT(peer.Types(), ElementsAre("BusChallenge", "BusRefused"));
    ExpectRefused(peer, "Wrong key");
}

TEST_F(HubGreetingTest, TellsItsHostWhoWasRefusedWithoutTheKey) {
    StreamPeer(machine, hub->Port()).Enters("another");
    EXPECT_THAT(notes, ElementsAre("Bus peer 127.0.0.1 was refused: Wrong key"));
}

TEST_F(HubGreetingTest, DrawsANewChallengeForEveryPeer) {
    StreamPeer one(machine, hub->Port());
    StreamPeer other(machine, hub->Port());
    one.SaysHello();
    other.SaysHello();
    EXPECT_NE(one.Last().Field("Challenge"), other.Last().Field("Challenge"));
}

TEST_F(HubGreetingTest, DoesNotTakeItsOwnProofBackAsAPeers) {
    StreamPeer peer(machine, hub->Port());
    peer.SaysHello();
    const BusGreeting greeting{"c1", "a1", peer.Last().Field("Challenge")};
    peer.Says(BusProof::kType, {{"Proof", BusProofOf(*machine.crypto, kKey, kHubRole, greeting)}});
    ExpectRefused(peer, "Wrong key");
}

TEST_F(HubGreetingTest, ProvesItsKeyToThePeer) {
    StreamPeer peer(machine, hub->Port());
    peer.SaysHello();
    const BusGreeting greeting{"c1", "a1", peer.Last().Field("Challenge")};
    peer.SaysProof(kKey);
    EXPECT_EQ(peer.Last().Type(), BusWelcome::kType);
    EXPECT_EQ(peer.Last().Field("Proof"), BusProofOf(*machine.crypto, kKey, kHubRole, greeting));
}

TEST_F(HubGreetingTest, RefusesAPeerThatProvesNothingWithinFiveSeconds) {
    StreamPeer peer(machine, hub->Port());
    peer.SaysHello();
    Pass(4'999);
    EXPECT_FALSE(peer.ended);
    Pass(1);
    ExpectRefused(peer, "The key was not proven in time");
}

TEST_F(HubGreetingTest, LeavesAnAdmittedPeerAllItsTime) {
    const auto server = Join();
    Pass(600'000);
    EXPECT_TRUE(server->client->Connected());
}

TEST_F(HubGreetingTest, RefusesMessagesAndSubscriptionsBeforeTheProof) {
    StreamPeer talker(machine, hub->Port());
    talker.SaysBlock("ZEB", Note("a").ToBusXML());
    ExpectRefused(talker, "The key was not proven");
    StreamPeer listener(machine, hub->Port());
    listener.SaysHello();
    listener.Hears("ZEB");
    ExpectRefused(listener, "Unexpected message");
    EXPECT_EQ(hub->Statistics().taken, 0);
}

TEST_F(HubGreetingTest, EndsAPeerThatSendsAnotherProtocol) {
    StreamPeer peer(machine, hub->Port());
    peer.SaysBytes("GET / HTTP/1.1\r\nHost: hub\r\n\r\n");
    EXPECT_TRUE(peer.ended);
    EXPECT_EQ(notes.size(), 1U);
}

TEST_F(HubGreetingTest, EndsAPeerThatSendsALargeBlockBeforeTheProof) {
    StreamPeer peer(machine, hub->Port());
    peer.SaysBlock("", std::string(5'000, ' '));
    EXPECT_TRUE(peer.ended);
}

TEST_F(HubGreetingTest, RefusesControlThatIsNoMessage) {
    for (const char* text : {"", "hello", "<a><b></a>", "<!DOCTYPE x []><x/>", "<BusHello/>"}) {
        StreamPeer peer(machine, hub->Port());
        peer.SaysBlock("", text);
        EXPECT_THAT(peer.Types(), ElementsAre("BusRefused")) << text;
        EXPECT_TRUE(peer.ended);
    }
}

TEST_F(HubGreetingTest, RefusesAnotherVersionOfTheProtocol) {
    StreamPeer peer(machine, hub->Port());
    peer.SaysBlock("", XMLMessage(BusHello::kType, "2").ToBusXML());
    ExpectRefused(peer, "Unknown version of the bus protocol");
}

TEST_F(HubGreetingTest, RefusesAMalformedGreeting) {
    const std::string long_text(200, 'a');
    for (const StreamPeer::Fields& fields :
         {StreamPeer::Fields{{"Nonce", "a"}, {"Taken", "0"}},
          {{"Client", "a"}, {"Taken", "0"}},
          {{"Client", "a"}, {"Nonce", "a"}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", "-1"}},
          {{"Client", "a:b"}, {"Nonce", "a"}, {"Taken", "0"}},
          {{"Client", "a"}, {"Nonce", long_text}, {"Taken", "0"}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", ""}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", "1x"}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", " 1"}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", "1.5"}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", "9223372036854775807"}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", "1000000000000001"}},
          {{"Client", "a"}, {"Nonce", "a"}, {"Taken", "99999999999999999999"}}}) {
        StreamPeer peer(machine, hub->Port());
        peer.Says(BusHello::kType, fields);
        ExpectRefused(peer, "The greeting is malformed");
    }
}

TEST_F(HubGreetingTest, CountsOnFromTheLargestCountThatItAccepts) {
    StreamPeer peer(machine, hub->Port());
    peer.Says(BusHello::kType, {{"Client", "c1"}, {"Nonce", "a1"}, {"Taken", "1000000000000000"}});
    peer.SaysProof(kKey);
    peer.SaysBlock("Nobody", "a");
    EXPECT_EQ(peer.Last().Field("Taken"), "1000000000000001");
    EXPECT_FALSE(peer.ended);
}

TEST_F(HubGreetingTest, RefusesASecondGreeting) {
    StreamPeer peer(machine, hub->Port());
    peer.SaysHello();
    peer.SaysHello();
    ExpectRefused(peer, "Unexpected message");
}

TEST_F(HubGreetingTest, RefusesBlocksThatAreNoXML) {
    StreamPeer peer(machine, hub->Port());
    peer.Enters(kKey);
    peer.SaysBlock("ZEB", "bytes", DataType::Raw);
    ExpectRefused(peer, "The bus carries XML messages only");
}

TEST_F(HubGreetingTest, RefusesASubscriptionThatIsNoAddressOrHasAnUnknownOption) {
    StreamPeer nameless(machine, hub->Port());
    nameless.Enters(kKey);
    nameless.Hears("");
    ExpectRefused(nameless, "This is not an address of the bus");
    for (const char* option : {"2", "-1", "", "x", "99999999999999999999"}) {
        StreamPeer peer(machine, hub->Port());
        peer.Enters(kKey);
        peer.Hears("ZEB", option);
        ExpectRefused(peer, "Unknown option of a subscription");
    }
}

TEST_F(HubGreetingTest, RefusesAMessageForWhatIsNoAddress) {
    StreamPeer peer(machine, hub->Port());
    peer.Enters(kKey);
    peer.SaysBlock("ZEB/", Note("a").ToBusXML());
    ExpectRefused(peer, "This is not an address of the bus");
}

TEST_F(HubGreetingTest, RefusesMoreSubscriptionsThanItsLimit) {
    ListenWith({.subscriptions = 2});
    StreamPeer peer(machine, hub->Port());
    peer.Enters(kKey);
    for (const char* type : {"A", "B"})
        peer.Hears(type);
    EXPECT_FALSE(peer.ended);
    peer.Hears("C");
    ExpectRefused(peer, "Too many subscriptions");
}

TEST_F(HubGreetingTest, CutsTheOldestOfTooManyPeersThatHaveProvenNothing) {
    ListenWith({.greeting_peers = 2});
    StreamPeer oldest(machine, hub->Port());
    StreamPeer second(machine, hub->Port());
    EXPECT_FALSE(oldest.ended);
    StreamPeer newest(machine, hub->Port());
    ExpectRefused(oldest, "Too many peers have not proven the key");
    EXPECT_FALSE(second.ended);
    newest.Enters(kKey);
    EXPECT_EQ(newest.Last().Type(), BusWelcome::kType);
}

TEST_F(HubGreetingTest, LetsAPeerInWhileStrangersKeepAllTheirPlacesBusy) {
    ListenWith({.peers = 2, .greeting_peers = 3});
    const auto first = Join();
    std::vector<std::unique_ptr<StreamPeer>> strangers;
    for (int i = 0; i < 20; ++i)
        strangers.push_back(std::make_unique<StreamPeer>(machine, hub->Port()));
    EXPECT_TRUE(Join()->client->Connected());
    EXPECT_TRUE(first->client->Connected());
}

TEST_F(HubGreetingTest, LetsAPeerComeBackWhenAllPlacesAreTaken) {
    ListenWith({.peers = 1});
    StreamPeer old(machine, hub->Port());
    old.Enters(kKey);
    StreamPeer again(machine, hub->Port());
    again.Enters(kKey);
    EXPECT_TRUE(old.ended);
    EXPECT_EQ(again.Last().Type(), BusWelcome::kType);
}

TEST_F(HubGreetingTest, TakesNoMorePeersThanItsLimit) {
    ListenWith({.peers = 2});
    const auto one = Join();
    const auto other = Join();
    const auto third = Join();
    EXPECT_TRUE(other->client->Connected());
    EXPECT_FALSE(third->client->Connected());
    EXPECT_THAT(third->changes, ElementsAre("The hub refuses this client: Too many peers"));
    one->client->Stop();
    Pass(15'000);
    EXPECT_TRUE(third->client->Connected());
}

}  // namespace
}  // namespace kq
