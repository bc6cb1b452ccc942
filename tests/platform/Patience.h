// How long a test of the real system waits for what ought to happen at once. Reaching it is a failure.
#pragma once

#include <functional>

#include <kqappsession/EventLoop.h>

namespace kq {

inline constexpr Milliseconds kPatience(20'000);

// Runs the loop until `done`; whether it came to that.
inline bool Await(EventLoop& loop, const std::function<bool()>& done) {
    return loop.RunUntil(done, loop.Now() + kPatience);
}

}  // namespace kq
