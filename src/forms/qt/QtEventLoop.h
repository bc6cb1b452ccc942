// The event loop on the toolkit's own, so that windows, sockets and timers of a program share one.
#pragma once

#include <memory>

#include <kqappsession/EventLoop.h>

namespace kq {

// For the thread of the QApplication, which must exist before the loop and outlive it. The program may run
// QApplication::exec or leave the running to the library's waits; QApplication::quit ends a wait, too.
std::shared_ptr<EventLoop> MakeQtEventLoop();

}  // namespace kq
