// Timers by number and by due time.
#pragma once

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include <kqappsession/EventLoop.h>

namespace kq {

// The time after a delay, at most a year from now, so that it cannot overflow.
inline EventLoop::TimePoint DueIn(Milliseconds delay) {
    constexpr Milliseconds kLongest = std::chrono::hours(24 * 365);
    return std::chrono::steady_clock::now() + std::clamp(delay, Milliseconds(0), kLongest);
}

class TimerTable {
 public:
    using TimePoint = EventLoop::TimePoint;

    void Start(EventLoop::TimerId id, TimePoint due, EventLoop::Task task) {
        timers_.emplace(id, Timed{due, std::move(task)});
        waiting_.emplace(due, id);
    }

    void Cancel(EventLoop::TimerId id) {
        const auto node = timers_.extract(id);  // the task goes after the table is whole again
        if (node) waiting_.erase({node.mapped().due, id});
    }

    // When the next timer is due.
    std::optional<TimePoint> Next() const {
        return waiting_.empty() ? std::nullopt : std::optional(waiting_.begin()->first);
    }

    // The first timer that is due; each is returned once.
    std::optional<EventLoop::TimerId> TakeDue(TimePoint now) {
        if (waiting_.empty() || waiting_.begin()->first > now) return std::nullopt;
        return waiting_.extract(waiting_.begin()).value().second;
    }

    // Runs the task of a timer that TakeDue has returned, unless it was cancelled since, and removes the
    // timer.
    void Run(EventLoop::TimerId id) {
        if (const auto node = timers_.extract(id)) node.mapped().task();
    }

    void Clear() {
        waiting_.clear();
        const auto gone = std::exchange(timers_, {});
    }

 private:
    struct Timed {
        TimePoint due;
        EventLoop::Task task;
    };

    std::map<EventLoop::TimerId, Timed> timers_;
    std::set<std::pair<TimePoint, EventLoop::TimerId>> waiting_;  // those that TakeDue has not returned yet
};

}  // namespace kq
