// The bus client on a bus inside the process: addresses, subscriptions, sending, hearing, and its end.
#include "base/Convert.h"
#include "libs/xmlbus/Hub.h"
#include "libs/xmlbus/LocalBus.h"
#include "support/FakePlatform.h"
#include "xmlbus/BusTesting.h"
#include "xmlbus/ScriptedTransport.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kInvalid = NumberOf(RuntimeError::InvalidProcedureCall);

struct XMLBusClientTest : testing::Test {
    std::unique_ptr<Party> Join() {
        auto party = std::make_unique<Party>(XMLBusClient::Create(machine.platform, bus.MakeTransport()));
        party->client->Start();
        Settle();
        return party;
    }
    void Settle() { machine.loop->RunReady(); }

    FakePlatform machine;
    LocalBus bus{machine.platform};
    std::unique_ptr<Party> zeb = Join();
    std::unique_ptr<Party> server = Join();
};

TEST_F(XMLBusClientTest, StartsAndStopsRunning) {
    const auto client = XMLBusClient::Create(machine.platform, bus.MakeTransport());
    EXPECT_FALSE(client->Running());
    client->Start();
    EXPECT_TRUE(client->Running());
    EXPECT_FALSE(client->Connected());
    Settle();
    EXPECT_TRUE(client->Connected());
    client->Stop();
    EXPECT_FALSE(client->Running());
    EXPECT_FALSE(client->Connected());
}

TEST_F(XMLBusClientTest, NeedsAPlatformAndATransport) {
    constexpr auto kNotSet = NumberOf(RuntimeError::ObjectNotSet);
    EXPECT_EQ(ErrorOf([&] { XMLBusClient::Create(nullptr, bus.MakeTransport()); }), kNotSet);
    EXPECT_EQ(ErrorOf([&] { XMLBusClient::Create(nullptr, BusSettings()); }), kNotSet);
    EXPECT_EQ(ErrorOf([&] { XMLBusClient::Create(machine.platform, nullptr); }), kInvalid);
    EXPECT_EQ(ErrorOf([&] { LocalBus{nullptr}; }), kNotSet);
    EXPECT_EQ(ErrorOf([&] { Hub{nullptr}; }), kNotSet);
}

TEST_F(XMLBusClientTest, NamesThePlatformThatIsMissing) {
    try {
        XMLBusClient::Create(nullptr, BusSettings());
        ADD_FAILURE() << "no error";
    } catch (const Error& error) {
        EXPECT_EQ(error.Description(), "A bus client needs a platform, such as that of MakePlatform");
    }
}

TEST_F(XMLBusClientTest, HasAReplyAddressThatNoOtherClientHas) {
    EXPECT_EQ(server->client->ReplyType(), "Reply");
    EXPECT_EQ(server->client->ReplySubType().find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(server->client->ReplySubType().size(), 32U);
    EXPECT_NE(server->client->ReplySubType(), zeb->client->ReplySubType());
}

TEST_F(XMLBusClientTest, KeepsItsReplyAddressOverStopAndStart) {
    const auto before = server->ReplyAddress();
    server->client->Stop();
    server->client->Start();
    EXPECT_EQ(server->ReplyAddress(), before);
}

TEST_F(XMLBusClientTest, HearsItsReplyAddressWithoutASubscription) {
    zeb->Says("answer", server->ReplyAddress());
    Settle();
    EXPECT_THAT(server->heard, ElementsAre("answer"));
}

TEST_F(XMLBusClientTest, KeepsTheEnterpriseIdentifier) {
    EXPECT_EQ(server->client->EnterpriseID(), "");
    server->client->SetEnterpriseID("KQ1");
    EXPECT_EQ(server->client->EnterpriseID(), "KQ1");
}

TEST_F(XMLBusClientTest, HearsWhatItSubscribedTo) {
    zeb->Hears(kZeb);
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("a", "b"));
}

