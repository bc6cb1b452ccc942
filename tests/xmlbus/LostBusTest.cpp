// A bus that goes away and comes back, and the end of a client that still has something to say.
#include "libs/xmlbus/LocalBus.h"
#include "support/FakePlatform.h"
#include "xmlbus/BusTesting.h"
#include "xmlbus/ScriptedTransport.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct LostBusTest : testing::Test {
    LostBusTest() {
        zeb.Hears(kZeb);
        zeb.client->Start();
        server.client->Start();
        Settle();
        zeb.changes.clear();
        server.changes.clear();
    }
    void Settle() { machine.loop->RunReady(); }
    void Pass(int milliseconds) { machine.loop->Advance(Milliseconds(milliseconds)); }
    void GoAway() {
        bus.SetUp(false);
        Settle();
    }
    void ComeBack() {
        bus.SetUp(true);
        Pass(30'000);
    }
    // How long `action` kept the caller, in milliseconds.
    template <class Action>
    std::int64_t TimeOf(Action action) {
        const auto start = machine.loop->Now();
        action();
        return std::chrono::duration_cast<Milliseconds>(machine.loop->Now() - start).count();
    }

    FakePlatform machine;
    LocalBus bus{machine.platform};
    Party zeb{XMLBusClient::Create(machine.platform, bus.MakeTransport())};
    Party server{XMLBusClient::Create(machine.platform, bus.MakeTransport())};
};

TEST_F(LostBusTest, KeepsRunningWithoutItsPlace) {
    GoAway();
    EXPECT_TRUE(server.client->Running());
    EXPECT_FALSE(server.client->Connected());
}

TEST_F(LostBusTest, TellsThatThePlaceWasLostAndGained) {
    GoAway();
    ComeBack();
    EXPECT_THAT(server.changes, ElementsAre("The bus inside this process is away", "there"));
}

