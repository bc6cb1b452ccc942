// Whether a socket is ready now. Implemented by the port.
#pragma once

#include <kqappsession/EventLoop.h>

namespace kq {

// The part of `wanted` that is ready. A broken socket is ready for everything, and so is one whose state the
// system does not report.
EventLoop::Readiness ReadyNow(EventLoop::NativeSocket socket, EventLoop::Readiness wanted);

}  // namespace kq
