// The event loop on window messages.
//
// Messages about sockets and timers call nobody. They put an event into a queue of our own and make sure that
// a pump message is posted, which takes one event out and runs it. So cancelling a timer or removing a watch
// also removes its event, and a wait inside a task continues where the outer wait is, whoever dispatches the
// messages: one of our waits, the program's loop or a modal dialog's.
//
// Windows delivers posted messages before input, painting and timers of the thread's windows. The pump rests
// from time to time, so that a socket that is always ready does not starve them: see Turns.
//
// Timers are counted here. The window's one timer only wakes the loops of others: it is delivered after all
// other messages and never in less than about 10 ms. The system reports a socket once when it becomes ready,
// and again only after a call on it. To make this level-triggered, every watch is checked again after its
// callback.
#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <kqappsession/Error.h>

#include "platform/loop/EventQueue.h"
#include "platform/loop/LoopFace.h"
#include "platform/loop/Readiness.h"
#include "platform/loop/TimerTable.h"
#include "platform/win32/MessageWindow.h"
#include "platform/win32/Turns.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Winsock.h"

namespace kq {
namespace {

using Task = EventLoop::Task;
using TimePoint = EventLoop::TimePoint;
using Readiness = EventLoop::Readiness;

// The one range of messages that ProcessPending leaves alone.
constexpr UINT kPump = WM_APP + 0x2A10;
constexpr UINT kSocket = kPump + 1;
constexpr UINT kPumpAgain = kPump + 2;
constexpr UINT_PTR kTimer = 1;
constexpr long kAllSocketEvents = FD_ACCEPT | FD_CONNECT | FD_READ | FD_WRITE | FD_CLOSE;

struct Watched {
    SOCKET socket;
    Readiness wanted;
    std::function<void(Readiness)> ready;
    bool queued = false;  // an event of this watch is in the queue
};

bool HasPeer(SOCKET socket) {
    return RemoteAddressOf(socket).length != 0;
}

// Everything the loop is made of. A wait holds it firmly, so that the loop may be destroyed by a task that it
// runs.
class LoopState : public std::enable_shared_from_this<LoopState> {
 public:
    void Open() {
        window_ =
            std::make_unique<MessageWindow>([weak = weak_from_this()](UINT message, WPARAM first, LPARAM) {
                if (const auto self = weak.lock()) self->OnMessage(message, first);
            });
        turns_ = std::make_unique<Turns>(window_->Get(), kPumpAgain);
    }

    void Post(Task task) { Push(Event::Kind::Post, 0, std::move(task)); }

    EventLoop::TimerId StartTimer(Milliseconds delay, Task task) {
        const std::uint64_t id = ++last_id_;
        timers_.Start(id, DueIn(delay), std::move(task));
        WakeOthersInTime();
        return id;
    }

    void CancelTimer(EventLoop::TimerId id) { timers_.Cancel(id); }

    EventLoop::WatchId Watch(EventLoop::NativeSocket native, Readiness wanted,
                             std::function<void(Readiness)> ready) {
        const auto socket = static_cast<SOCKET>(native);
        if (by_socket_.count(socket) != 0) Raise(RuntimeError::InvalidProcedureCall, kWatchedAlready);
        if (WSAAsyncSelect(socket, window_->Get(), kSocket, kAllSocketEvents) != 0)
            Raise(RuntimeError::InvalidProcedureCall,
                  "The socket cannot be watched: " + NetErrorText(WSAGetLastError()));
        const std::uint64_t id = ++last_id_;
        watches_.emplace(id, std::make_shared<Watched>(Watched{socket, wanted, std::move(ready)}));
        by_socket_.emplace(socket, id);
        // What the system has reported of this socket before, it may not report again.
        PostMessageW(window_->Get(), kSocket, static_cast<WPARAM>(socket), 0);
        return id;
    }

    void ChangeWatch(EventLoop::WatchId id, Readiness wanted) {
        const auto entry = watches_.find(id);
        if (entry == watches_.end()) return;
        entry->second->wanted = wanted;
        Ask(id, *entry->second);
    }

    void Unwatch(EventLoop::WatchId id) {
        const auto node = watches_.extract(id);
        if (!node) return;
        by_socket_.erase(node.mapped()->socket);
        WSAAsyncSelect(node.mapped()->socket, window_->Get(), 0, 0);
    }

