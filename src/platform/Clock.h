// Wall-clock time. Deadlines use EventLoop::Now instead.
#pragma once

#include <chrono>

namespace kq {

class Clock {
 public:
    virtual ~Clock() = default;
    virtual std::chrono::system_clock::time_point Now() const = 0;
    // Local time of day: seconds since midnight, 0 up to 86400.
    virtual double SecondsSinceMidnight() const = 0;
};

}  // namespace kq
