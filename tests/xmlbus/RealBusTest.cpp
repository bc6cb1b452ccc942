// The whole bus over real sockets of this machine: loopback only.
#include "libs/xmlbus/BusControl.h"
#include "libs/xmlbus/Hub.h"
#include "platform/Crypto.h"
#include "platform/Machine.h"
#include "xmlbus/BusTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;

struct RealBusTest : testing::Test {
    RealBusTest() { hub.Listen("127.0.0.1", 0, "open sesame"); }
    std::unique_ptr<Party> Join(const std::string& key = "open sesame") {
        auto party = std::make_unique<Party>(XMLBusClient::Create(platform, {"127.0.0.1", hub.Port(), key}));
        party->client->Start();
        return party;
    }
    // False when it took longer than a machine ever should.
    bool Await(const std::function<bool()>& done) {
        return platform->Loop()->RunUntil(done, platform->Loop()->Now() + Milliseconds(20'000));
    }
    // Both have their places and subscriptions: each has heard itself.
    bool AwaitPlaces(const std::vector<Party*>& parties) {
        for (auto* party : parties) {
            if (!Await([&] { return party->client->Connected(); })) return false;
            party->Says("there", party->ReplyAddress());
            if (!Await([&] { return !party->heard.empty(); })) return false;
            party->heard.clear();
        }
        return true;
    }

    PlatformPtr platform = MakePlatform();
    Hub hub{platform};
};

TEST_F(RealBusTest, CarriesARequestAndItsAnswer) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb, BusSubscription::Shared);
    ASSERT_TRUE(AwaitPlaces({zeb.get(), server.get()}));
    server->Says("request");
    ASSERT_TRUE(Await([&] { return !zeb->heard.empty(); }));
    zeb->Says("answer", server->ReplyAddress());
    ASSERT_TRUE(Await([&] { return !server->heard.empty(); }));
    EXPECT_THAT(server->heard, ElementsAre("answer"));
}

TEST_F(RealBusTest, GoesToTheHubThatWasSetWhileTheClientWasStopped) {
    Party party(XMLBusClient::Create(platform, BusSettings()));
    party.client->SetHub({"127.0.0.1", hub.Port(), "open sesame"});
    party.client->Start();
    EXPECT_TRUE(Await([&] { return party.client->Connected(); }));
    EXPECT_EQ(party.client->Hub().port, hub.Port());
}

TEST_F(RealBusTest, KeepsTheHubOfARunningClient) {
    const auto party = Join();
    EXPECT_EQ(ErrorOf([&] {
                  party->client->SetHub({"127.0.0.1", 1, ""});
              }),
              NumberOf(RuntimeError::InvalidProcedureCall));
    EXPECT_EQ(party->client->Hub().port, hub.Port());
}

TEST_F(RealBusTest, RefusesAnotherKey) {
    const auto stranger = Join("another");
    ASSERT_TRUE(Await([&] { return !stranger->changes.empty(); }));
    EXPECT_THAT(stranger->changes, ElementsAre("The hub refuses this client: Wrong key"));
}

TEST_F(RealBusTest, WritesTheEndOfServiceBeforeTheClientStops) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    ASSERT_TRUE(AwaitPlaces({zeb.get(), server.get()}));
    server->States('D', "down");
    server->client->Stop();
    ASSERT_TRUE(Await([&] { return !zeb->heard.empty(); }));
    EXPECT_THAT(zeb->heard, ElementsAre("down"));
}

TEST_F(RealBusTest, ComesBackToAHubThatWasStopped) {
    const auto server = Join();
    ASSERT_TRUE(AwaitPlaces({server.get()}));
    const auto port = hub.Port();
    hub.Stop();
    ASSERT_TRUE(Await([&] { return !server->client->Connected(); }));
    hub.Listen("127.0.0.1", port, "open sesame");
    EXPECT_TRUE(AwaitPlaces({server.get()}));
}

TEST_F(RealBusTest, CarriesManyMessagesInOrder) {
    const auto zeb = Join();
    const auto server = Join();
    zeb->Hears(kZeb);
    ASSERT_TRUE(AwaitPlaces({zeb.get(), server.get()}));
    std::vector<std::string> texts;
    for (int i = 0; i < 2'000; ++i) {
        texts.push_back(std::to_string(i) + std::string(500, 'x'));
        server->Says(texts.back());
    }
    ASSERT_TRUE(Await([&] { return zeb->heard.size() == texts.size(); }));
    EXPECT_EQ(zeb->heard, texts);
}

// The worked example of docs/wire.md: a change here is a change of the protocol.
TEST_F(RealBusTest, ProvesTheKeyAsTheWireDocumentShows) {
    const BusGreeting greeting{"00112233445566778899aabbccddeeff", std::string(64, '1'),
                               std::string(64, '2')};
    EXPECT_EQ(BusProofOf(*platform->Parts().crypto, "open sesame", kPeerRole, greeting),
              "b3280e5064b6d3b02cc90278c6c955c29fc8a7d9b9498edc8b7c462fecf80885");
    EXPECT_EQ(BusProofOf(*platform->Parts().crypto, "open sesame", kHubRole, greeting),
              "f47d45d1dbc525f2540d7672e886bdeca96d113dd2c29059a08ca110df43ae97");
}

}  // namespace
}  // namespace kq
