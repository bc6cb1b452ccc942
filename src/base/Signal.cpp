// Where exceptions go that leave an event handler. The handler is shared by all threads of the process.
#include <mutex>
#include <utility>

#include <kqappsession/Signal.h>

namespace kq {
namespace {

struct Stray {
    std::mutex mutex;
    StrayExceptionHandler handler;
};

// Never destroyed: handlers may still throw while the process is being taken down.
Stray& TheStray() {
    static Stray* const stray = new Stray;
    return *stray;
}

}  // namespace

StrayExceptionHandler SetStrayExceptionHandler(StrayExceptionHandler handler) {
    auto& stray = TheStray();
    const std::lock_guard lock(stray.mutex);
    std::swap(stray.handler, handler);
    return handler;
}

void ReportStrayException(std::exception_ptr exception) noexcept {
    try {
        auto& stray = TheStray();
        StrayExceptionHandler handler;
        {
            const std::lock_guard lock(stray.mutex);
            handler = stray.handler;
        }
        if (handler) handler(std::move(exception));
    } catch (...) {
        // There is nowhere else to report it.
    }
}

}  // namespace kq
