// SIGINT, SIGTERM and SIGHUP as events that can be waited for. They end a program's waits instead of the
// program, so that every way out cleans up.
#pragma once

#include <functional>

namespace kq {

class EventLoop;

// Whether the process ignores the signal. One that is held back besides would still be received.
bool IsIgnored(int signal);

// Make one before the first thread: threads inherit that these signals are held back. A signal that the
// program was started to ignore, as by nohup, stays ignored. A broken pipe is no signal afterwards either,
// but a failed write.
class StopSignals {
 public:
    StopSignals();  // raises std::system_error
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // Readable once one of the signals has come. For poll only.
    int Descriptor() const { return descriptor_; }
    // Calls `on_signal` on the loop's thread whenever one of the signals comes. This object must outlive the
    // loop's runs.
    void Watch(EventLoop& loop, std::function<void()> on_signal);
    // The signal that came last; 0 while none has.
    int Received();

 private:
    bool Take();

    int descriptor_ = -1;
    int received_ = 0;
};

}  // namespace kq
