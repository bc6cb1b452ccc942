// The event loop. Nothing else in the library waits.
//
// One thread runs the loop and everything that belongs to it: connections, timers, the login procedures and
// the events that they raise. A procedure that has to wait runs the loop until its condition holds or its
// deadline has passed. Sockets, timers and windows are served in the meantime, so any object may have changed
// or been destroyed when the wait ends.
//
// Post and Quit may be called from any thread, everything else from the loop's own thread only. An exception
// that leaves a task or callback is reported to the stray exception handler (see Signal.h). An empty function
// raises RuntimeError::InvalidProcedureCall wherever one is passed in.
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
    using TimerId = std::uint64_t;  // never 0, never reused
    using WatchId = std::uint64_t;  // never 0, never reused
#ifdef _WIN64
    using NativeSocket = std::uint64_t;
#elif defined(_WIN32)
    using NativeSocket = std::uint32_t;
#else
    using NativeSocket = int;
#endif
    struct Readiness {
        bool readable = false;  // also: a connection to accept, the peer's end, an error
        bool writable = false;  // also: a connection attempt has ended
    };

    virtual ~EventLoop() = default;

    // The time base of every deadline and timer; monotonic.
    virtual TimePoint Now() const = 0;

    // Runs `task` once, later, on the loop's thread, after all tasks that were posted before. Never runs it
    // before returning.
    virtual void Post(Task task) = 0;

    // Runs `task` once, `delay` from now (0 or less: as soon as possible; at most a year). Never runs it
    // before returning.
    virtual TimerId StartTimer(Milliseconds delay, Task task) = 0;
    // The task does not run after this. Unknown and expired ids are ignored.
    virtual void CancelTimer(TimerId id) = 0;

    // Calls `ready` whenever the socket is ready in a wanted way (level-triggered): again and again until it
    // is read or written, also by a wait inside `ready`. The socket remains the caller's; call Unwatch before
    // closing it. `ready` may call Unwatch. Raises RuntimeError::InvalidProcedureCall for a socket that is
    // not open or that this loop already watches: reading and writing share one watch.
    virtual WatchId Watch(NativeSocket socket, Readiness wanted, std::function<void(Readiness)> ready) = 0;
    // Changes what is wanted. Unknown and removed ids are ignored.
    virtual void ChangeWatch(WatchId id, Readiness wanted) = 0;
    // `ready` is not called after this. Unknown and removed ids are ignored.
    virtual void Unwatch(WatchId id) = 0;

    // Runs what is ready now and returns without waiting. What becomes ready in the meantime is left for the
    // next call.
    virtual void ProcessPending() = 0;

    // Runs the loop until `done` returns true, the deadline has passed, or Quit is called. Returns whether
    // `done` returned true. `done` is called before the first event and after every event. May be called from
    // inside a task, to any depth.
    virtual bool RunUntil(const std::function<bool()>& done, TimePoint deadline) = 0;

    // Runs the loop until Quit is called.
    virtual void Run() = 0;
    // Makes every running and future wait return immediately. It cannot be undone. Safe from any thread and
    // from a task.
    virtual void Quit() = 0;
    virtual bool Quitting() const = 0;
};

}  // namespace kq
