// Turns between the loop and the other users of its thread. The system delivers posted messages before input,
// painting and timers, so a loop that keeps posting to itself would starve the windows of the thread. After
// running for a while the loop therefore rests if any of them is waiting, until none is or the same time has
// passed again.
#pragma once

#include <atomic>
#include <chrono>
#include <optional>

#include "platform/win32/Win32Api.h"

namespace kq {

class Turns {
 public:
    using Duration = std::chrono::steady_clock::duration;

    // The longest turn of either side; an event that takes longer is not interrupted.
    static constexpr std::chrono::milliseconds kLongest{10};

    // `again`: the message that is posted to `window` while the loop rests, every millisecond or as often as
    // the system can. The next one is posted only after Ask was called for the last one.
    Turns(HWND window, UINT again) : window_(window), again_(again) {}
    Turns(const Turns&) = delete;
    Turns& operator=(const Turns&) = delete;
    ~Turns();

    // Adds to what the loop has run.
    void Ran(Duration time) { ran_ += time; }
    // Whether it is the others' turn; asked before each event. From a true answer on the loop rests.
    bool OthersFirst();
    bool Resting() const { return resting_since_.has_value(); }
    // Called when the message has arrived: whether the rest is over.
    bool Ask();
    // Ends the rest.
    void GoOn();

 private:
    static VOID CALLBACK OnTimer(PTP_CALLBACK_INSTANCE, PVOID turns, PTP_TIMER);
    bool StartMessages();

    HWND window_;
    UINT again_;
    PTP_TIMER timer_ = nullptr;  // of the system's thread pool: a window's timer comes after all painting
    std::atomic<bool> on_its_way_{false};
    Duration ran_{};
    std::optional<std::chrono::steady_clock::time_point> resting_since_;
};

}  // namespace kq
