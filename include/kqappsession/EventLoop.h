// The only thing in the library that waits.
//
// One thread runs the loop and everything that belongs to it: connections, timers, the login procedures and
// the events that they raise. A procedure that has to wait runs the loop until its condition holds or its
// deadline has passed; sockets, timers and windows are served meanwhile, so any object may have changed or
// gone when the wait ends.
//
// Post may be called from any thread. Everything else is for the loop's own thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include <kqappsession/Export.h>
#include <kqappsession/Signal.h>

namespace kq {

using Milliseconds = std::chrono::milliseconds;

class KQ_EXPORT EventLoop {
 public:
    using Task = std::function<void()>;
    using TimePoint = std::chrono::steady_clock::time_point;
    using TimerId = std::uint64_t;  // never 0, never used twice
    using WatchId = std::uint64_t;  // never 0, never used twice
#ifdef _WIN64
    using NativeSocket = std::uint64_t;
#elif defined(_WIN32)
    using NativeSocket = std::uint32_t;
#else
    using NativeSocket = int;
#endif
    struct Readiness {
        bool readable = false;  // also: a connection to accept, the peer has ended, an error to read
        bool writable = false;  // also: a connection attempt has ended
    };

    virtual ~EventLoop() = default;

    // Monotonic time; the time base of every deadline and timer.
    virtual TimePoint Now() const = 0;

    // Runs `task` once, later, on the loop's thread, after what was posted before. An empty function, here
    // and in the calls below, raises RuntimeError::InvalidProcedureCall.
    virtual void Post(Task task) = 0;

    // Runs `task` once, `delay` from now (0 or less: as soon as possible).
    virtual TimerId StartTimer(Milliseconds delay, Task task) = 0;
    // Unknown and expired ids are ignored. The task never runs after this.
    virtual void CancelTimer(TimerId id) = 0;

    // Calls `ready` whenever the socket is ready in a way that is wanted (level-triggered). The socket stays
    // the caller's; Unwatch before closing it. A callback may unwatch. Raises
    // RuntimeError::InvalidProcedureCall for a socket that is not open and for one that has a watch of this
    // loop already: reading and writing share one watch.
    virtual WatchId Watch(NativeSocket socket, Readiness wanted, std::function<void(Readiness)> ready) = 0;
    // Unknown and removed ids are ignored, here and by Unwatch, after which `ready` is not called any more.
    virtual void ChangeWatch(WatchId id, Readiness wanted) = 0;
    virtual void Unwatch(WatchId id) = 0;

    // Runs what is ready now and returns without waiting. What becomes ready meanwhile waits for the next
    // call.
    virtual void ProcessPending() = 0;

    // Runs the loop until `done` returns true (asked before the first and after every event), the deadline
    // has passed, or the loop is told to quit. Returns whether `done` held. May be called from inside a task.
    virtual bool RunUntil(const std::function<bool()>& done, TimePoint deadline) = 0;

    // Runs until Quit.
    virtual void Run() = 0;
    // Makes every running and future wait return at once. Safe from any thread and from a task.
    virtual void Quit() = 0;
    virtual bool Quitting() const = 0;
};

}  // namespace kq
