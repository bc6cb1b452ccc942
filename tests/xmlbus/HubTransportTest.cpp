// The client's way to a hub that lies, stalls or is not there; the test plays the hub.
#include "libs/xmlbus/HubTransport.h"
#include "support/FakePlatform.h"
#include "xmlbus/BusTesting.h"
#include "xmlbus/StreamPeer.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kKey[] = "open sesame";
constexpr char kNoBus[] = "The other side does not speak the protocol of the bus";

struct HubTransportTest : testing::Test {
    HubTransportTest() {
        listener->SetHandler([this] {
            std::int32_t error = 0;
            if (auto stream = listener->Accept(&error)) waiting.push_back(std::move(stream));
        });
        party.client->Start();
        Settle();
    }
    void Settle() { machine.loop->RunReady(); }
    void Pass(int milliseconds) { machine.loop->Advance(Milliseconds(milliseconds)); }
    // The hub takes the newest connection.
    void Accept() {
        ASSERT_FALSE(waiting.empty());
        hub = std::make_unique<StreamPeer>(machine, std::move(waiting.back()));
        waiting.clear();
        Settle();
    }
    BusGreeting Greeting() const {
        const auto hello = ParseBusControl(hub->blocks.front().data);
        return {hello.Field("Client"), hello.Field("Nonce"), "c0ffee"};
    }
    void Challenge() { hub->Says(BusChallenge::kType, {{"Challenge", "c0ffee"}}); }
    void Welcome(const std::string& taken = "0", const std::string& key = kKey) {
        hub->Says(BusWelcome::kType,
                  {{"Proof", BusProofOf(*machine.crypto, key, kHubRole, Greeting())}, {"Taken", taken}});
    }
    void LetIn(const std::string& taken = "0") {
        Accept();
        Challenge();
        Welcome(taken);
    }
    // The addresses of the messages that the hub has got.
    std::vector<std::string> Got() const {
        std::vector<std::string> tags;
        for (const auto& block : hub->blocks)
            if (!block.tag.empty()) tags.push_back(block.tag);
        return tags;
    }

    FakePlatform machine;
    std::unique_ptr<ListenSocket> listener = machine.network->Listen("127.0.0.1", 0);
    Party party{XMLBusClient::Create(machine.platform, {"127.0.0.1", listener->LocalPort(), kKey})};
    std::vector<std::unique_ptr<StreamSocket>> waiting;
    std::unique_ptr<StreamPeer> hub;
};

TEST_F(HubTransportTest, StartsWithoutWaitingForTheConnection) {
    machine.network->BlackHole("192.0.2.1", 7000);
    Party lonely(XMLBusClient::Create(machine.platform, {"192.0.2.1", 7000, kKey}));
    const auto start = machine.loop->Now();
    lonely.client->Start();
    EXPECT_EQ(machine.loop->Now(), start);
    EXPECT_TRUE(lonely.client->Running());
}

TEST_F(HubTransportTest, GreetsFirst) {
    Accept();
    EXPECT_THAT(hub->Types(), ElementsAre("BusHello"));
    EXPECT_EQ(hub->Last().Field("Taken"), "0");
    EXPECT_EQ(hub->Last().Field("Nonce").size(), 64U);
}

TEST_F(HubTransportTest, ProvesItsKey) {
    Accept();
    Challenge();
    EXPECT_EQ(hub->Last().Type(), BusProof::kType);
    EXPECT_EQ(hub->Last().Field("Proof"), BusProofOf(*machine.crypto, kKey, kPeerRole, Greeting()));
}

TEST_F(HubTransportTest, HasItsPlaceOnlyAfterTheHubHasProvenItsKey) {
    Accept();
    Challenge();
    EXPECT_FALSE(party.client->Connected());
    Welcome();
    EXPECT_TRUE(party.client->Connected());
}

TEST_F(HubTransportTest, LeavesAHubThatDoesNotKnowTheKey) {
    Accept();
    Challenge();
    Welcome("0", "another");
    EXPECT_THAT(party.changes, ElementsAre("The hub does not know the key of this bus"));
    EXPECT_TRUE(hub->ended);
}

TEST_F(HubTransportTest, DoesNotTakeItsOwnProofBackAsTheHubs) {
    Accept();
    Challenge();
    hub->Says(BusWelcome::kType, {{"Proof", hub->Last().Field("Proof")}, {"Taken", "0"}});
    EXPECT_FALSE(party.client->Connected());
}

TEST_F(HubTransportTest, DrawsANewNonceForEveryAttempt) {
    Accept();
    const auto first = Greeting();
    hub.reset();
    Pass(250);
    Accept();
    EXPECT_NE(Greeting().nonce, first.nonce);
    EXPECT_EQ(Greeting().client, first.client);
}