TEST_F(XMLBusClientTest, DoesNotHearOtherAddresses) {
    zeb->Hears(kZeb);
    server->Says("a", kBroadcast);
    server->Says("b", {"ZEB", "Other"});
    server->Says("c", {"zeb", ""});
    Settle();
    EXPECT_THAT(zeb->heard, IsEmpty());
}

TEST_F(XMLBusClientTest, HearsNothingAfterItsSubscriptionIsRemoved) {
    zeb->Hears(kZeb);
    zeb->HearsNoMore(kZeb);
    server->Says("a");
    Settle();
    EXPECT_THAT(zeb->heard, IsEmpty());
}

TEST_F(XMLBusClientTest, ReceivesTheWholeMessage) {
    XMLBusClient::MessagePtr received;
    Owner owner;
    zeb->client->ReceiveMessage.Connect(owner, [&](const auto& message, bool&) { received = message; });
    zeb->Hears(kZeb);
    auto message = Note("all <of> \"it\"");
    message.SetSchema("Schemas");
    message.Root().Add("Outer").Add("Inner", "text");
    server->client->Send(message);
    Settle();
    ASSERT_NE(received, nullptr);
    EXPECT_EQ(*received, message);
}

TEST_F(XMLBusClientTest, BringsAMessageToEveryOrdinarySubscriber) {
    const auto other = Join();
    zeb->Hears(kBroadcast);
    other->Hears(kBroadcast);
    server->Says("a", kBroadcast);
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("a"));
    EXPECT_THAT(other->heard, ElementsAre("a"));
}

TEST_F(XMLBusClientTest, BringsAMessageToOneOfTheLoginServersInTurn) {
    const auto other = Join();
    zeb->Hears(kZeb, BusSubscription::Shared);
    other->Hears(kZeb, BusSubscription::Shared);
    for (const char* text : {"a", "b", "c", "d"})
        server->Says(text);
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("a", "c"));
    EXPECT_THAT(other->heard, ElementsAre("b", "d"));
}

TEST_F(XMLBusClientTest, LeavesTheSharedMessagesToTheOthersWhenItStops) {
    const auto other = Join();
    zeb->Hears(kZeb, BusSubscription::Shared);
    other->Hears(kZeb, BusSubscription::Shared);
    zeb->client->Stop();
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_THAT(other->heard, ElementsAre("a", "b"));
}

TEST_F(XMLBusClientTest, BringsAMessageToOrdinarySubscribersBesideTheSharingOnes) {
    const auto watcher = Join();
    zeb->Hears(kZeb, BusSubscription::Shared);
    watcher->Hears(kZeb);
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("a", "b"));
    EXPECT_THAT(watcher->heard, ElementsAre("a", "b"));
}

TEST_F(XMLBusClientTest, HearsItsOwnMessagesWhenItSubscribedToThem) {
    server->Hears(kBroadcast);
    server->Says("a", kBroadcast);
    Settle();
    EXPECT_THAT(server->heard, ElementsAre("a"));
}

TEST_F(XMLBusClientTest, ChangesTheOptionWhenASubscriptionIsAddedTwice) {
    const auto other = Join();
    zeb->Hears(kZeb);
    other->Hears(kZeb, BusSubscription::Shared);
    zeb->Hears(kZeb, BusSubscription::Shared);
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_EQ(zeb->heard.size() + other->heard.size(), 2U);
    zeb->HearsNoMore(kZeb);
    server->Says("c");
    Settle();
    EXPECT_THAT(zeb->heard.size() + other->heard.size(), 3U);
}

TEST_F(XMLBusClientTest, HoldsSubscriptionsOverStopAndStart) {
    zeb->Hears(kZeb);
    zeb->client->Stop();
    zeb->client->Start();
    server->Says("a");
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("a"));
}

