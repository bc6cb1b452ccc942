// The event loop on asio. The only file that uses asio's types.
//
// asio's completions call nobody. They put an event into a queue of our own and make sure that a pump is
// posted to the context, which takes one event out and runs it. So cancelling a timer or removing a watch
// also removes its event; what was ready at a certain moment is distinguished from what became ready later;
// and a wait inside a task continues where the outer wait is, whoever runs the context.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>

#include <kqappsession/AsioEventLoop.h>
#include <kqappsession/Error.h>

#include "platform/loop/EventQueue.h"
#include "platform/loop/LoopFace.h"
#include "platform/loop/Readiness.h"
#include "platform/loop/TimerTable.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

using Task = EventLoop::Task;
using TimePoint = EventLoop::TimePoint;
using Readiness = EventLoop::Readiness;

struct Watched {
    Watched(asio::io_context& context, Readiness w, std::function<void(Readiness)> r)
        : descriptor(context), wanted(w), ready(std::move(r)) {}
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;
    // The socket is the caller's: it is released, never closed.
    ~Watched() {
        if (descriptor.is_open()) descriptor.release();
    }

    asio::posix::stream_descriptor descriptor;
    Readiness wanted;
    std::function<void(Readiness)> ready;
    bool reading_awaited = false;
    bool writing_awaited = false;
    bool queued = false;  // an event of this watch is in the queue
};

struct Timed {
    asio::steady_timer timer;
    Task task;
};

// Everything the loop is made of. Completions hold it weakly; a wait holds it firmly, so that the loop may be
// destroyed by a task that it runs.
class LoopState : public std::enable_shared_from_this<LoopState> {
 public:
    explicit LoopState(std::unique_ptr<asio::io_context> own) : own_(std::move(own)), context_(*own_) {}
    explicit LoopState(asio::io_context& context) : context_(context) {}

    void Post(Task task) { Push(Event::Kind::Post, 0, std::move(task)); }

    EventLoop::TimerId StartTimer(Milliseconds delay, Task task) {
        const std::uint64_t id = ++last_id_;
        auto& timed = timers_.emplace(id, Timed{asio::steady_timer(context_, DueIn(delay)), std::move(task)})
                          .first->second;
        timed.timer.async_wait([weak = weak_from_this(), id](const asio::error_code& error) {
            const auto self = weak.lock();
            if (self && !error && self->timers_.count(id) != 0) self->Push(Event::Kind::Timer, id, {});
        });
        return id;
    }

    void CancelTimer(EventLoop::TimerId id) {
        const auto node = timers_.extract(id);  // the task goes after the table is whole again
    }

    EventLoop::WatchId Watch(int fd, Readiness wanted, std::function<void(Readiness)> ready) {
        auto watched = std::make_shared<Watched>(context_, wanted, std::move(ready));
        asio::error_code error;
        watched->descriptor.assign(fd, error);
        if (error == asio::error_code(EEXIST, asio::system_category()))
            Raise(RuntimeError::InvalidProcedureCall, kWatchedAlready);
        if (error)
            Raise(RuntimeError::InvalidProcedureCall, "The socket cannot be watched: " + error.message());
        const std::uint64_t id = ++last_id_;
        watches_.emplace(id, watched);
        Await(id, *watched);
        return id;
    }

    void ChangeWatch(EventLoop::WatchId id, Readiness wanted) {
        const auto entry = watches_.find(id);
        if (entry == watches_.end()) return;
        entry->second->wanted = wanted;
        Await(id, *entry->second);
    }

    void Unwatch(EventLoop::WatchId id) {
        const auto node = watches_.extract(id);
        if (node && node.mapped()->descriptor.is_open()) node.mapped()->descriptor.release();
    }

    void ProcessPending() {
        const auto self = shared_from_this();
        const Wait wait(*this);
        Gather();
        const std::uint64_t last = events_.LastSequence();
        while (!quitting_ && !closed_) {
            std::optional<Event> event = events_.Take(last);
            if (!event) break;
            Run(std::move(*event));
        }
    }

    bool RunUntil(const std::function<bool()>& done, TimePoint deadline) {
        const auto self = shared_from_this();
        const Wait wait(*this);
        for (;;) {
            if (done()) return true;
            // A context that stops while it is waited on was stopped by the host.
            if (quitting_ || closed_ || context_.stopped()) return false;
            if (std::chrono::steady_clock::now() >= deadline) return false;
            // First without waiting: this also takes over what the outer run of the context holds back.
            if (context_.poll_one() == 0) context_.run_one_until(deadline);
        }
    }

    void Quit() {
        quitting_ = true;
        asio::post(context_, [] {});  // ends the wait for the next event
    }

    bool Quitting() const { return quitting_; }

    // The loop object is destroyed: nothing is called any more, and all functions of the callers are
    // released.
    void Close() {
        closed_ = true;
        const auto watches = std::exchange(watches_, {});
        for (const auto& [id, watched] : watches) {
            if (watched->descriptor.is_open()) watched->descriptor.release();
        }
        const auto timers = std::exchange(timers_, {});
        events_.Clear();
        asio::post(context_, [] {});
    }

