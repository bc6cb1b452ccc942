// Virtual time. Due timers join the posted tasks in one queue, so that neither can starve the other.
#include "support/FakeEventLoop.h"

#include <algorithm>
#include <utility>

namespace kq {

// Counts nested calls; the step limit starts anew with each outermost one.
class FakeEventLoop::Depth {
 public:
    explicit Depth(FakeEventLoop& loop) : loop_(loop) {
        if (loop_.depth_++ == 0) loop_.steps_ = 0;
    }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;
    ~Depth() { --loop_.depth_; }

 private:
    FakeEventLoop& loop_;
};

void FakeEventLoop::Post(Task task) {
    ready_.push_back({++last_sequence_, 0, std::move(task)});
}

EventLoop::TimerId FakeEventLoop::StartTimer(Milliseconds delay, Task task) {
    const TimerId id = ++last_timer_;
    const auto delay_or_none = std::max(delay, Milliseconds(0));
    // A delay beyond the end of time stays there.
    const bool never = delay_or_none > std::chrono::duration_cast<Milliseconds>(TimePoint::max() - now_);
    timers_[id] = {never ? TimePoint::max() : now_ + delay_or_none, std::move(task)};
    return id;
}

void FakeEventLoop::CancelTimer(TimerId id) {
    timers_.erase(id);
    std::erase_if(ready_, [id](const Ready& ready) { return id != 0 && ready.timer == id; });
}

EventLoop::WatchId FakeEventLoop::Watch(NativeSocket, Readiness, std::function<void(Readiness)>) {
    throw FakeFailure("the fake loop watches no sockets");
}

void FakeEventLoop::ChangeWatch(WatchId, Readiness) {
    throw FakeFailure("the fake loop watches no sockets");
}

void FakeEventLoop::Unwatch(WatchId) {
    throw FakeFailure("the fake loop watches no sockets");
}

void FakeEventLoop::CollectDueTimers() {
    std::vector<TimerId> due;
    for (const auto& [id, timer] : timers_) {
        if (timer.due <= now_) due.push_back(id);
    }
    std::stable_sort(due.begin(), due.end(),
                     [this](TimerId a, TimerId b) { return timers_[a].due < timers_[b].due; });
    for (const TimerId id : due) {
        ready_.push_back({++last_sequence_, id, std::move(timers_[id].task)});
        timers_.erase(id);
    }
}

bool FakeEventLoop::RunOne() {
    CollectDueTimers();
    if (ready_.empty()) return false;
    if (++steps_ > step_limit_) throw FakeFailure("the loop ran away: tasks without end at one moment");
    const Task task = std::move(ready_.front().task);
    ready_.pop_front();
    try {
        task();
    } catch (const FakeFailure&) {
        throw;
    } catch (...) {
        ReportStrayException(std::current_exception());
    }
    return true;
}

EventLoop::TimePoint FakeEventLoop::NextDue() const {
    TimePoint next = TimePoint::max();
    for (const auto& [id, timer] : timers_)
        next = std::min(next, timer.due);
    return next;
}

void FakeEventLoop::JumpTo(TimePoint time) {
    now_ = std::max(now_, time);
}

void FakeEventLoop::Advance(Milliseconds span) {
    const Depth depth(*this);
    const TimePoint end = now_ + span;
    for (;;) {
        if (RunOne()) continue;
        const TimePoint next = NextDue();
        if (next > end) break;
        JumpTo(next);
    }
    JumpTo(end);
}

void FakeEventLoop::RunReady() {
    const Depth depth(*this);
    while (RunOne()) {
    }
}

void FakeEventLoop::ProcessPending() {
    const Depth depth(*this);
    CollectDueTimers();
    const std::uint64_t last = last_sequence_;
    while (!quitting_ && !ready_.empty() && ready_.front().sequence <= last)
        RunOne();
}

bool FakeEventLoop::RunUntil(const std::function<bool()>& done, TimePoint deadline) {
    const Depth depth(*this);
    for (;;) {
        if (done()) return true;
        if (quitting_ || now_ > deadline) return false;
        if (RunOne()) continue;
        if (now_ == deadline) return false;
        const TimePoint next = std::min(NextDue(), deadline);
        if (next == TimePoint::max())
            throw FakeFailure("the loop would wait for ever: nothing ready, no timer");
        JumpTo(next);
    }
}

void FakeEventLoop::Run() {
    RunUntil([] { return false; }, TimePoint::max());
}

}  // namespace kq
