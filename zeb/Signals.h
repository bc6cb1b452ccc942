// SIGTERM and SIGINT as events of the loop.
#pragma once

#include <functional>
#include <memory>

#include <kqappsession/EventLoop.h>

namespace kq::zeb {

// One at a time in a process. `stop` is called on the loop's thread, once for every signal.
class StopSignals {
 public:
    StopSignals(std::shared_ptr<EventLoop> loop, std::function<void()> stop);
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;
    ~StopSignals();  // the signals end the process again

 private:
    void OnReadable();

    std::shared_ptr<EventLoop> loop_;
    std::function<void()> stop_;
    EventLoop::WatchId watch_ = 0;
    int reader_ = -1;
};

}  // namespace kq::zeb