TEST_F(LostBusTest, TellsOfFailingAttemptsOnlyOnce) {
    GoAway();
    Pass(60'000);
    EXPECT_EQ(server.changes.size(), 1U);
}

TEST_F(LostBusTest, DeliversInOrderWhatWasSentMeanwhile) {
    GoAway();
    for (const char* text : {"a", "b", "c"})
        server.Says(text);
    Pass(1'000);
    EXPECT_THAT(zeb.heard, IsEmpty());
    ComeBack();
    EXPECT_THAT(zeb.heard, ElementsAre("a", "b", "c"));
}

TEST_F(LostBusTest, DeliversWhatWasWrittenButHadNotArrived) {
    server.Says("a");
    bus.SetUp(false);
    server.Says("b");
    Settle();
    ComeBack();
    EXPECT_THAT(zeb.heard, ElementsAre("a", "b"));
}

TEST_F(LostBusTest, NeverDeliversWhatExpiredMeanwhile) {
    GoAway();
    server.client->Send(Note("short"), Milliseconds(5'000));
    server.client->Send(Note("long"), Milliseconds(90'000));
    server.Says("for ever");
    Pass(10'000);
    EXPECT_EQ(server.client->Statistics().expired, 1);
    EXPECT_EQ(server.client->Statistics().waiting, 2);
    ComeBack();
    EXPECT_THAT(zeb.heard, ElementsAre("long", "for ever"));
}

TEST_F(LostBusTest, NeverDeliversWhatWasWrittenAndExpiredBeforeItArrived) {
    server.client->Send(Note("short"), Milliseconds(5'000));
    machine.loop->ProcessPending();
    bus.SetUp(false);
    server.Says("for ever");
    Pass(10'000);
    ComeBack();
    EXPECT_THAT(zeb.heard, ElementsAre("for ever"));
    EXPECT_EQ(server.client->Statistics().expired, 1);
}

TEST_F(LostBusTest, SubscribesAgain) {
    GoAway();
    ComeBack();
    server.Says("a");
    zeb.Says("b", server.ReplyAddress());
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("a"));
    EXPECT_THAT(server.heard, ElementsAre("b"));
}

TEST_F(LostBusTest, TakesSubscriptionsWhileTheBusIsAway) {
    GoAway();
    zeb.HearsNoMore(kZeb);
    zeb.Hears(kBroadcast);
    ComeBack();
    server.Says("a");
    server.Says("b", kBroadcast);
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("b"));
}

TEST_F(LostBusTest, CountsReconnections) {
    EXPECT_EQ(server.client->Statistics().reconnects, 0);
    for (int i = 0; i < 2; ++i) {
        GoAway();
        ComeBack();
    }
    EXPECT_EQ(server.client->Statistics().reconnects, 2);
}

TEST_F(LostBusTest, ReplacesStatesWhileTheBusIsAway) {
    GoAway();
    for (const char* text : {"C1", "C2", "C3"}) {
        server.States('C', text);
        Settle();
    }
    ComeBack();
    EXPECT_THAT(zeb.heard, ElementsAre("C3"));
}

TEST_F(LostBusTest, KeepsWhatIsSentBeforeTheBusIsThereForTheFirstTime) {
    bus.SetUp(false);
    Party early{XMLBusClient::Create(machine.platform, bus.MakeTransport())};
    early.client->Start();
    early.Says("a");
    Settle();
    ComeBack();
    EXPECT_THAT(zeb.heard, ElementsAre("a"));
}

TEST_F(LostBusTest, WritesTheEndOfServiceBeforeItStops) {
    server.States('D', "down");
    server.client->Stop();
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("down"));
}

TEST_F(LostBusTest, DeliversWhatWasWrittenByAClientThatIsDropped) {
    auto leaver = std::make_unique<Party>(XMLBusClient::Create(machine.platform, bus.MakeTransport()));
    leaver->client->Start();
    Settle();
    leaver->Says("a");
    machine.loop->ProcessPending();
    leaver.reset();
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("a"));
}

TEST_F(LostBusTest, StopsAtOnceWhenNothingWaits) {
    EXPECT_EQ(TimeOf([&] { server.client->Stop(); }), 0);
    GoAway();
    EXPECT_EQ(TimeOf([&] { zeb.client->Stop(); }), 0);
}

TEST_F(LostBusTest, GivesUpAfterOneSecondWhenTheBusTakesNothing) {
    bus.SetRoom(false);
    server.States('D', "down");
    EXPECT_EQ(TimeOf([&] { server.client->Stop(); }), 1'000);
    EXPECT_FALSE(server.client->Running());
}

TEST_F(LostBusTest, GivesUpAfterOneSecondWhenTheBusIsAway) {
    GoAway();
    server.States('D', "down");
    EXPECT_EQ(TimeOf([&] { server.client->Stop(); }), 1'000);
}

TEST_F(LostBusTest, WritesWhatWaitsWhenTheBusComesBackDuringTheSecond) {
    GoAway();
    Pass(20'000);  // the next regular attempt is many seconds away
    server.States('D', "down");
    machine.loop->StartTimer(Milliseconds(300), [&] { bus.SetUp(true); });
    EXPECT_EQ(TimeOf([&] { server.client->Stop(); }), 500);
    EXPECT_EQ(server.client->Statistics().waiting, 0);
}

TEST_F(LostBusTest, DeliversAfterTheNextStartWhatCouldNotBeWrittenBeforeTheStop) {
    bus.SetRoom(false);
    server.States('D', "down");
    server.client->Stop();
    bus.SetRoom(true);
    Settle();
    EXPECT_THAT(zeb.heard, IsEmpty());
    server.client->Start();
    server.States('C', "up");
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("down", "up"));
}

TEST_F(LostBusTest, SendsNothingNewWhileItStops) {
    bus.SetRoom(false);
    server.Says("a");
    std::int32_t error = 0;
    machine.loop->StartTimer(Milliseconds(500), [&] { error = ErrorOf([&] { server.Says("b"); }); });
    server.client->Stop();
    EXPECT_EQ(error, NumberOf(RuntimeError::InvalidProcedureCall));
}

TEST_F(LostBusTest, StaysRunningWhenItIsStartedWhileItStops) {
    bus.SetRoom(false);
    server.Says("a");
    machine.loop->StartTimer(Milliseconds(500), [&] { server.client->Start(); });
    EXPECT_EQ(TimeOf([&] { server.client->Stop(); }), 500);
    EXPECT_TRUE(server.client->Running());
    zeb.Says("answer", server.ReplyAddress());
    bus.SetRoom(true);
    Settle();
    EXPECT_THAT(server.heard, ElementsAre("answer"));
}

TEST_F(LostBusTest, StopsOnceWhenStoppedWhileItStops) {
    bus.SetRoom(false);
    server.Says("a");
    machine.loop->StartTimer(Milliseconds(500), [&] { server.client->Stop(); });
    EXPECT_EQ(TimeOf([&] { server.client->Stop(); }), 1'000);
    EXPECT_EQ(server.statistics.size(), 1U);
}

TEST_F(LostBusTest, LetsATaskDropTheClientWhileItStops) {
    bus.SetRoom(false);
    auto leaver = std::make_unique<Party>(XMLBusClient::Create(machine.platform, bus.MakeTransport()));
    leaver->client->Start();
    leaver->Says("a");
    const std::weak_ptr<XMLBusClient> watched = leaver->client;
    machine.loop->StartTimer(Milliseconds(500), [&] { leaver.reset(); });
    watched.lock()->Stop();
    EXPECT_TRUE(watched.expired());
}

// The delays between attempts, as a transport sees them.
struct ReconnectionTest : testing::Test {
    ReconnectionTest() { client->Start(); }
    // The milliseconds from a failure to the next attempt.
    std::int64_t DelayAfterAFailure(const std::string& text = "away") {
        const auto start = machine.loop->Now();
        const int opened = transport->opened;
        transport->Fails(text);
        machine.loop->RunUntil([&] { return transport->opened > opened; }, EventLoop::TimePoint::max());
        return std::chrono::duration_cast<Milliseconds>(machine.loop->Now() - start).count();
    }

    FakePlatform machine;
    std::shared_ptr<ScriptedTransport> transport = std::make_shared<ScriptedTransport>();
    std::shared_ptr<XMLBusClient> client = XMLBusClient::Create(machine.platform, transport);
};

TEST_F(ReconnectionTest, TriesAtOnceWhenStarted) {
    EXPECT_EQ(transport->opened, 1);
}

TEST_F(ReconnectionTest, DoublesTheDelayFromAQuarterSecondUpToFifteen) {
    std::vector<std::int64_t> delays;
    for (int i = 0; i < 9; ++i)
        delays.push_back(DelayAfterAFailure());
    EXPECT_THAT(delays, ElementsAre(250, 500, 1'000, 2'000, 4'000, 8'000, 15'000, 15'000, 15'000));
}

TEST_F(ReconnectionTest, StartsOverAfterAPlaceThatWasHeldForLongerThanTheDelay) {
    for (int i = 0; i < 4; ++i)
        DelayAfterAFailure();
    transport->BecomesReady();
    machine.loop->Advance(Milliseconds(2'000));
    EXPECT_EQ(DelayAfterAFailure(), 250);
}

TEST_F(ReconnectionTest, GoesOnDoublingWhenAPlaceIsLostAtOnce) {
    for (int i = 0; i < 4; ++i)
        DelayAfterAFailure();
    transport->BecomesReady();
    EXPECT_EQ(DelayAfterAFailure(), 4'000);
}

TEST_F(ReconnectionTest, StartsOverWhenStartedAgain) {
    for (int i = 0; i < 4; ++i)
        DelayAfterAFailure();
    client->Stop();
    client->Start();
    EXPECT_EQ(DelayAfterAFailure(), 250);
}

TEST_F(ReconnectionTest, TriesNoMoreOnceStopped) {
    transport->Fails("away");
    client->Stop();
    machine.loop->Advance(Milliseconds(60'000));
    EXPECT_EQ(transport->opened, 1);
}

TEST_F(ReconnectionTest, TriesAtOnceToWriteWhatWaitsWhenStopped) {
    for (int i = 0; i < 8; ++i)
        DelayAfterAFailure();
    transport->Fails("away");
    client->Send(Note("a"));
    const int opened = transport->opened;
    client->Stop();
    EXPECT_EQ(transport->opened, opened + 1);
}

TEST_F(ReconnectionTest, TellsAnotherReasonForBeingAway) {
    Party party(client);
    for (const char* text : {"refused", "refused", "timed out"})
        transport->Fails(text);
    EXPECT_THAT(party.changes, ElementsAre("refused", "timed out"));
}

TEST_F(ReconnectionTest, SubscribesEverythingAgainWithItsOption) {
    client->AddSubscription("ZEB", BusSubscription::Shared, "");
    client->AddSubscription("AS", BusSubscription::Ordinary, "Broadcast");
    const std::map<BusAddress, BusSubscription> all = {
        {{"ZEB", ""}, BusSubscription::Shared},
        {{"AS", "Broadcast"}, BusSubscription::Ordinary},
        {{"Reply", client->ReplySubType()}, BusSubscription::Ordinary},
    };
    for (int i = 0; i < 2; ++i) {
        transport->BecomesReady();
        EXPECT_EQ(transport->subscriptions, all);
        transport->Fails("away");
    }
}

TEST_F(ReconnectionTest, LeavesNewMessagesToOthersWhileItStopsAndHearsAnswers) {
    client->AddSubscription("ZEB", BusSubscription::Shared, "");
    transport->BecomesReady();
    transport->flushed = false;
    const std::map<BusAddress, BusSubscription> reply = {
        {{"Reply", client->ReplySubType()}, BusSubscription::Ordinary}};
    machine.loop->StartTimer(Milliseconds(300), [&] { EXPECT_EQ(transport->subscriptions, reply); });
    client->Stop();
}

TEST_F(ReconnectionTest, HearsWhatArrivesWhileItStops) {
    Party party(client);
    transport->BecomesReady();
    transport->flushed = false;
    machine.loop->StartTimer(Milliseconds(300), [&] {
        transport->Brings(Note("a").ToBusXML());
        transport->flushed = true;
    });
    client->Stop();
    EXPECT_THAT(party.heard, ElementsAre("a"));
}

TEST_F(ReconnectionTest, WaitsUntilWhatWasWrittenHasArrivedBeforeItStops) {
    transport->BecomesReady();
    transport->flushed = false;
    machine.loop->StartTimer(Milliseconds(300), [&] { transport->flushed = true; });
    const auto start = machine.loop->Now();
    client->Stop();
    EXPECT_EQ(machine.loop->Now() - start, Milliseconds(300));
    EXPECT_EQ(transport->closed, 1);
}

}  // namespace
}  // namespace kq
