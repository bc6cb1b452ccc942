// A signal descriptor needs no handler and no thread: the signals are blocked and read like bytes.
#include "tools/program/StopSignals.h"

#include <cerrno>
#include <csignal>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

#include <kqappsession/EventLoop.h>

namespace kq {

bool IsIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

StopSignals::StopSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (!IsIgnored(signal)) sigaddset(&signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "Cannot handle signals");
}

StopSignals::~StopSignals() {
    close(descriptor_);
}

void StopSignals::Watch(EventLoop& loop, std::function<void()> on_signal) {
    loop.Watch(descriptor_, {.readable = true, .writable = false},
               [this, on_signal = std::move(on_signal)](EventLoop::Readiness) {
                   if (Take()) on_signal();
               });
}

int StopSignals::Received() {
    Take();
    return received_;
}

bool StopSignals::Take() {
    signalfd_siginfo info{};
    if (read(descriptor_, &info, sizeof info) != sizeof info) return false;
    received_ = static_cast<int>(info.ssi_signo);
    return true;
}

}  // namespace kq
