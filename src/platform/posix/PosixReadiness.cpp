#include <poll.h>

#include "platform/loop/Readiness.h"

namespace kq {

EventLoop::Readiness ReadyNow(EventLoop::NativeSocket socket, EventLoop::Readiness wanted) {
    pollfd asked{socket, static_cast<short>((wanted.readable ? POLLIN : 0) | (wanted.writable ? POLLOUT : 0)),
                 0};
    const int answered = ::poll(&asked, 1, 0);
    if (answered < 0) return wanted;  // it cannot be checked: what was reported is assumed
    if (answered == 0) return {};
    const bool broken = (asked.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
    return {wanted.readable && (broken || (asked.revents & POLLIN) != 0),
            wanted.writable && (broken || (asked.revents & POLLOUT) != 0)};
}

}  // namespace kq
