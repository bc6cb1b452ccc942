// Notifiers and timers of the toolkit call nobody. They put an event into a queue of our own, and a pump,
// which is a toolkit timer that is due immediately, takes one event out and runs it. So cancelling a timer or
// removing a watch also removes its event; what was ready at a certain moment is distinguished from what
// became ready later; and tasks that keep posting each other do not starve windows.
//
// A wait runs its own QEventLoop instead of QCoreApplication::processEvents: only then are objects deleted
// that the toolkit deletes later. The condition of the wait is checked whenever the toolkit has handled
// something.
#include "forms/qt/QtEventLoop.h"

#include <QAbstractEventDispatcher>
#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <QTimerEvent>
#include <algorithm>
#include <atomic>
#include <map>
#include <optional>
#include <poll.h>
#include <set>
#include <utility>

#include <kqappsession/Error.h>

#include "platform/loop/EventQueue.h"
#include "platform/loop/LoopFace.h"
#include "platform/loop/Readiness.h"
#include "platform/loop/TimerTable.h"

namespace kq {
namespace {

using Task = EventLoop::Task;
using TimePoint = EventLoop::TimePoint;
using Readiness = EventLoop::Readiness;

constexpr auto kWake = static_cast<QEvent::Type>(QEvent::User + 0x4B51);

TimePoint Now() {
    return std::chrono::steady_clock::now();
}

// Milliseconds until then, never too few; what is further than a day is asked again after a day.
int UntilThen(TimePoint then) {
    constexpr TimePoint::duration kLongest = std::chrono::hours(24);
    const TimePoint now = Now();
    if (then <= now) return 0;
    const auto wait = std::chrono::ceil<Milliseconds>(then - now < kLongest ? then - now : kLongest);
    return static_cast<int>(wait.count());
}

struct Watched {
    Watched(int fd, Readiness w, std::function<void(Readiness)> r)
        : reading(fd, QSocketNotifier::Read),
          writing(fd, QSocketNotifier::Write),
          wanted(w),
          ready(std::move(r)) {
        Rest();
    }
    void Rest() {
        reading.setEnabled(false);
        writing.setEnabled(false);
    }
    void Arm() {
        reading.setEnabled(wanted.readable && !queued);
        writing.setEnabled(wanted.writable && !queued);
    }
    // Asked again when its turn has come: what was ready may have been consumed or be unwanted since.
    Readiness ReadyNow() const { return kq::ReadyNow(Socket(), wanted); }
    int Socket() const { return static_cast<int>(reading.socket()); }

    QSocketNotifier reading, writing;
    Readiness wanted;
    std::function<void(Readiness)> ready;
    bool queued = false;  // an event of this watch is in the queue
};

// Everything the loop is made of. A wait holds it, so that the loop may be destroyed by a task that it runs.
class LoopState final : public QObject, public std::enable_shared_from_this<LoopState> {
 public:
    void Post(Task task) { Push(Event::Kind::Post, 0, std::move(task)); }

    EventLoop::TimerId StartTimer(Milliseconds delay, Task task) {
        const std::uint64_t id = ++last_id_;
        timers_.Start(id, DueIn(delay), std::move(task));
        SetAlarm();
        return id;
    }

    void CancelTimer(EventLoop::TimerId id) {
        timers_.Cancel(id);
        SetAlarm();
    }

    EventLoop::WatchId Watch(int fd, Readiness wanted, std::function<void(Readiness)> ready) {
        pollfd asked{fd, 0, 0};
        if (fd < 0 || ::poll(&asked, 1, 0) < 0 || (asked.revents & POLLNVAL) != 0)
            Raise(RuntimeError::InvalidProcedureCall, "The socket cannot be watched: it is not open");
        if (!watched_sockets_.insert(fd).second) Raise(RuntimeError::InvalidProcedureCall, kWatchedAlready);
        const std::uint64_t id = ++last_id_;
        const auto watched = std::make_shared<Watched>(fd, wanted, std::move(ready));
        for (auto* const notifier : {&watched->reading, &watched->writing})
            connect(notifier, &QSocketNotifier::activated, this, [this, id] { QueueWatch(id); });
        watches_.emplace(id, watched);
        watched->Arm();
        return id;
    }

    void ChangeWatch(EventLoop::WatchId id, Readiness wanted) {
        const auto entry = watches_.find(id);
        if (entry == watches_.end()) return;
        entry->second->wanted = wanted;
        entry->second->Arm();
    }

    void Unwatch(EventLoop::WatchId id) {
        const auto node = watches_.extract(id);
        if (!node) return;
        node.mapped()->Rest();
        watched_sockets_.erase(node.mapped()->Socket());
    }

    void ProcessPending() {
        const auto self = shared_from_this();
        std::uint64_t last = 0;
        {
            const Holding frame(*this, true);
            QCoreApplication::processEvents();  // windows and whatever else the program has
            PushDue();
            const auto watches = watches_;
            for (const auto& [id, watched] : watches) {
                const Readiness ready = watched->ReadyNow();
                if (ready.readable || ready.writable) QueueWatch(id);
            }
            last = events_.LastSequence();
        }
        const Holding frame(*this, false);
        while (!Ended()) {
            auto event = events_.Take(last);
            if (!event) break;
            Run(std::move(*event));
        }
    }

