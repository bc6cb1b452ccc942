// The loop against the real system: order, time, sockets, waits inside tasks, and its end.
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/Platform.h>

#include "platform/MachineUnderTest.h"
#include "platform/Patience.h"
#include "platform/PortTesting.h"

namespace kq {
namespace {

using testing::StartsWith;

// What a call that raises RuntimeError::InvalidProcedureCall says; empty when it raises nothing of that kind.
std::string DescriptionOfInvalidCall(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error& error) {
        if (error.Number() == NumberOf(RuntimeError::InvalidProcedureCall)) return error.Description();
    }
    return {};
}

class Loop : public testing::Test {
 protected:
    void Note(const std::string& word) { heard_ += word; }
    EventLoop::Task Noting(const std::string& word) {
        return [this, word] { Note(word); };
    }
    bool AwaitHeard(const std::string& words) {
        return Await(*loop_, [&] { return heard_ == words; });
    }

    std::shared_ptr<EventLoop> loop_ = MachineUnderTest()->Loop();
    std::string heard_;
};

TEST_F(Loop, RunsPostedTasksInOrderAndNotAtOnce) {
    loop_->Post(Noting("a"));
    loop_->Post(Noting("b"));
    EXPECT_EQ(heard_, "");
    EXPECT_TRUE(AwaitHeard("ab"));
}

TEST_F(Loop, RunsTimersByDueTime) {
    loop_->StartTimer(Milliseconds(200), Noting("c"));
    loop_->StartTimer(Milliseconds(100), Noting("b"));
    loop_->StartTimer(Milliseconds(-5), Noting("a"));
    EXPECT_TRUE(AwaitHeard("abc"));
}

TEST_F(Loop, NeverRunsACancelledTimer) {
    const auto id = loop_->StartTimer(Milliseconds(1), Noting("never"));
    loop_->CancelTimer(id);
    loop_->CancelTimer(id);
    loop_->StartTimer(Milliseconds(5), Noting("later"));
    EXPECT_TRUE(AwaitHeard("later"));
}

TEST_F(Loop, NeverRunsATimerThatIsCancelledWhenBothAreDue) {
    EventLoop::TimerId second = 0;
    loop_->StartTimer(Milliseconds(0), [&] {
        Note("first");
        loop_->CancelTimer(second);
    });
    second = loop_->StartTimer(Milliseconds(0), Noting("second"));
    loop_->StartTimer(Milliseconds(5), Noting(" last"));
    EXPECT_TRUE(AwaitHeard("first last"));
}

TEST_F(Loop, KeepsAnEndlessDelayWaiting) {
    loop_->StartTimer(Milliseconds::max(), Noting("never"));
    loop_->StartTimer(Milliseconds(1), Noting("soon"));
    EXPECT_TRUE(AwaitHeard("soon"));
}

TEST_F(Loop, ReturnsFalseAtTheDeadline) {
    const auto start = loop_->Now();
    EXPECT_FALSE(loop_->RunUntil([] { return false; }, start + Milliseconds(10)));
    EXPECT_GE(loop_->Now(), start + Milliseconds(10));
}

TEST_F(Loop, AsksBeforeTheFirstEvent) {
    loop_->Post(Noting("a"));
    EXPECT_TRUE(loop_->RunUntil([] { return true; }, loop_->Now() - Milliseconds(1)));
    EXPECT_EQ(heard_, "");
}

TEST_F(Loop, RunsInsideATaskWhatWasPostedOutsideBefore) {
    loop_->Post([&] {
        loop_->Post(Noting("a"));
        EXPECT_TRUE(AwaitHeard("a"));
        Note("b");
    });
    EXPECT_TRUE(AwaitHeard("ab"));
}

TEST_F(Loop, ServesTimersInsideATwofoldWait) {
    loop_->Post([&] {
        loop_->Post([&] {
            loop_->StartTimer(Milliseconds(1), Noting("a"));
            EXPECT_TRUE(AwaitHeard("a"));
            Note("b");
        });
        EXPECT_TRUE(AwaitHeard("ab"));
        Note("c");
    });
    EXPECT_TRUE(AwaitHeard("abc"));
}

TEST_F(Loop, LeavesToTheNextCallWhatBecomesReadyWhilePending) {
    loop_->Post([&] {
        Note("a");
        loop_->Post(Noting("b"));
    });
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "a");
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "ab");
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "ab");
}

TEST_F(Loop, ProcessesPendingInsideATask) {
    loop_->Post([&] {
        loop_->ProcessPending();
        Note("c");
    });
    loop_->Post(Noting("a"));
    loop_->Post(Noting("b"));
    EXPECT_TRUE(AwaitHeard("abc"));
}