TEST_F(HubTransportTest, LeavesAHubThatDoesNotAnswerWithinTenSeconds) {
    Accept();
    Pass(9'999);
    EXPECT_FALSE(hub->ended);
    Pass(1);
    EXPECT_TRUE(hub->ended);
    EXPECT_THAT(party.changes, ElementsAre("The hub does not answer"));
}

TEST_F(HubTransportTest, LeavesAHubThatSkipsAStep) {
    Accept();
    Welcome();
    EXPECT_THAT(party.changes, ElementsAre(kNoBus));
}

TEST_F(HubTransportTest, LeavesAHubThatBringsMessagesBeforeTheWelcome) {
    Accept();
    hub->SaysBlock("ZEB", Note("a").ToBusXML());
    EXPECT_THAT(party.changes, ElementsAre(kNoBus));
    EXPECT_THAT(party.heard, IsEmpty());
}

TEST_F(HubTransportTest, LeavesAHubAtTheHeaderOfALargeBlockBeforeTheWelcome) {
    Accept();
    hub->SaysHeader(DataType::XML, 9'000);
    EXPECT_TRUE(hub->ended);
}

TEST_F(HubTransportTest, LeavesAHubAtTheHeaderOfALargeBlockOfBytes) {
    LetIn();
    hub->SaysHeader(DataType::Raw, 9'000);
    EXPECT_TRUE(hub->ended);
}

TEST_F(HubTransportTest, TakesALargeMessageFromAHubThatHasProvenItsKey) {
    LetIn();
    const std::string text(20'000, 'a');
    hub->SaysBlock("ZEB", Note(text).ToBusXML());
    EXPECT_THAT(party.heard, ElementsAre(text));
}

TEST_F(HubTransportTest, LeavesAHubWhoseControlIsNoMessage) {
    Accept();
    hub->SaysBlock("", "what?");
    EXPECT_THAT(party.changes, ElementsAre(kNoBus));
}

TEST_F(HubTransportTest, LeavesAHubThatSendsWhatIsNoXML) {
    LetIn();
    hub->SaysBlock("ZEB", "bytes", DataType::Raw);
    EXPECT_EQ(party.changes.back(), kNoBus);
}

TEST_F(HubTransportTest, LeavesAHubWithAnEmptyOrEndlessChallenge) {
    for (const std::string& challenge : {std::string(), std::string(200, 'a')}) {
        Accept();
        hub->Says(BusChallenge::kType, {{"Challenge", challenge}});
        EXPECT_TRUE(hub->ended);
        Pass(500);
    }
}

TEST_F(HubTransportTest, LeavesAHubThatConfirmsWhatWasNeverSent) {
    LetIn();
    party.Says("a");
    Settle();
    hub->Says(BusTaken::kType, {{"Taken", "2"}});
    EXPECT_FALSE(party.client->Connected());
    Pass(250);
    LetIn("7");
    EXPECT_FALSE(party.client->Connected());
}

TEST_F(HubTransportTest, LeavesAHubWithAnInvalidCount) {
    for (const char* count : {"-1", "", "x", "9223372036854775807", "-9223372036854775808", "1e0"}) {
        LetIn();
        party.Says("a", {"A", ""});
        Settle();
        hub->Says(BusTaken::kType, {{"Taken", count}});
        EXPECT_TRUE(hub->ended) << count;
        Pass(15'000);
    }
}

TEST_F(HubTransportTest, LeavesAHubThatTakesAConfirmationBack) {
    LetIn();
    party.Says("a");
    Settle();
    hub->Says(BusTaken::kType, {{"Taken", "1"}});
    EXPECT_TRUE(party.client->Connected());
    hub->Says(BusTaken::kType, {{"Taken", "0"}});
    EXPECT_FALSE(party.client->Connected());
}

TEST_F(HubTransportTest, LeavesAHubThatConfirmsNothingForThirtySeconds) {
    LetIn();
    party.Says("a");
    Pass(29'999);
    EXPECT_TRUE(party.client->Connected());
    Pass(1);
    EXPECT_FALSE(party.client->Connected());
    EXPECT_EQ(party.changes.back(), "The hub has stopped confirming messages");
}

TEST_F(HubTransportTest, StaysWithASilentHubWhenNothingIsUnconfirmed) {
    LetIn();
    party.Says("a");
    Settle();
    hub->Says(BusTaken::kType, {{"Taken", "1"}});
    Pass(600'000);
    EXPECT_TRUE(party.client->Connected());
}

TEST_F(HubTransportTest, WritesAgainWhatWasNotConfirmed) {
    LetIn();
    for (const char* type : {"A", "B", "C"})
        party.Says("x", {type, ""});
    Settle();
    EXPECT_THAT(Got(), ElementsAre("A", "B", "C"));
    hub->Says(BusTaken::kType, {{"Taken", "1"}});
    hub.reset();
    Settle();
    party.Says("x", {"D", ""});
    Pass(250);
    LetIn("1");
    EXPECT_THAT(Got(), ElementsAre("B", "C", "D"));
}

TEST_F(HubTransportTest, DoesNotWriteAgainWhatTheHubTookBeforeTheConnectionWasLost) {
    LetIn();
    for (const char* type : {"A", "B", "C"})
        party.Says("x", {type, ""});
    Settle();
    hub.reset();
    Pass(250);
    LetIn("2");
    EXPECT_THAT(Got(), ElementsAre("C"));
}

TEST_F(HubTransportTest, DoesNotWriteAgainWhatHasExpiredAndCountsOn) {
    LetIn();
    party.client->Send(Note("x", {"A", ""}), Milliseconds(100));
    party.Says("x", {"B", ""});
    Settle();
    hub.reset();
    Pass(250);
    LetIn();
    EXPECT_THAT(Got(), ElementsAre("B"));
    EXPECT_EQ(party.client->Statistics().expired, 1);
    hub->Says(BusTaken::kType, {{"Taken", "1"}});
    EXPECT_TRUE(party.client->Connected());
}

TEST_F(HubTransportTest, CountsNothingAsExpiredThatTheHubTookBeforeTheConnectionWasLost) {
    LetIn();
    party.client->Send(Note("x"), Milliseconds(100));
    Settle();
    hub.reset();
    Pass(250);
    LetIn("1");
    EXPECT_EQ(party.client->Statistics().expired, 0);
}

TEST_F(HubTransportTest, SubscribesBeforeItWritesAgain) {
    party.Hears(kBroadcast);
    LetIn();
    party.Says("x");
    Settle();
    hub.reset();
    Pass(250);
    LetIn();
    ASSERT_EQ(hub->blocks.size(), 5U);  // greeting, proof, two subscriptions, the message
    EXPECT_EQ(hub->blocks.back().tag, "ZEB");
    EXPECT_EQ(ParseBusControl(hub->blocks[3].data).Type(), BusSubscribe::kType);
}

TEST_F(HubTransportTest, TellsTheCountThatItKnowsInItsGreeting) {
    LetIn();
    party.Says("x");
    Settle();
    hub->Says(BusTaken::kType, {{"Taken", "1"}});
    hub.reset();
    Pass(250);
    Accept();
    EXPECT_EQ(hub->Last().Field("Taken"), "1");
}

TEST_F(HubTransportTest, WritesNoMoreThanAWindowUnconfirmed) {
    LetIn();
    for (int i = 0; i < 1'200; ++i)
        party.Says("x");
    Settle();
    EXPECT_EQ(Got().size(), 1'000U);
    hub->Says(BusTaken::kType, {{"Taken", "1000"}});
    EXPECT_EQ(Got().size(), 1'200U);
}

TEST_F(HubTransportTest, StopsOnlyWhenTheHubHasConfirmed) {
    LetIn();
    party.States('D', "down");
    const auto start = machine.loop->Now();
    machine.loop->StartTimer(Milliseconds(400), [&] { hub->Says(BusTaken::kType, {{"Taken", "1"}}); });
    party.client->Stop();
    EXPECT_EQ(machine.loop->Now() - start, Milliseconds(400));
    Settle();
    EXPECT_TRUE(hub->ended);
}

TEST_F(HubTransportTest, StopsAfterOneSecondWithoutAConfirmation) {
    LetIn();
    party.States('D', "down");
    const auto start = machine.loop->Now();
    party.client->Stop();
    EXPECT_EQ(machine.loop->Now() - start, Milliseconds(1'000));
}

TEST_F(HubTransportTest, StopsWhileItConnects) {
    machine.network->BlackHole("192.0.2.1", 7000);
    Party lonely(XMLBusClient::Create(machine.platform, {"192.0.2.1", 7000, kKey}));
    lonely.client->Start();
    machine.loop->StartTimer(Milliseconds(100), [&] { lonely.client->Stop(); });
    Pass(200);
    EXPECT_FALSE(lonely.client->Running());
    Pass(60'000);
    EXPECT_THAT(lonely.changes, IsEmpty());
}

TEST_F(HubTransportTest, CanBeDroppedWhileItConnects) {
    machine.network->BlackHole("192.0.2.1", 7000);
    auto lonely = std::make_unique<Party>(XMLBusClient::Create(machine.platform, {"192.0.2.1", 7000, kKey}));
    lonely->client->Start();
    machine.loop->StartTimer(Milliseconds(100), [&] { lonely.reset(); });
    Pass(60'000);
    EXPECT_EQ(lonely, nullptr);
}

TEST_F(HubTransportTest, TellsWhyThereIsNoConnection) {
    Party nowhere(XMLBusClient::Create(machine.platform, {"127.0.0.1", 1, kKey}));
    Party portless(XMLBusClient::Create(machine.platform, {"127.0.0.1", 0, kKey}));
    nowhere.client->Start();
    portless.client->Start();
    Settle();
    EXPECT_THAT(nowhere.changes, ElementsAre(NetErrorText(NumberOf(NetError::Refused))));
    EXPECT_EQ(portless.changes.size(), 1U);
}

}  // namespace
}  // namespace kq
