// A wall clock that moves with the fake loop. The day begins at a time that the test sets; noon unless it
// does.
#pragma once

#include <cmath>
#include <memory>
#include <utility>

#include "platform/Clock.h"
#include "support/FakeEventLoop.h"

namespace kq {

class FakeClock final : public Clock {
 public:
    explicit FakeClock(std::shared_ptr<FakeEventLoop> loop) : loop_(std::move(loop)), set_at_(loop_->Now()) {}

    // From here on the time of day is `seconds` since midnight plus what passes on the loop. The date goes
    // on.
    void SetTimeOfDay(double seconds) {
        const double days = std::floor(SecondsSinceStart() / kDay);
        start_ = days * kDay + seconds;
        set_at_ = loop_->Now();
    }

    std::chrono::system_clock::time_point Now() const override {
        using std::chrono::system_clock;
        const auto first_midnight =
            system_clock::time_point(std::chrono::sys_days(std::chrono::year(2024) / 3 / 1));
        return first_midnight + std::chrono::duration_cast<system_clock::duration>(
                                    std::chrono::duration<double>(SecondsSinceStart()));
    }

    double SecondsSinceMidnight() const override { return std::fmod(SecondsSinceStart(), kDay); }

 private:
    static constexpr double kDay = 86400;

    double SecondsSinceStart() const {
        return start_ + std::chrono::duration<double>(loop_->Now() - set_at_).count();
    }

    std::shared_ptr<FakeEventLoop> loop_;
    EventLoop::TimePoint set_at_;
    double start_ = kDay / 2;
};

}  // namespace kq
