// The repeating timer. Each tick is armed only when the handlers of the one before have returned, so a
// handler that runs the loop for long, or drops the timer, is never met by a second tick.
#include <utility>

#include <kqappsession/Timer.h>

namespace kq {

Timer::Timer(PlatformPtr platform) : platform_(std::move(platform)) {}

Timer::~Timer() {
    platform_->Loop()->CancelTimer(timer_);
}

void Timer::SetEnabled(bool on) {
    if (on == enabled_) return;
    enabled_ = on;
    Start();
}

void Timer::SetInterval(std::int32_t milliseconds) {
    interval_ = milliseconds;
    Start();
}

void Timer::Start() {
    platform_->Loop()->CancelTimer(timer_);
    timer_ = 0;
    if (!enabled_ || interval_ <= 0) return;
    timer_ = platform_->Loop()->StartTimer(Milliseconds(interval_), owner_.Bind([this] { OnTimer(); }));
}

void Timer::OnTimer() {
    timer_ = 0;
    const auto life = owner_.Life();
    Tick();
    // A handler that changed the interval or switched the timer off and on has armed it already.
    if (!life.expired() && timer_ == 0) Start();
}

}  // namespace kq
