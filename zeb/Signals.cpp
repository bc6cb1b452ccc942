// A signal handler may do next to nothing, so it writes a byte into a socket that the loop watches.
#include "zeb/Signals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include <kqappsession/Error.h>

namespace kq::zeb {
namespace {

volatile std::sig_atomic_t writer = -1;

extern "C" void OnStopSignal(int) {
    const int saved = errno;
    const char byte = 0;
    // When nothing fits, enough signals wait already.
    [[maybe_unused]] const auto written = write(writer, &byte, 1);
    errno = saved;
}

void Handle(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

}  // namespace

StopSignals::StopSignals(std::shared_ptr<EventLoop> loop, std::function<void()> stop)
    : loop_(std::move(loop)), stop_(std::move(stop)) {
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, pair.data()) != 0)
        throw Error(errno, "zebd", std::string("Signals cannot be heard: ") + std::strerror(errno));
    for (const int end : pair) {
        fcntl(end, F_SETFL, O_NONBLOCK);
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    reader_ = pair[0];
    writer = pair[1];
    watch_ = loop_->Watch(reader_, {.readable = true, .writable = false}, [this](auto) { OnReadable(); });
    Handle(SIGTERM, OnStopSignal);
    Handle(SIGINT, OnStopSignal);
}

StopSignals::~StopSignals() {
    Handle(SIGTERM, SIG_DFL);
    Handle(SIGINT, SIG_DFL);
    loop_->Unwatch(watch_);
    close(reader_);
    close(std::exchange(writer, -1));
}

void StopSignals::OnReadable() {
    char byte = 0;
    while (read(reader_, &byte, 1) == 1)
        stop_();
}

}  // namespace kq::zeb
