// What waits for the bus: which state messages replace which, the order, and the bounds.
#include <chrono>

#include "libs/xmlbus/LocalBus.h"
#include "libs/xmlbus/SendQueue.h"
#include "support/FakePlatform.h"
#include "xmlbus/BusTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;

struct SendQueueTest : testing::Test {
    // Words that begin with "C", "E" or "D" are sent as such a state, all others as ordinary messages.
    void Send(std::initializer_list<const char*> words) {
        for (const std::string word : words) {
            const bool state = word.find_first_of("CDE") == 0;
            EXPECT_GE(state ? queue.Push(Note(word), StateOf(word[0])) : queue.Push(Note(word)), 0);
        }
    }
    std::vector<std::string> Left() {
        std::vector<std::string> texts;
        while (!queue.Empty())
            texts.push_back(queue.Pop().message.Field("Text"));
        return texts;
    }

    SendQueue queue;
};

TEST_F(SendQueueTest, KeepsOrdinaryMessagesInOrder) {
    Send({"a", "b", "a"});
    EXPECT_THAT(Left(), ElementsAre("a", "b", "a"));
}

TEST_F(SendQueueTest, ReplacesAFullListByANewerOne) {
    Send({"C1", "C2"});
    EXPECT_THAT(Left(), ElementsAre("C2"));
}

TEST_F(SendQueueTest, ReplacesARemovalByANewerFullList) {
    Send({"E1", "C1"});
    EXPECT_THAT(Left(), ElementsAre("C1"));
}

TEST_F(SendQueueTest, KeepsAFullListBeforeARemoval) {
    Send({"C1", "E1"});
    EXPECT_THAT(Left(), ElementsAre("C1", "E1"));
}

TEST_F(SendQueueTest, KeepsEveryRemoval) {
    Send({"E1", "E2"});
    EXPECT_THAT(Left(), ElementsAre("E1", "E2"));
}

TEST_F(SendQueueTest, ReplacesEverythingThatAFullListSaysByIt) {
    Send({"C1", "E1", "E2", "C2", "E3"});
    EXPECT_THAT(Left(), ElementsAre("C2", "E3"));
}

TEST_F(SendQueueTest, KeepsWhatStandsBeforeTheEndOfService) {
    Send({"C1", "E1", "D1"});
    EXPECT_THAT(Left(), ElementsAre("C1", "E1", "D1"));
}

TEST_F(SendQueueTest, KeepsWhatStandsBeforeTheEndOfServiceFromALaterFullList) {
    Send({"C1", "E1", "D1", "C2"});
    EXPECT_THAT(Left(), ElementsAre("C1", "E1", "D1", "C2"));
}

TEST_F(SendQueueTest, ReplacesOnlyBehindTheLastEndOfService) {
    Send({"C1", "D1", "C2", "D2", "E1", "C3", "C4"});
    EXPECT_THAT(Left(), ElementsAre("C1", "D1", "C2", "D2", "C4"));
}

TEST_F(SendQueueTest, KeepsEveryEndOfService) {
    Send({"D1", "D2"});
    EXPECT_THAT(Left(), ElementsAre("D1", "D2"));
}

TEST_F(SendQueueTest, NeverReplacesAnOrdinaryMessage) {
    Send({"a", "C1", "b", "C2", "c"});
    EXPECT_THAT(Left(), ElementsAre("a", "b", "C2", "c"));
}

TEST_F(SendQueueTest, PutsAFullListThatReplacesAnotherAtTheEnd) {
    Send({"C1", "a", "C2"});
    EXPECT_THAT(Left(), ElementsAre("a", "C2"));
}

TEST_F(SendQueueTest, KeepsTheStatesOfTwoSubjectsApart) {
    queue.Push(Note("demo"), StateOf('C', "Demo"));
    queue.Push(Note("other"), StateOf('C', "Other"));
    queue.Push(Note("the end of another"), StateOf('D', "Another"));
    queue.Push(Note("demo again"), StateOf('C', "Demo"));
    EXPECT_THAT(Left(), ElementsAre("other", "the end of another", "demo again"));
}

