// A loop whose socket is always ready, and the windows that share its thread.
#include <gtest/gtest.h>

#include "platform/Patience.h"
#include "platform/PortTesting.h"
#include "platform/win32/MessageWindow.h"
#include "platform/win32/Turns.h"
#include "platform/win32/Win32Platform.h"

namespace kq {
namespace {

using Clock = std::chrono::steady_clock;

constexpr UINT_PTR kTimer = 1;
constexpr UINT kPeriod = 50;  // milliseconds

class BusyLoop : public testing::Test {
 protected:
    ~BusyLoop() override {
        KillTimer(window_.Get(), kTimer);
        loop_.reset();
    }

    // Its callback leaves unread what arrives, so there is always more.
    void KeepASocketReady() {
        sockets_.Send("x");
        loop_->Watch(sockets_.Near(), {true, false}, [this](EventLoop::Readiness) { ++calls_; });
    }
    void StartTimerOfTheWindow(UINT period = kPeriod) { SetTimer(window_.Get(), kTimer, period, nullptr); }

    // The host's message loop, until `done` or too late.
    bool RunHostLoop(const std::function<bool()>& done) {
        const auto deadline = Clock::now() + kPatience;
        MSG message;
        while (!done() && Clock::now() < deadline &&
               GetMessageW(&message, nullptr, first_message_, 0xFFFF) > 0)
            DispatchMessageW(&message);
        return done();
    }
    bool HostLoopSeesTicks(int count) {
        ticks_ = 0;
        return RunHostLoop([&] { return ticks_ >= count; });
    }
    Clock::duration TimeOfTenTicks() {
        const auto start = Clock::now();
        EXPECT_TRUE(HostLoopSeesTicks(10));
        return Clock::now() - start;
    }

    UINT first_message_ = 0;  // that the host's loop takes
    int ticks_ = 0;
    int calls_ = 0;
    std::function<void()> on_tick_ = [] {};
    SocketPair sockets_;
    std::shared_ptr<EventLoop> loop_ = MakeWin32EventLoop();
    MessageWindow window_{[this](UINT message, WPARAM, LPARAM) {
        if (message != WM_TIMER) return;
        ++ticks_;
        on_tick_();
    }};
};

TEST_F(BusyLoop, LeavesTheTimerOfAWindowInAHostsLoopAtLeastHalfOfItsTicks) {
    StartTimerOfTheWindow();
    const auto at_rest = TimeOfTenTicks();
    KeepASocketReady();
    EXPECT_LT(TimeOfTenTicks(), 2 * at_rest + Milliseconds(250));
}

TEST_F(BusyLoop, LeavesTheTimerOfAWindowItsTicksInAWaitOfItsOwn) {
    StartTimerOfTheWindow();
    KeepASocketReady();
    EXPECT_TRUE(Await(*loop_, [&] { return ticks_ >= 10; }));
}

TEST_F(BusyLoop, RunsItsOwnTimersInAHostsLoop) {
    KeepASocketReady();
    bool ran = false;
    loop_->StartTimer(Milliseconds(20), [&] { ran = true; });
    EXPECT_TRUE(RunHostLoop([&] { return ran; }));
}

// As beside a window that paints without pause: its messages come before those of timers.
TEST_F(BusyLoop, RunsItsOwnTimersWhereTheMessagesOfTimersDoNotArrive) {
    KeepASocketReady();
    first_message_ = WM_TIMER + 1;
    bool ran = false;
    loop_->StartTimer(Milliseconds(20), [&] { ran = true; });
    EXPECT_TRUE(RunHostLoop([&] { return ran; }));
}

TEST_F(BusyLoop, LetsAPostedMessagePassWithinAFewCallbacks) {
    KeepASocketReady();
    EXPECT_TRUE(RunHostLoop([&] { return calls_ >= 100; }));
    PostMessageW(window_.Get(), WM_TIMER, kTimer, 0);
    EXPECT_TRUE(HostLoopSeesTicks(1));
    EXPECT_LE(calls_, 110);
}

// A timer that is due again whenever its handler returns.
TEST_F(BusyLoop, GoesOnThoughAWindowNeverRests) {
    on_tick_ = [] {
        const auto end = Clock::now() + Milliseconds(2 * USER_TIMER_MINIMUM);
        while (Clock::now() < end) {
        }
    };
    StartTimerOfTheWindow(USER_TIMER_MINIMUM);
    KeepASocketReady();
    EXPECT_TRUE(HostLoopSeesTicks(3));
    const int before = calls_;
    EXPECT_TRUE(HostLoopSeesTicks(3));
    EXPECT_GT(calls_, before);
}

TEST_F(BusyLoop, GoesOnAtOnceWhenTheWindowsHaveHadTheirTurn) {
    StartTimerOfTheWindow();
    KeepASocketReady();
    EXPECT_TRUE(HostLoopSeesTicks(2));
    const int before = calls_;
    EXPECT_TRUE(HostLoopSeesTicks(2));
    EXPECT_GT(calls_ - before, 100);
}

TEST_F(BusyLoop, MayBeDestroyedInAnothersTurn) {
    StartTimerOfTheWindow();
    KeepASocketReady();
    on_tick_ = [this] { loop_.reset(); };
    EXPECT_TRUE(HostLoopSeesTicks(1));
    EXPECT_EQ(loop_, nullptr);
    const int before = calls_;
    EXPECT_TRUE(HostLoopSeesTicks(2));
    EXPECT_EQ(calls_, before);
}

TEST(Turns, GoToNobodyWhenNobodyWaits) {
    const MessageWindow window([](UINT, WPARAM, LPARAM) {});
    Turns turns(window.Get(), WM_APP);
    turns.Ran(Turns::kLongest);
    EXPECT_FALSE(turns.OthersFirst());
}

}  // namespace
}  // namespace kq
