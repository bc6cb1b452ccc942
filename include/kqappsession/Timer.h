// A repeating timer on the event loop.
#pragma once

#include <cstdint>
#include <memory>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>

namespace kq {

// Ticks every Interval milliseconds while Enabled. A new timer is disabled and has the interval 0. The next
// tick is due one interval after the handlers of the last one have returned, so ticks never pile up. A
// handler may change, disable or destroy the timer. All members belong to the thread of the platform's event
// loop.
class KQ_EXPORT Timer {
 public:
    // `platform` must not be null.
    explicit Timer(PlatformPtr platform);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    // Raised by the loop, never from inside a member.
    Signal<> Tick;

    bool Enabled() const { return enabled_; }
    // Enabling starts a new interval; setting the present value does nothing.
    void SetEnabled(bool on);
    std::int32_t Interval() const { return interval_; }
    // Milliseconds; starts a new interval. With 0 or less the timer does not tick, enabled or not.
    void SetInterval(std::int32_t milliseconds);

 private:
    void Start();
    void OnTimer();

    PlatformPtr platform_;
    bool enabled_ = false;
    std::int32_t interval_ = 0;
    EventLoop::TimerId timer_ = 0;
    Owner owner_;
};

}  // namespace kq