TEST_F(XMLBusClientTest, TakesSubscriptionsWhileItIsStopped) {
    zeb->client->Stop();
    zeb->Hears(kZeb);
    zeb->Hears(kBroadcast);
    zeb->HearsNoMore(kBroadcast);
    zeb->client->Start();
    Settle();
    server->Says("a");
    server->Says("b", kBroadcast);
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("a"));
}

TEST_F(XMLBusClientTest, RefusesToRemoveASubscriptionThatItDoesNotHave) {
    EXPECT_EQ(ErrorOf([&] { zeb->HearsNoMore(kZeb); }), kInvalid);
    zeb->Hears(kZeb);
    zeb->HearsNoMore(kZeb);
    EXPECT_EQ(ErrorOf([&] { zeb->HearsNoMore(kZeb); }), kInvalid);
}

TEST_F(XMLBusClientTest, RefusesToChangeTheSubscriptionOfItsReplyAddress) {
    EXPECT_EQ(ErrorOf([&] { zeb->Hears(zeb->ReplyAddress()); }), kInvalid);
    EXPECT_EQ(ErrorOf([&] { zeb->HearsNoMore(zeb->ReplyAddress()); }), kInvalid);
}

TEST_F(XMLBusClientTest, RefusesASubscriptionThatIsNoAddressOrHasAnUnknownOption) {
    EXPECT_EQ(ErrorOf([&] { zeb->Hears({"", "Broadcast"}); }), kInvalid);
    EXPECT_EQ(ErrorOf([&] { zeb->Hears({"A\nB", ""}); }), kInvalid);
    EXPECT_EQ(ErrorOf([&] { zeb->Hears(kZeb, static_cast<BusSubscription>(2)); }), kInvalid);
}

TEST_F(XMLBusClientTest, RefusesToSendWhenItIsNotRunning) {
    server->client->Stop();
    EXPECT_EQ(ErrorOf([&] { server->Says("a"); }), kInvalid);
}

TEST_F(XMLBusClientTest, RefusesToSendWithoutADestinationOrAType) {
    EXPECT_EQ(ErrorOf([&] { server->Says("a", BusAddress()); }), kInvalid);
    XMLMessage nameless;
    nameless.SetDestination(kZeb);
    EXPECT_EQ(ErrorOf([&] { server->client->Send(nameless); }), kInvalid);
}

TEST_F(XMLBusClientTest, RefusesAStateThatOutdatesSomethingUnknown) {
    for (const int unknown : {-1, 3}) {
        const BusState state{"Demo", static_cast<BusOutdates>(unknown)};
        EXPECT_EQ(ErrorOf([&] { server->client->Send(Note("a"), state); }), kInvalid);
    }
    EXPECT_EQ(server->client->Statistics().sent, 0);
}

TEST_F(XMLBusClientTest, RefusesAStateThatItWouldRefuseAsAMessage) {
    const auto huge = Note(std::string(XMLBusClient::kMaxMessage, 'x'));
    EXPECT_EQ(ErrorOf([&] { server->client->Send(huge, StateOf('C')); }), NumberOf(NetError::MessageTooLong));
    EXPECT_EQ(ErrorOf([&] { server->client->Send(Note("a", BusAddress()), StateOf('C')); }), kInvalid);
    server->client->Stop();
    EXPECT_EQ(ErrorOf([&] { server->States('C', "a"); }), kInvalid);
}

TEST_F(XMLBusClientTest, RefusesAMessageThatNoBusWouldCarry) {
    const std::string text(XMLBusClient::kMaxMessage, 'x');
    EXPECT_EQ(ErrorOf([&] { server->Says(text); }), NumberOf(NetError::MessageTooLong));
    EXPECT_EQ(server->client->Statistics().sent, 0);
}

TEST_F(XMLBusClientTest, CarriesALongMessageWhoseEstimateIsTooHigh) {
    zeb->Hears(kZeb);
    const std::string text(XMLBusClient::kMaxMessage / 4, '"');
    server->Says(text);
    Settle();
    ASSERT_EQ(zeb->heard.size(), 1U);
    EXPECT_EQ(zeb->heard[0], text);
}