TEST_F(Loop, ReportsATaskThatThrowsAndGoesOn) {
    int reported = 0;
    auto before = SetStrayExceptionHandler([&](std::exception_ptr) { ++reported; });
    loop_->Post([] { throw std::runtime_error("broken"); });
    loop_->StartTimer(Milliseconds(1), [] { throw std::runtime_error("broken"); });
    loop_->StartTimer(Milliseconds(5), Noting("alive"));
    EXPECT_TRUE(AwaitHeard("alive"));
    SetStrayExceptionHandler(std::move(before));
    EXPECT_EQ(reported, 2);
}

TEST_F(Loop, TakesTasksFromOtherThreads) {
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 250; ++n)
                loop_->Post([&count] { ++count; });
        });
    }
    EXPECT_TRUE(Await(*loop_, [&] { return count == 1000; }));
    for (auto& thread : threads)
        thread.join();
}

TEST_F(Loop, QuitsFromAnotherThread) {
    std::thread other([this] { loop_->Quit(); });
    loop_->Run();
    other.join();
    EXPECT_TRUE(loop_->Quitting());
    EXPECT_FALSE(loop_->RunUntil([] { return false; }, loop_->Now() + kPatience));
}

TEST_F(Loop, QuitsEveryWaitFromATask) {
    loop_->Post([&] {
        loop_->Post([&] { loop_->Quit(); });
        loop_->Run();
        Note("inner ");
    });
    loop_->Run();
    EXPECT_EQ(heard_, "inner ");
}

TEST_F(Loop, MayBeDestroyedByATaskThatItRuns) {
    EventLoop* const loop = loop_.get();
    loop->Post([this] { loop_.reset(); });
    loop->Post(Noting("never"));
    EXPECT_FALSE(loop->RunUntil([] { return false; }, loop->Now() + kPatience));
    EXPECT_EQ(heard_, "");
}

TEST_F(Loop, LetsGoOfItsTasksWhenItIsDestroyed) {
    const auto held = std::make_shared<int>(1);
    loop_->Post([held] {});
    loop_->StartTimer(Milliseconds(1000), [held] {});
    loop_.reset();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(Loop, RefusesWhatCannotBeCalled) {
    const std::string refusal = "The event loop was given an empty function";
    EXPECT_EQ(DescriptionOfInvalidCall([&] { loop_->Post({}); }), refusal);
    EXPECT_EQ(DescriptionOfInvalidCall([&] { loop_->StartTimer(Milliseconds(1), {}); }), refusal);
    EXPECT_EQ(DescriptionOfInvalidCall([&] { loop_->RunUntil({}, loop_->Now() + kPatience); }), refusal);
    const SocketPair sockets;
    EXPECT_EQ(DescriptionOfInvalidCall([&] { loop_->Watch(sockets.Near(), {true, false}, {}); }), refusal);
}

class LoopWithSockets : public Loop {
 protected:
    ~LoopWithSockets() override { loop_.reset(); }
    void Send(const std::string& text) { sockets_.Send(text); }
    std::string TakeOne() { return sockets_.TakeOne(); }
    EventLoop::WatchId WatchReading(std::function<void()> ready) {
        return loop_->Watch(sockets_.Near(), {true, false}, [ready](EventLoop::Readiness) { ready(); });
    }

    SocketPair sockets_;
};

TEST_F(LoopWithSockets, CallsAgainWhileThereIsMoreToRead) {
    WatchReading([&] { Note(TakeOne()); });
    Send("abc");
    EXPECT_TRUE(AwaitHeard("abc"));
}

TEST_F(LoopWithSockets, TellsReadableAndWritableApart) {
    loop_->Watch(sockets_.Near(), {true, true}, [&](EventLoop::Readiness ready) {
        Note(ready.readable ? TakeOne() : ready.writable ? "w" : "");
        if (heard_ == "w") Send("r");
    });
    EXPECT_TRUE(Await(*loop_, [&] { return heard_.find('r') != std::string::npos; }));
    EXPECT_EQ(heard_.front(), 'w');
}

TEST_F(LoopWithSockets, KeepsWhatIsUnwantedUntilItIsWanted) {
    const auto id = WatchReading([&] { Note(TakeOne()); });
    loop_->ChangeWatch(id, {});
    Send("a");
    loop_->ProcessPending();
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "");
    loop_->ChangeWatch(id, {true, false});
    EXPECT_TRUE(AwaitHeard("a"));
}

TEST_F(LoopWithSockets, TellsThatThePeerHasEnded) {
    WatchReading([&] { Note(TakeOne()); });
    sockets_.FinishSending();
    EXPECT_TRUE(Await(*loop_, [&] { return !heard_.empty(); }));
    EXPECT_EQ(heard_.front(), '?');
}

