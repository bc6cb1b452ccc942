// Whether a socket is ready now. Implemented by the port.
#pragma once

#include <kqappsession/EventLoop.h>

namespace kq {

// What of `wanted` holds. A broken socket is ready for everything; so is one that the system does not tell
// of.
EventLoop::Readiness ReadyNow(EventLoop::NativeSocket socket, EventLoop::Readiness wanted);

}  // namespace kq