// `count` elements, the message itself included.
XMLMessage MessageOf(std::size_t count) {
    auto message = Note("a");
    auto& list = message.Root().Add("Sessions");
    for (std::size_t i = 3; i < count; ++i)
        list.Add("SessionID", std::string(32, 'f'));
    return message;
}

TEST_F(XMLBusClientTest, CarriesTheLongestSessionListThatIsToBeExpected) {
    zeb->Hears(kZeb);
    server->client->Send(MessageOf(XMLBusClient::kMaxElements));
    Settle();
    EXPECT_EQ(zeb->client->Statistics().received, 1);
    EXPECT_EQ(zeb->client->Statistics().malformed, 0);
}

TEST_F(XMLBusClientTest, RefusesAMessageOfMoreElementsThanItsReceiverWouldRead) {
    const auto message = MessageOf(XMLBusClient::kMaxElements + 1);
    EXPECT_EQ(ErrorOf([&] { server->client->Send(message); }), NumberOf(NetError::MessageTooLong));
    EXPECT_EQ(server->client->Statistics().sent, 0);
}

TEST_F(XMLBusClientTest, DropsAndCountsAMessageOfTooManyElements) {
    const auto transport = std::make_shared<ScriptedTransport>();
    Party party(XMLBusClient::Create(machine.platform, transport));
    party.client->Start();
    transport->BecomesReady();
    transport->Brings(MessageOf(XMLBusClient::kMaxElements + 1).ToBusXML());
    EXPECT_THAT(party.heard, IsEmpty());
    EXPECT_EQ(party.client->Statistics().malformed, 1);
}

TEST_F(XMLBusClientTest, SendsTheMessageAsItWasWhenItWasSent) {
    zeb->Hears(kZeb);
    auto message = Note("before");
    server->client->Send(message);
    message.SetField("Text", "after");
    Settle();
    EXPECT_THAT(zeb->heard, ElementsAre("before"));
}

TEST_F(XMLBusClientTest, ShowsLaterHandlersThatAMessageWasHandled) {
    Owner owner;
    std::vector<bool> seen;
    const auto handler = [&](const auto&, bool& handled) { seen.push_back(std::exchange(handled, true)); };
    zeb->client->ReceiveMessage.Connect(owner, handler);
    zeb->client->ReceiveMessage.Connect(owner, handler);
    zeb->Hears(kZeb);
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_THAT(seen, ElementsAre(false, true, false, true));
}

TEST_F(XMLBusClientTest, DeliversNothingFromInsideSend) {
    server->Hears(kBroadcast);
    server->Says("a", kBroadcast);
    EXPECT_THAT(server->heard, IsEmpty());
}

TEST_F(XMLBusClientTest, LetsAHandlerAnswer) {
    Owner owner;
    zeb->client->ReceiveMessage.Connect(owner, [&](const auto& message, bool&) {
        zeb->Says("re: " + message->Field("Text"), server->ReplyAddress());
    });
    zeb->Hears(kZeb);
    server->Says("a");
    Settle();
    EXPECT_THAT(server->heard, ElementsAre("re: a"));
}

TEST_F(XMLBusClientTest, LetsAHandlerStopTheClient) {
    Owner owner;
    zeb->client->ReceiveMessage.Connect(owner, [&](const auto&, bool&) { zeb->client->Stop(); });
    zeb->Hears(kZeb);
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_FALSE(zeb->client->Running());
    EXPECT_EQ(zeb->heard.front(), "a");
}

