// The repeating timer in virtual time: when it ticks, and what a handler may do to it.
#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include <kqappsession/Timer.h>

#include "support/FakePlatform.h"

namespace kq {
namespace {

struct TimerTest : testing::Test {
    TimerTest() {
        timer->Tick.Connect(owner, [this] { ++ticks; });
    }
    void Enable(std::int32_t interval) {
        timer->SetInterval(interval);
        timer->SetEnabled(true);
    }
    void Pass(int milliseconds) { machine.loop->Advance(Milliseconds(milliseconds)); }

    FakePlatform machine;
    std::unique_ptr<Timer> timer = std::make_unique<Timer>(machine.platform);
    int ticks = 0;
    Owner owner;
};

TEST_F(TimerTest, StartsDisabledWithoutAnInterval) {
    EXPECT_FALSE(timer->Enabled());
    EXPECT_EQ(timer->Interval(), 0);
}

TEST_F(TimerTest, TicksEveryIntervalWhileEnabled) {
    Enable(100);
    Pass(99);
    EXPECT_EQ(ticks, 0);
    Pass(1);
    EXPECT_EQ(ticks, 1);
    Pass(250);
    EXPECT_EQ(ticks, 3);
}

TEST_F(TimerTest, DoesNotTickWhileDisabled) {
    timer->SetInterval(100);
    Pass(1000);
    EXPECT_EQ(ticks, 0);
}

TEST_F(TimerTest, DoesNotTickAfterItWasDisabled) {
    Enable(100);
    Pass(99);
    timer->SetEnabled(false);
    Pass(1000);
    EXPECT_EQ(ticks, 0);
    EXPECT_EQ(machine.loop->TimerCount(), 0U);
}

TEST_F(TimerTest, DoesNotTickAtAnIntervalOfZeroOrLess) {
    Enable(0);
    timer->SetInterval(-5);
    Pass(1000);
    EXPECT_EQ(ticks, 0);
    EXPECT_TRUE(timer->Enabled());
}

TEST_F(TimerTest, TicksWhenAnEnabledTimerGetsAnInterval) {
    Enable(0);
    timer->SetInterval(50);
    Pass(50);
    EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, StartsANewIntervalWhenTheIntervalChanges) {
    Enable(100);
    Pass(90);
    timer->SetInterval(200);
    Pass(199);
    EXPECT_EQ(ticks, 0);
    Pass(1);
    EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, GoesOnWithItsIntervalWhenEnabledTwice) {
    Enable(100);
    Pass(60);
    timer->SetEnabled(true);
    Pass(40);
    EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, BearsTheLongestInterval) {
    Enable(std::numeric_limits<std::int32_t>::max());
    Pass(1'000'000);
    EXPECT_EQ(ticks, 0);
    machine.loop->Advance(Milliseconds(std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, LetsAHandlerDisableIt) {
    timer->Tick.Connect(owner, [this] { timer->SetEnabled(false); });
    Enable(100);
    Pass(1000);
    EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, LetsAHandlerChangeTheInterval) {
    timer->Tick.Connect(owner, [this] { timer->SetInterval(500); });
    Enable(100);
    Pass(100);
    Pass(499);
    EXPECT_EQ(ticks, 1);
    Pass(1);
    EXPECT_EQ(ticks, 2);
}

TEST_F(TimerTest, TicksOnceAnIntervalAfterAHandlerThatSwitchedItOffAndOn) {
    timer->Tick.Connect(owner, [this] {
        timer->SetEnabled(false);
        timer->SetEnabled(true);
    });
    Enable(100);
    Pass(300);
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(machine.loop->TimerCount(), 1U);
}

TEST_F(TimerTest, LetsAHandlerDestroyIt) {
    timer->Tick.Connect(owner, [this] { timer.reset(); });
    Enable(100);
    Pass(1000);
    EXPECT_EQ(ticks, 1);
    EXPECT_EQ(machine.loop->TimerCount(), 0U);
}

TEST_F(TimerTest, StopsWhenDestroyed) {
    Enable(100);
    timer.reset();
    Pass(1000);
    EXPECT_EQ(ticks, 0);
}

TEST_F(TimerTest, NeverPilesUpTicksWhileAHandlerWaits) {
    int depth = 0;
    int deepest = 0;
    timer->Tick.Connect(owner, [&] {
        deepest = std::max(deepest, ++depth);
        Pass(350);
        --depth;
    });
    Enable(100);
    machine.loop->RunUntil([this] { return ticks == 2; }, EventLoop::TimePoint::max());
    EXPECT_EQ(deepest, 1);
}

TEST_F(TimerTest, CountsTheNextIntervalFromTheEndOfTheHandler) {
    timer->Tick.Connect(owner, [this] {
        if (ticks == 1) Pass(350);
    });
    const auto start = machine.loop->Now();
    Enable(100);
    machine.loop->RunUntil([this] { return ticks == 2; }, EventLoop::TimePoint::max());
    EXPECT_EQ(machine.loop->Now() - start, Milliseconds(100 + 350 + 100));
}

TEST_F(TimerTest, GoesOnAfterAHandlerThatThrew) {
    timer->Tick.Connect(owner, [] { throw std::runtime_error("handler"); });
    Enable(100);
    Pass(200);
    EXPECT_EQ(ticks, 2);
}

}  // namespace
}  // namespace kq
