// An event loop in virtual time. Waiting costs nothing: when no task is ready, the time jumps to the next
// timer or to the deadline. The time never moves while a task is ready.
//
// A wait that can never end (nothing ready, no timer, no deadline) and a loop that runs more tasks than the
// step limit throw FakeFailure. A task that throws anything else is reported as a stray exception, as in the
// real ports.
#pragma once

#include <deque>
#include <functional>
#include <map>

#include <kqappsession/EventLoop.h>

#include "support/FakeFailure.h"

namespace kq {

class FakeEventLoop final : public EventLoop {
 public:
    // Runs everything that is due within `span`, then stands `span` later.
    void Advance(Milliseconds span);
    // Runs until nothing is ready; the time stands still.
    void RunReady();

    std::size_t TimerCount() const { return timers_.size(); }
    bool Idle() const { return ready_.empty(); }
    // How many tasks one outermost call may run; 1,000,000 unless set.
    void SetStepLimit(std::size_t steps) { step_limit_ = steps; }

    TimePoint Now() const override { return now_; }
    void Post(Task task) override;
    TimerId StartTimer(Milliseconds delay, Task task) override;
    void CancelTimer(TimerId id) override;
    // Fakes need no real sockets: all three throw FakeFailure.
    WatchId Watch(NativeSocket socket, Readiness wanted, std::function<void(Readiness)> ready) override;
    void ChangeWatch(WatchId id, Readiness wanted) override;
    void Unwatch(WatchId id) override;
    void ProcessPending() override;
    bool RunUntil(const std::function<bool()>& done, TimePoint deadline) override;
    void Run() override;
    void Quit() override { quitting_ = true; }
    bool Quitting() const override { return quitting_; }

 private:
    struct Ready {
        std::uint64_t sequence;
        TimerId timer;  // 0: posted
        Task task;
    };
    struct Timer {
        TimePoint due;
        Task task;
    };
    class Depth;

    void CollectDueTimers();
    bool RunOne();
    TimePoint NextDue() const;
    void JumpTo(TimePoint time);

    TimePoint now_ = TimePoint(std::chrono::hours(1));
    std::deque<Ready> ready_;
    std::map<TimerId, Timer> timers_;
    TimerId last_timer_ = 0;
    std::uint64_t last_sequence_ = 0;
    std::size_t step_limit_ = 1'000'000;
    std::size_t steps_ = 0;
    int depth_ = 0;
    bool quitting_ = false;
};

}  // namespace kq