TEST_F(XMLBusClientTest, LetsAHandlerStopAndDropTheClientWhenItsPlaceIsGained) {
    Owner owner;
    auto party = std::make_unique<Party>(XMLBusClient::Create(machine.platform, bus.MakeTransport()));
    zeb->Hears(kZeb);
    party->client->ConnectionChanged.Connect(owner, [&](bool there, const std::string&) {
        if (there) party->client->Stop();
        party.reset();
    });
    party->client->Start();
    party->Says("a");
    Settle();
    EXPECT_EQ(party, nullptr);
    EXPECT_THAT(zeb->heard, ElementsAre("a"));
}

TEST_F(XMLBusClientTest, LetsAHandlerDropTheClient) {
    Owner owner;
    zeb->Hears(kZeb);
    std::weak_ptr<XMLBusClient> watched = zeb->client;
    zeb->client->ReceiveMessage.Connect(owner, [&](const auto&, bool&) { zeb.reset(); });
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_TRUE(watched.expired());
}

TEST_F(XMLBusClientTest, LetsAHandlerDropTheClientWhenItsPlaceIsLost) {
    Owner owner;
    std::weak_ptr<XMLBusClient> watched = zeb->client;
    zeb->client->ConnectionChanged.Connect(owner, [&](bool, const std::string&) { zeb.reset(); });
    bus.SetUp(false);
    Settle();
    EXPECT_TRUE(watched.expired());
}

TEST_F(XMLBusClientTest, LeavesNoTimerWhenDropped) {
    bus.SetUp(false);
    Settle();
    EXPECT_GT(machine.loop->TimerCount(), 0U);
    zeb.reset();
    server.reset();
    EXPECT_EQ(machine.loop->TimerCount(), 0U);
}

TEST_F(XMLBusClientTest, TellsItsStatisticsEveryMinuteWhileItRuns) {
    server->Says("a");
    machine.loop->Advance(Milliseconds(60'000));
    ASSERT_EQ(server->statistics.size(), 1U);
    EXPECT_EQ(server->statistics[0].written, 1);
    machine.loop->Advance(Milliseconds(120'000));
    EXPECT_EQ(server->statistics.size(), 3U);
}

TEST_F(XMLBusClientTest, TellsItsStatisticsOnceMoreWhenItStops) {
    server->Says("a");
    server->client->Stop();
    ASSERT_EQ(server->statistics.size(), 1U);
    EXPECT_EQ(server->statistics[0].sent, 1);
    EXPECT_EQ(server->statistics[0].written, 1);
    machine.loop->Advance(Milliseconds(120'000));
    EXPECT_EQ(server->statistics.size(), 1U);
}

TEST_F(XMLBusClientTest, CountsWhatItReceives) {
    zeb->Hears(kZeb);
    server->Says("a");
    server->Says("b");
    Settle();
    EXPECT_EQ(zeb->client->Statistics().received, 2);
    EXPECT_EQ(server->client->Statistics().received, 0);
}

TEST_F(XMLBusClientTest, DropsAndCountsWhatIsNoMessage) {
    const auto transport = std::make_shared<ScriptedTransport>();
    Party party(XMLBusClient::Create(machine.platform, transport));
    party.client->Start();
    transport->BecomesReady();
    for (const char* text : {"", "no XML", "<a><b></a>", "<!DOCTYPE x []><x/>"})
        transport->Brings(text);
    EXPECT_THAT(party.heard, IsEmpty());
    EXPECT_EQ(party.client->Statistics().malformed, 4);
    EXPECT_EQ(party.client->Statistics().received, 0);
}

TEST_F(XMLBusClientTest, MakesTextOfAMessageOnlyWhenItsTurnComes) {
    const auto transport = std::make_shared<ScriptedTransport>();
    Party party(XMLBusClient::Create(machine.platform, transport));
    party.client->Start();
    transport->room = false;
    transport->BecomesReady();
    party.States('C', "old");
    Settle();
    party.States('C', "new");
    transport->HasRoomAgain();
    ASSERT_EQ(transport->written.size(), 1U);
    EXPECT_THAT(transport->written[0], testing::HasSubstr("new"));
}

}  // namespace
}  // namespace kq