 private:
    // The frame of every wait of ours: the context has work, is not left over as stopped, and nothing is held
    // back because of an outer wait or a callback that runs it.
    class Wait {
     public:
        explicit Wait(LoopState& state)
            : state_(state),
              outermost_(!state.context_.get_executor().running_in_this_thread()),
              held_(std::exchange(state.holding_, false)) {
            if (outermost_ && state_.context_.stopped()) state_.context_.restart();
            guard_.emplace(state_.context_.get_executor());
            for (const std::uint64_t id : state_.being_called_)
                state_.AwaitAgain(id);
            state_.EnsurePump();
        }
        Wait(const Wait&) = delete;
        Wait& operator=(const Wait&) = delete;
        ~Wait() {
            state_.holding_ = held_;
            const bool stopped_by_host = state_.context_.stopped();
            guard_.reset();
            // Without our guard the context may have run out of work; a later run by the host must not find
            // it stopped for that.
            if (outermost_ && !stopped_by_host && state_.context_.stopped()) state_.context_.restart();
            state_.EnsurePump();
        }

     private:
        LoopState& state_;
        bool outermost_;
        bool held_;
        std::optional<asio::executor_work_guard<asio::io_context::executor_type>> guard_;
    };

    void Push(Event::Kind kind, std::uint64_t id, Task task) {
        if (closed_) return;
        events_.Push(kind, id, std::move(task));
        EnsurePump();
    }

    void EnsurePump() {
        if (!events_.ClaimPump()) return;
        asio::post(context_, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->Pump();
        });
    }

    void Pump() {
        events_.ReleasePump();
        if (holding_) return;
        std::optional<Event> event = events_.Take();
        EnsurePump();
        if (event) Run(std::move(*event));
    }

    // Lets the context put everything that is ready into the queue, running none of it. What the sockets have
    // ready comes behind the first mark, hence two.
    void Gather() {
        const bool held = std::exchange(holding_, true);
        const auto reached = std::make_shared<int>(0);
        for (int mark = 1; mark <= 2; ++mark) {
            asio::post(context_, [reached] { ++*reached; });
            while (*reached < mark && context_.poll_one() != 0) {
            }
        }
        holding_ = held;
    }

    void Run(Event event) {
        const auto run_timer = [this](std::uint64_t id) {
            if (const auto node = timers_.extract(id)) node.mapped().task();
        };
        RunEvent(std::move(event), run_timer, [this](std::uint64_t id) { CallWatch(id); });
    }

    void CallWatch(std::uint64_t id) {
        const auto entry = watches_.find(id);
        if (entry == watches_.end()) return;
        const std::shared_ptr<Watched> watched = entry->second;
        watched->queued = false;
        // Asked again: what was ready may have been consumed or be unwanted since.
        const Readiness ready = ReadyNow(watched->descriptor.native_handle(), watched->wanted);
        if (ready.readable || ready.writable) {
            being_called_.push_back(id);
            try {
                watched->ready(ready);
            } catch (...) {
                ReportStrayException(std::current_exception());
            }
            being_called_.pop_back();
        }
        // Also when this ran inside an outer callback of the same watch: the loop in there wants the next
        // event.
        AwaitAgain(id);
    }

    void AwaitAgain(std::uint64_t id) {
        const auto entry = watches_.find(id);
        if (entry != watches_.end()) Await(id, *entry->second);
    }

    void Await(std::uint64_t id, Watched& watched) {
        if (watched.queued) return;
        using Side = asio::posix::stream_descriptor::wait_type;
        if (watched.wanted.readable && !std::exchange(watched.reading_awaited, true)) {
            AwaitSide(id, watched, Side::wait_read, &Watched::reading_awaited, &Readiness::readable);
        }
        if (watched.wanted.writable && !std::exchange(watched.writing_awaited, true)) {
            AwaitSide(id, watched, Side::wait_write, &Watched::writing_awaited, &Readiness::writable);
        }
    }

    void AwaitSide(std::uint64_t id, Watched& watched, asio::posix::stream_descriptor::wait_type side,
                   bool Watched::*awaited, bool Readiness::*wanted) {
        watched.descriptor.async_wait(
            side, [weak = weak_from_this(), id, awaited, wanted](const asio::error_code& error) {
                const auto self = weak.lock();
                if (!self) return;
                const auto entry = self->watches_.find(id);
                if (entry == self->watches_.end()) return;
                Watched& w = *entry->second;
                w.*awaited = false;
                if (error == asio::error::operation_aborted || !(w.wanted.*wanted) || w.queued) return;
                w.queued = true;
                self->Push(Event::Kind::Watch, id, {});
            });
    }

    std::unique_ptr<asio::io_context> own_;  // null with a host's context; goes last
    asio::io_context& context_;
    std::map<std::uint64_t, std::shared_ptr<Watched>> watches_;
    std::vector<std::uint64_t> being_called_;  // awaited again afterwards, or when the loop runs inside
    std::map<std::uint64_t, Timed> timers_;
    std::uint64_t last_id_ = 0;
    bool holding_ = false;  // ProcessPending gathers; the pump runs nothing
    std::atomic<bool> quitting_{false};
    std::atomic<bool> closed_{false};
    EventQueue events_;
};

}  // namespace

std::shared_ptr<EventLoop> MakeAsioEventLoop(asio::io_context& context) {
    return std::make_shared<LoopFace<LoopState>>(std::make_shared<LoopState>(context));
}

std::shared_ptr<EventLoop> MakeOwnEventLoop() {
    return std::make_shared<LoopFace<LoopState>>(
        std::make_shared<LoopState>(std::make_unique<asio::io_context>()));
}

}  // namespace kq
