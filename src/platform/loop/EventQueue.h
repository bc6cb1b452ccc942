// The basis of every event loop: the events that are queued to be run, one after the other, and the pump. The
// pump is a posted task or message that takes one event out of the queue and runs it; at most one is under
// way. May be used from any thread.
#pragma once

#include <deque>
#include <mutex>
#include <optional>
#include <utility>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Signal.h>

namespace kq {

struct Event {
    enum class Kind { Post, Timer, Watch };

    std::uint64_t sequence;
    Kind kind;
    std::uint64_t id;      // of the timer or watch
    EventLoop::Task task;  // of a post
};

// Runs a post, or calls on_timer or on_watch with the id. An exception is reported and goes no further.
template <class OnTimer, class OnWatch>
void RunEvent(Event event, OnTimer&& on_timer, OnWatch&& on_watch) {
    try {
        switch (event.kind) {
            case Event::Kind::Post:
                event.task();
                break;
            case Event::Kind::Timer:
                on_timer(event.id);
                break;
            case Event::Kind::Watch:
                on_watch(event.id);
                break;
        }
    } catch (...) {
        ReportStrayException(std::current_exception());
    }
}

class EventQueue {
 public:
    void Push(Event::Kind kind, std::uint64_t id, EventLoop::Task task) {
        const std::lock_guard lock(mutex_);
        events_.push_back({++last_sequence_, kind, id, std::move(task)});
    }

    std::uint64_t LastSequence() {
        const std::lock_guard lock(mutex_);
        return last_sequence_;
    }

    // The first event, unless it is newer than `last`.
    std::optional<Event> Take(std::uint64_t last = ~std::uint64_t{0}) {
        const std::lock_guard lock(mutex_);
        if (events_.empty() || events_.front().sequence > last) return std::nullopt;
        std::optional<Event> event(std::move(events_.front()));
        events_.pop_front();
        return event;
    }

    void Clear() {
        std::deque<Event> gone;  // destroyed without the lock: a task may hold anything
        const std::lock_guard lock(mutex_);
        gone.swap(events_);
    }

    // True when the queue is not empty and no pump is under way: the caller must then start one.
    bool ClaimPump() {
        const std::lock_guard lock(mutex_);
        return !events_.empty() && !std::exchange(pump_on_its_way_, true);
    }

    void ReleasePump() {
        const std::lock_guard lock(mutex_);
        pump_on_its_way_ = false;
    }

 private:
    std::mutex mutex_;
    std::deque<Event> events_;
    std::uint64_t last_sequence_ = 0;
    bool pump_on_its_way_ = false;
};

}  // namespace kq