TEST_F(LoopWithSockets, NeverCallsARemovedWatchAndLeavesItsSocketOpen) {
    Send("a");
    const auto id = WatchReading([&] { Note("never"); });
    loop_->Post([&] { loop_->Unwatch(id); });
    loop_->StartTimer(Milliseconds(5), Noting("end"));
    EXPECT_TRUE(AwaitHeard("end"));
    EXPECT_EQ(TakeOne(), "a");
}

TEST_F(LoopWithSockets, MayRemoveAWatchInItsCallbackAndWatchAnew) {
    EventLoop::WatchId id = 0;
    id = WatchReading([&] {
        Note(TakeOne());
        loop_->Unwatch(id);
        WatchReading([&] { Note("new" + TakeOne()); });
    });
    Send("ab");
    EXPECT_TRUE(AwaitHeard("anewb"));
}

TEST_F(LoopWithSockets, ServesTheSameWatchInsideItsOwnCallback) {
    WatchReading([&] {
        Note(TakeOne());
        if (heard_ == "a") {
            EXPECT_TRUE(AwaitHeard("abc"));
        }
    });
    Send("abc");
    EXPECT_TRUE(AwaitHeard("abc"));
}

TEST_F(LoopWithSockets, CallsAgainInsideACallbackThatHasReadNothingYet) {
    WatchReading([&] {
        Note("a");
        if (heard_ == "a") {
            EXPECT_TRUE(AwaitHeard("aa"));
        }
        static_cast<void>(TakeOne());
    });
    Send("x");
    EXPECT_TRUE(AwaitHeard("aa"));
}

TEST_F(LoopWithSockets, HearsAChangeMadeInsideACallbackInsideIt) {
    EventLoop::WatchId id = 0;
    id = loop_->Watch(sockets_.Near(), {true, false}, [&](EventLoop::Readiness ready) {
        if (ready.writable) {
            Note("w");
            loop_->ChangeWatch(id, {});
            return;
        }
        Note(TakeOne());
        loop_->ChangeWatch(id, {false, true});
        EXPECT_TRUE(AwaitHeard("aw"));
    });
    Send("a");
    EXPECT_TRUE(AwaitHeard("aw"));
}

TEST_F(LoopWithSockets, DoesNotReportWhatHasBeenConsumedSince) {
    WatchReading([&] { Note(TakeOne()); });
    Send("a");
    loop_->ProcessPending();
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "a");
}

TEST_F(LoopWithSockets, FindsReadySocketsInOnePending) {
    WatchReading([&] { Note(TakeOne()); });
    Send("a");
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "a");
}

TEST_F(LoopWithSockets, ReportsACallbackThatThrowsAndCallsItAgain) {
    auto before = SetStrayExceptionHandler({});
    WatchReading([&] {
        Note(TakeOne());
        throw std::runtime_error("broken");
    });
    Send("ab");
    EXPECT_TRUE(AwaitHeard("ab"));
    SetStrayExceptionHandler(std::move(before));
}

TEST_F(LoopWithSockets, RefusesToWatchWhatIsNoSocket) {
    const auto watch = [&] { loop_->Watch(kNoSocket, {true, false}, [](EventLoop::Readiness) {}); };
    EXPECT_THAT(DescriptionOfInvalidCall(watch), StartsWith("The socket cannot be watched: "));
}

TEST_F(LoopWithSockets, RefusesASecondWatchOfASocketUntilTheFirstIsRemoved) {
    const auto first = WatchReading([&] { Note("first"); });
    EXPECT_EQ(DescriptionOfInvalidCall([&] { WatchReading([&] { Note("second"); }); }),
              "The socket is already watched; change that watch instead");
    loop_->Unwatch(first);
    WatchReading([&] { Note(TakeOne()); });
    Send("a");
    EXPECT_TRUE(AwaitHeard("a"));
}

TEST_F(LoopWithSockets, IgnoresIdsThatAreUnknownOrRemoved) {
    const auto id = WatchReading([&] { Note("never"); });
    loop_->Unwatch(id);
    Send("a");
    for (const auto unknown : {EventLoop::WatchId{0}, id, id + 1000}) {
        loop_->ChangeWatch(unknown, {true, true});
        loop_->Unwatch(unknown);
        loop_->CancelTimer(unknown);
    }
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "");
}

TEST_F(LoopWithSockets, RunsTasksAndTimersWhileASocketIsAlwaysReady) {
    WatchReading([] {});
    Send("a");
    for (int i = 0; i < 5; ++i) {
        heard_.clear();
        loop_->Post(Noting("task "));
        loop_->StartTimer(Milliseconds(5), Noting("timer"));
        ASSERT_TRUE(AwaitHeard("task timer"));
    }
}

}  // namespace
}  // namespace kq