    // First what is ready of ours, then the messages of other windows, which may run loops of their own.
    void ProcessPending() {
        const auto self = shared_from_this();
        const Wait wait(*this);
        for (const auto& [id, watched] : watches_)
            Ask(id, *watched);
        TakeDueTimers();
        const std::uint64_t last = events_.LastSequence();
        while (!Ending()) {
            std::optional<Event> event = events_.Take(last);
            if (!event) break;
            Run(std::move(*event));
        }
        // A window that is never satisfied must not keep us here.
        for (int most = 1000; most > 0 && !Ending(); --most) {
            if (Dispatch(0, kPump - 1) != Dispatched::One &&
                Dispatch(kPumpAgain + 1, 0xFFFF) != Dispatched::One)
                break;
        }
    }

    bool RunUntil(const std::function<bool()>& done, TimePoint deadline) {
        const auto self = shared_from_this();
        const Wait wait(*this);
        for (;;) {
            if (done()) return true;
            if (Ending() || std::chrono::steady_clock::now() >= deadline) return false;
            TakeDueTimers();
            switch (Dispatch(0, 0)) {
                case Dispatched::One:
                    break;
                case Dispatched::Quit:
                    return false;
                case Dispatched::None:
                    if (turns_ && turns_->Resting())
                        GoOn();
                    else
                        SleepUntil(deadline);
                    break;
            }
        }
    }

    void Quit() {
        quitting_ = true;
        PostMessageW(window_->Get(), WM_NULL, 0, 0);  // ends the wait for the next message
    }

    // Also while the thread has been told to quit: every message loop on it returns.
    bool Quitting() const {
        MSG message;
        return quitting_ ||
               PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE | PM_QS_POSTMESSAGE) != 0;
    }

    // The loop object is destroyed: nothing is called any more, and all functions of the callers are
    // released.
    void Close() {
        closed_ = true;
        const auto watches = std::exchange(watches_, {});
        for (const auto& [id, watched] : watches)
            WSAAsyncSelect(watched->socket, window_->Get(), 0, 0);
        by_socket_.clear();
        turns_.reset();
        window_.reset();
        timers_.Clear();
        events_.Clear();
    }

 private:
    enum class Dispatched { None, One, Quit };

    // The frame of every wait of ours: what an outer callback has left ready is served in here.
    class Wait {
     public:
        explicit Wait(LoopState& state) {
            for (const std::uint64_t id : state.being_called_)
                state.AskAgain(id);
            state.EnsurePump();
        }
    };

    bool Ending() const { return quitting_ || closed_; }

    void OnMessage(UINT message, WPARAM first) {
        switch (message) {
            case kPump:
                Pump();
                break;
            case kSocket:
                OnSocket(static_cast<SOCKET>(first));
                break;
            case kPumpAgain:
                if (turns_->Ask()) Pump();
                break;
            case WM_TIMER:
                KillTimer(window_->Get(), kTimer);
                woken_at_.reset();
                TakeDueTimers();
                break;
            default:
                break;
        }
    }

    // One message of the thread. The order to quit is put back for the loops around us.
    Dispatched Dispatch(UINT first, UINT last) {
        MSG message;
        if (PeekMessageW(&message, nullptr, first, last, PM_REMOVE) == 0) return Dispatched::None;
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return Dispatched::Quit;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
        return Dispatched::One;
    }

    void SleepUntil(TimePoint deadline) {
        EnsurePump();
        if (const auto next = timers_.Next()) deadline = std::min(deadline, *next);
        const auto remaining = std::chrono::ceil<Milliseconds>(deadline - std::chrono::steady_clock::now());
        if (remaining.count() <= 0) return;
        constexpr Milliseconds kLongest = std::chrono::hours(24);
        MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(std::min(remaining, kLongest).count()),
                                    QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }

    void TakeDueTimers() {
        const TimePoint now = std::chrono::steady_clock::now();
        while (const auto due = timers_.TakeDue(now))
            Push(Event::Kind::Timer, *due, {});
        WakeOthersInTime();
    }

    void WakeOthersInTime() {
        const auto next = timers_.Next();
        if (!next || woken_at_ == next) return;
        woken_at_ = next;
        const auto delay = std::chrono::ceil<Milliseconds>(*next - std::chrono::steady_clock::now()).count();
        SetTimer(window_->Get(), kTimer,
                 static_cast<UINT>(std::clamp<long long>(delay, 0, USER_TIMER_MAXIMUM)), nullptr);
    }