TEST_F(SendQueueTest, KeepsTheStatesOfTwoDestinationsApart) {
    Send({"C1"});
    queue.Push(Note("elsewhere", {"ZEB", "Other"}), StateOf('C'));
    EXPECT_THAT(Left(), ElementsAre("C1", "elsewhere"));
}

TEST_F(SendQueueTest, ForgetsASubjectWithItsLastStateThatMayBeOutdated) {
    Send({"C1", "C2", "E1"});
    queue.Push(Note("other"), StateOf('E', "Other"));
    EXPECT_EQ(queue.Subjects(), 2U);
    Left();
    EXPECT_EQ(queue.Subjects(), 0U);
    Send({"C1", "D1", "D2"});
    EXPECT_EQ(queue.Subjects(), 0U);
}

TEST_F(SendQueueTest, DoesNotReplaceWhatWasTaken) {
    Send({"C1", "E1"});
    EXPECT_EQ(queue.Pop().message.Field("Text"), "C1");
    Send({"C2"});
    EXPECT_THAT(Left(), ElementsAre("C2"));
    Send({"C3"});
    EXPECT_THAT(Left(), ElementsAre("C3"));
}

TEST_F(SendQueueTest, TellsHowManyItReplaced) {
    EXPECT_EQ(queue.Push(Note("a"), StateOf('C')), 0);
    EXPECT_EQ(queue.Push(Note("b"), StateOf('E')), 0);
    EXPECT_EQ(queue.Push(Note("c"), StateOf('C')), 2);
}

TEST_F(SendQueueTest, TakesNoMoreMessagesThanItsLimit) {
    queue.SetLimits({.waiting_messages = 2, .waiting_bytes = 1U << 20});
    Send({"a", "b"});
    EXPECT_EQ(queue.Push(Note("c")), -1);
    EXPECT_THAT(Left(), ElementsAre("a", "b"));
}