    bool RunUntil(const std::function<bool()>& done, TimePoint deadline) {
        const auto self = shared_from_this();
        const Holding frame(*this, false);
        for (;;) {
            if (done()) return true;
            if (Ended() || Now() >= deadline) return false;
            if (!RunInner(done, deadline)) return false;
        }
    }

    void Quit() {
        quitting_ = true;
        QCoreApplication::postEvent(this, new QEvent(kWake));
    }

    bool Quitting() const { return quitting_; }

    // The loop object is destroyed: nothing is called any more, and all functions of the callers are
    // released.
    void Close() {
        closed_ = true;
        const auto watches = std::exchange(watches_, {});
        for (const auto& [id, watched] : watches)
            watched->Rest();
        watched_sockets_.clear();
        timers_.Clear();
        events_.Clear();
    }

 protected:
    bool event(QEvent* event) override {
        if (event->type() == kWake) {
            pump_.start(0, this);
            return true;
        }
        return QObject::event(event);
    }

    void timerEvent(QTimerEvent* event) override {
        if (event->timerId() == pump_.timerId()) {
            Pump();
        } else if (event->timerId() == alarm_.timerId()) {
            PushDue();
        }
    }

 private:
    // While it is held, the pump runs nothing. A wait inside lets it go on.
    class Holding {
     public:
        Holding(LoopState& state, bool hold) : state_(state), before_(std::exchange(state.holding_, hold)) {
            state_.EnsurePump();
        }
        Holding(const Holding&) = delete;
        Holding& operator=(const Holding&) = delete;
        ~Holding() {
            state_.holding_ = before_;
            state_.EnsurePump();
        }

     private:
        LoopState& state_;
        bool before_;
    };

    bool Ended() const { return quitting_ || closed_; }

    // One run of the toolkit's loop. False when the program has ended it and not we.
    bool RunInner(const std::function<bool()>& done, TimePoint deadline) {
        QEventLoop inner;
        QTimer alarm;
        bool over = false;
        std::exception_ptr failure;
        const auto check = [&] {
            if (over) return;
            try {
                over = Ended() || Now() >= deadline || done();
            } catch (...) {
                failure = std::current_exception();
                over = true;
            }
            if (over) inner.quit();
        };
        auto* const dispatcher = QAbstractEventDispatcher::instance();
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &inner, check);
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &inner, check);
        if (deadline != TimePoint::max()) {
            alarm.setTimerType(Qt::PreciseTimer);
            alarm.start(UntilThen(deadline));
        }
        inner.exec();
        if (failure) std::rethrow_exception(failure);
        return over;
    }

    // --- The queue; from any thread

    void Push(Event::Kind kind, std::uint64_t id, Task task) {
        if (closed_) return;
        events_.Push(kind, id, std::move(task));
        EnsurePump();
    }

    void EnsurePump() {
        if (events_.ClaimPump()) QCoreApplication::postEvent(this, new QEvent(kWake));
    }

    // --- On the loop's thread

    // The next turn is prepared before the event runs: a wait inside it goes on from there. It needs a new
    // timer, because the toolkit does not let one fire inside itself.
    void Pump() {
        pump_.stop();
        events_.ReleasePump();
        if (holding_) return;
        const auto self = shared_from_this();
        auto event = events_.Take();
        EnsurePump();
        if (event) Run(std::move(*event));
    }

    void Run(Event event) {
        RunEvent(
            std::move(event), [this](std::uint64_t id) { timers_.Run(id); },
            [this](std::uint64_t id) { CallWatch(id); });
    }

    void QueueWatch(std::uint64_t id) {
        const auto entry = watches_.find(id);
        if (entry == watches_.end() || std::exchange(entry->second->queued, true)) return;
        entry->second->Rest();
        Push(Event::Kind::Watch, id, {});
    }

    // Armed before the call, so that a wait inside it receives what is ready next.
    void CallWatch(std::uint64_t id) {
        const auto entry = watches_.find(id);
        if (entry == watches_.end()) return;
        const std::shared_ptr<Watched> watched = entry->second;
        watched->queued = false;
        const Readiness ready = watched->ReadyNow();
        watched->Arm();
        if (ready.readable || ready.writable) watched->ready(ready);
    }

    void PushDue() {
        const TimePoint now = Now();
        while (const auto due = timers_.TakeDue(now))
            Push(Event::Kind::Timer, *due, {});
        SetAlarm();
    }

    void SetAlarm() {
        if (const auto next = timers_.Next())
            alarm_.start(UntilThen(*next), Qt::PreciseTimer, this);
        else
            alarm_.stop();
    }

    std::map<std::uint64_t, std::shared_ptr<Watched>> watches_;
    std::set<int> watched_sockets_;
    TimerTable timers_;
    std::uint64_t last_id_ = 0;
    QBasicTimer pump_;
    QBasicTimer alarm_;
    bool holding_ = false;
    std::atomic<bool> quitting_{false};
    std::atomic<bool> closed_{false};
    EventQueue events_;
};

}  // namespace

std::shared_ptr<EventLoop> MakeQtEventLoop() {
    return std::make_shared<LoopFace<LoopState>>(std::make_shared<LoopState>());
}

}  // namespace kq
