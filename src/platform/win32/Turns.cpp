#include "platform/win32/Turns.h"

namespace kq {
namespace {

bool OthersWait() {
    constexpr UINT kAfterPosted = QS_INPUT | QS_HOTKEY | QS_PAINT | QS_TIMER;
    return (HIWORD(GetQueueStatus(kAfterPosted)) & kAfterPosted) != 0;
}

}  // namespace

Turns::~Turns() {
    if (!timer_) return;
    SetThreadpoolTimer(timer_, nullptr, 0, 0);
    WaitForThreadpoolTimerCallbacks(timer_, TRUE);  // no thread is left in here
    CloseThreadpoolTimer(timer_);
}

bool Turns::OthersFirst() {
    if (resting_since_) return true;
    if (ran_ < kLongest) return false;
    ran_ = {};
    if (!OthersWait() || !StartMessages()) return false;
    resting_since_ = std::chrono::steady_clock::now();
    return true;
}

bool Turns::Ask() {
    on_its_way_ = false;
    if (!resting_since_) return false;
    if (std::chrono::steady_clock::now() - *resting_since_ < kLongest && OthersWait()) return false;
    GoOn();
    return true;
}

void Turns::GoOn() {
    resting_since_.reset();
    SetThreadpoolTimer(timer_, nullptr, 0, 0);
}

bool Turns::StartMessages() {
    if (!timer_) timer_ = CreateThreadpoolTimer(&Turns::OnTimer, this, nullptr);
    if (!timer_) return false;
    constexpr DWORD kPeriod = 1;  // milliseconds
    ULARGE_INTEGER first;
    first.QuadPart = static_cast<ULONGLONG>(-10'000LL);  // relative, in 100 ns
    FILETIME due{first.LowPart, first.HighPart};
    SetThreadpoolTimer(timer_, &due, kPeriod, 0);
    return true;
}

// A message that could not be posted is tried again with the next period.
VOID CALLBACK Turns::OnTimer(PTP_CALLBACK_INSTANCE, PVOID turns, PTP_TIMER) {
    auto& self = *static_cast<Turns*>(turns);
    if (!self.on_its_way_.exchange(true) && PostMessageW(self.window_, self.again_, 0, 0) == 0)
        self.on_its_way_ = false;
}

}  // namespace kq