TEST_F(SendQueueTest, TakesNoMoreBytesThanItsLimit) {
    queue.SetLimits({.waiting_messages = 100, .waiting_bytes = 3'000});
    EXPECT_EQ(queue.Push(Note(std::string(1'500, 'x'))), 0);
    EXPECT_EQ(queue.Push(Note(std::string(1'500, 'x'))), -1);
    queue.Pop();
    EXPECT_EQ(queue.Bytes(), 0U);
    EXPECT_EQ(queue.Push(Note(std::string(1'500, 'x'))), 0);
}

TEST_F(SendQueueTest, TakesAFullListWhenItMakesItsOwnPlace) {
    queue.SetLimits({.waiting_messages = 2, .waiting_bytes = 1U << 20});
    Send({"a", "C1", "C2"});
    EXPECT_EQ(queue.Push(Note("E1"), StateOf('E')), -1);
    EXPECT_THAT(Left(), ElementsAre("a", "C2"));
}

TEST_F(SendQueueTest, NeverEstimatesLessThanTheTextIsLong) {
    auto message = Note("<&>\"'\t\r\n \xC3\xA4");
    message.Root().SetAttribute("note", "\"<&\n");
    message.Root().Add("Empty");
    EXPECT_GE(SendQueue::Estimate(message), message.ToBusXML().size());
    EXPECT_GE(SendQueue::Estimate(XMLMessage("A", "")), XMLMessage("A", "").ToBusXML().size());
}

// Were each replacement to search the queue, this would take hours.
TEST_F(SendQueueTest, ReplacesWithoutSearchingALongQueue) {
    queue.SetLimits({.waiting_messages = 200'000, .waiting_bytes = 1U << 30});
    const auto note = Note("a");
    for (int i = 0; i < 20'000; ++i)
        queue.Push(note);
    for (int i = 0; i < 20'000; ++i)
        queue.Push(note, StateOf('C'));
    EXPECT_EQ(queue.Size(), 20'001U);
}

TEST_F(SendQueueTest, DropsWhatHasExpiredWhereverItStands) {
    const SendQueue::TimePoint start;
    queue.Push(Note("a"), start + Milliseconds(20));
    Send({"C1", "b"});
    queue.Push(Note("c"), start + Milliseconds(10));
    EXPECT_EQ(queue.DropExpired(start + Milliseconds(9)), 0);
    EXPECT_EQ(queue.DropExpired(start + Milliseconds(10)), 1);
    EXPECT_EQ(queue.DropExpired(start + Milliseconds(30)), 1);
    EXPECT_THAT(Left(), ElementsAre("C1", "b"));
    EXPECT_EQ(queue.Bytes(), 0U);
}

TEST_F(SendQueueTest, DoesNotDropWhatWasTakenBeforeItExpired) {
    const SendQueue::TimePoint expiry = SendQueue::TimePoint() + Milliseconds(10);
    queue.Push(Note("a"), expiry);
    EXPECT_EQ(queue.Pop().expiry, expiry);
    EXPECT_EQ(queue.DropExpired(expiry), 0);
}

struct SendingTest : testing::Test {
    SendingTest() {
        zeb.Hears(kZeb);
        zeb.client->Start();
        server.client->Start();
        Settle();
    }
    void Settle() { machine.loop->RunReady(); }

    FakePlatform machine;
    LocalBus bus{machine.platform};
    Party zeb{XMLBusClient::Create(machine.platform, bus.MakeTransport())};
    Party server{XMLBusClient::Create(machine.platform, bus.MakeTransport())};
};

TEST_F(SendingTest, WritesOneStateForABurstWithinOneTurnOfTheLoop) {
    for (const char* text : {"C1", "C2", "C3"})
        server.States('C', text);
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("C3"));
    EXPECT_EQ(server.client->Statistics().sent, 3);
    EXPECT_EQ(server.client->Statistics().replaced, 2);
    EXPECT_EQ(server.client->Statistics().written, 1);
}

TEST_F(SendingTest, WritesEveryStateThatDoesNotHaveToWait) {
    for (const char* text : {"C1", "C2"}) {
        server.States('C', text);
        Settle();
    }
    EXPECT_THAT(zeb.heard, ElementsAre("C1", "C2"));
}

TEST_F(SendingTest, ReplacesStatesWhileTheBusHasNoRoom) {
    bus.SetRoom(false);
    for (const char* text : {"C1", "C2", "C3"}) {
        server.States('C', text);
        Settle();
    }
    EXPECT_EQ(server.client->Statistics().waiting, 1);
    bus.SetRoom(true);
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("C3"));
    EXPECT_EQ(server.client->Statistics().waiting, 0);
}

TEST_F(SendingTest, GivesThePlaceOfWhatHasExpiredToANewMessage) {
    bus.SetRoom(false);
    server.client->SetLimits({.waiting_messages = 1, .waiting_bytes = 1U << 20});
    server.client->Send(Note("a"), Milliseconds(10));
    machine.loop->Advance(Milliseconds(10));
    server.Says("b");
    bus.SetRoom(true);
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("b"));
}

TEST_F(SendingTest, RefusesAnExpiryInThePast) {
    const auto invalid = NumberOf(RuntimeError::InvalidProcedureCall);
    auto& client = *server.client;
    EXPECT_EQ(ErrorOf([&] { client.Send(Note("a"), Milliseconds(-1)); }), invalid);
    EXPECT_EQ(client.Statistics().sent, 0);
}

TEST_F(SendingTest, TakesTheLongestExpiryThereIs) {
    server.client->Send(Note("a"), Milliseconds::max());
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("a"));
}

TEST_F(SendingTest, RefusesToSendWhenTooMuchWaits) {
    bus.SetRoom(false);
    server.client->SetLimits({.waiting_messages = 1, .waiting_bytes = 1U << 20});
    server.Says("a");
    EXPECT_EQ(ErrorOf([&] { server.Says("b"); }), NumberOf(NetError::NoBufferSpace));
    EXPECT_EQ(server.client->Statistics().sent, 1);
    bus.SetRoom(true);
    Settle();
    EXPECT_THAT(zeb.heard, ElementsAre("a"));
}

}  // namespace
}  // namespace kq