    void OnSocket(SOCKET socket) {
        const auto entry = by_socket_.find(socket);
        if (entry != by_socket_.end()) Ask(entry->second, *watches_.at(entry->second));
    }

    // Queues an event when the watch is ready and none is queued.
    void Ask(std::uint64_t id, Watched& watched) {
        if (watched.queued || !(watched.wanted.readable || watched.wanted.writable)) return;
        const Readiness ready = ReadyNow(watched.socket, watched.wanted);
        if (!ready.readable && !ready.writable) return;
        watched.queued = true;
        Push(Event::Kind::Watch, id, {});
    }

    void AskAgain(std::uint64_t id) {
        const auto entry = watches_.find(id);
        if (entry != watches_.end()) Ask(id, *entry->second);
    }

    void Push(Event::Kind kind, std::uint64_t id, Task task) {
        if (closed_) return;
        events_.Push(kind, id, std::move(task));
        EnsurePump();
    }

    // The thread's message queue may be full of others' messages; then it is tried again with the next event
    // or wait.
    void EnsurePump() {
        if (events_.ClaimPump() && PostMessageW(window_->Get(), kPump, 0, 0) == 0) events_.ReleasePump();
    }

    // While it is the others' turn the pump counts as on its way.
    void Pump() {
        if (turns_->OthersFirst()) return;
        TakeDueTimers();
        events_.ReleasePump();
        std::optional<Event> event = events_.Take();
        EnsurePump();
        if (!event) return;
        const TimePoint start = std::chrono::steady_clock::now();
        Run(std::move(*event));
        if (turns_) turns_->Ran(std::chrono::steady_clock::now() - start);
    }

    // Nothing of the others is left, so their turn is over before its time.
    void GoOn() {
        turns_->GoOn();
        Pump();
    }

    void Run(Event event) {
        RunEvent(
            std::move(event), [this](std::uint64_t id) { timers_.Run(id); },
            [this](std::uint64_t id) { CallWatch(id); });
    }

    void CallWatch(std::uint64_t id) {
        const auto entry = watches_.find(id);
        if (entry == watches_.end()) return;
        const std::shared_ptr<Watched> watched = entry->second;
        watched->queued = false;
        // Asked again: what was ready may have been consumed or be unwanted since.
        const Readiness ready = ReadyNow(watched->socket, watched->wanted);
        if (ready.readable || ready.writable) {
            being_called_.push_back(id);
            try {
                watched->ready(ready);
            } catch (...) {
                ReportStrayException(std::current_exception());
            }
            being_called_.pop_back();
        }
        AskAgain(id);
    }

    WinsockSession winsock_;
    std::unique_ptr<MessageWindow> window_;  // null once closed
    std::unique_ptr<Turns> turns_;           // null once closed
    std::map<std::uint64_t, std::shared_ptr<Watched>> watches_;
    std::map<SOCKET, std::uint64_t> by_socket_;
    std::vector<std::uint64_t> being_called_;  // watches whose callbacks are running
    TimerTable timers_;
    std::optional<TimePoint> woken_at_;  // what the window's timer is set to
    std::uint64_t last_id_ = 0;
    EventQueue events_;
    std::atomic<bool> quitting_{false};
    std::atomic<bool> closed_{false};
};

}  // namespace

// A connection attempt that failed is neither readable nor writable here but an exception, as are urgent
// bytes of a connection, which mean nothing.
Readiness ReadyNow(EventLoop::NativeSocket native, Readiness wanted) {
    const auto socket = static_cast<SOCKET>(native);
    fd_set only{};
    only.fd_count = 1;
    only.fd_array[0] = socket;
    fd_set readable = wanted.readable ? only : fd_set{};
    fd_set writable = wanted.writable ? only : fd_set{};
    fd_set failed = only;
    timeval at_once{0, 0};
    if (select(0, &readable, &writable, &failed, &at_once) <= 0) return {};
    const bool broken = failed.fd_count != 0 && !HasPeer(socket);
    return {wanted.readable && (broken || readable.fd_count != 0),
            wanted.writable && (broken || writable.fd_count != 0)};
}

std::shared_ptr<EventLoop> MakeWin32EventLoop() {
    auto state = std::make_shared<LoopState>();
    state->Open();
    return std::make_shared<LoopFace<LoopState>>(std::move(state));
}

}  // namespace kq
