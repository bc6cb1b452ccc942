// A repeating timer on the event loop.
#pragma once

#include <cstdint>
#include <memory>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>

namespace kq {

// Ticks every Interval milliseconds while Enabled; the next tick is due one interval after the last one was
// delivered, so ticks never pile up. A handler may change, disable or drop the timer.
class KQ_EXPORT Timer {
 public:
    explicit Timer(PlatformPtr platform);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    Signal<> Tick;

    bool Enabled() const { return enabled_; }
    void SetEnabled(bool on);
    std::int32_t Interval() const { return interval_; }
    // 0 or less: an enabled timer does not tick. A change while enabled starts a new interval.
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
