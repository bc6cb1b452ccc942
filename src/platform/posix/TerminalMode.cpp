// Only one terminal is restored when a signal ends the program: the one whose mode was changed first, because
// a user sits at one terminal only. Signals that the program ignores or handles itself are left alone.
#include "platform/posix/TerminalMode.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace kq {
namespace {

constexpr char kUsualInterruptKey = 3;
constexpr int kTries = 100;

constexpr std::array kEnding{SIGHUP,  SIGINT,  SIGQUIT, SIGILL,  SIGABRT, SIGBUS,  SIGFPE,  SIGUSR1,
                             SIGSEGV, SIGUSR2, SIGPIPE, SIGALRM, SIGTERM, SIGXCPU, SIGXFSZ, SIGVTALRM};

// What the handlers may touch. Written while `on` is 0, but for the mode that comes back when the program
// goes on.
struct Guard {
    volatile std::sig_atomic_t on = 0;
    int terminal = -1;
    termios before{};
    termios meanwhile{};
};
Guard guard;

// Waits for no output: that may be stopped, and the terminal may be gone. A program in the background that
// handles SIGTTOU is interrupted each time.
void SetMode(int terminal, const termios& mode) {
    for (int i = 0; i < kTries; ++i) {
        if (::tcsetattr(terminal, TCSANOW, &mode) == 0 || errno != EINTR) return;
    }
}

// In the background the terminal has the mode of somebody else.
void Restore(int terminal, const termios& mode) {
    const pid_t in_front = ::tcgetpgrp(terminal);
    if (in_front >= 0 && in_front != ::getpgrp()) return;
    SetMode(terminal, mode);
}

void RestoreGuarded() {
    if (guard.on != 0) Restore(guard.terminal, guard.before);
}

void Handle(int signal, void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    ::sigaction(signal, &action, nullptr);
}

// The default action comes after the handler has returned.
void OnEnd(int signal) {
    RestoreGuarded();
    ::raise(signal);
}

// Stops in here, and goes on in here.
void OnStop(int signal) {
    const int error = errno;
    RestoreGuarded();
    Handle(signal, SIG_DFL, 0);
    sigset_t one;
    sigset_t blocked;
    sigemptyset(&one);
    sigaddset(&one, signal);
    ::raise(signal);
    ::pthread_sigmask(SIG_UNBLOCK, &one, &blocked);
    ::pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
    Handle(signal, OnStop, SA_RESTART);
    if (guard.on != 0) SetMode(guard.terminal, guard.meanwhile);
    errno = error;
}

void HandleWhereDefault(int signal, void (*handler)(int), int flags) {
    struct sigaction present {};
    if (::sigaction(signal, nullptr, &present) != 0) return;
    const bool asks_for_more = (present.sa_flags & SA_SIGINFO) != 0;
    if (!asks_for_more && present.sa_handler == SIG_DFL) Handle(signal, handler, flags);
}

void LetGo(int signal, void (*handler)(int)) {
    struct sigaction present {};
    if (::sigaction(signal, nullptr, &present) != 0) return;
    const bool asks_for_more = (present.sa_flags & SA_SIGINFO) != 0;
    if (!asks_for_more && present.sa_handler == handler) Handle(signal, SIG_DFL, 0);
}

void BeginGuard(int terminal, const termios& before, const termios& meanwhile) {
    static const int at_exit = std::atexit(RestoreGuarded);
    static_cast<void>(at_exit);
    guard.terminal = terminal;
    guard.before = before;
    guard.meanwhile = meanwhile;
    guard.on = 1;
    for (const int signal : kEnding)
        HandleWhereDefault(signal, OnEnd, static_cast<int>(SA_RESETHAND));
    HandleWhereDefault(SIGTSTP, OnStop, SA_RESTART);
}

void ChangeMeanwhile(const termios& meanwhile) {
    sigset_t stop;
    sigset_t blocked;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTSTP);
    ::pthread_sigmask(SIG_BLOCK, &stop, &blocked);
    guard.meanwhile = meanwhile;
    ::pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
}

void EndGuard() {
    guard.on = 0;
    for (const int signal : kEnding)
        LetGo(signal, OnEnd);
    LetGo(SIGTSTP, OnStop);
}

}  // namespace

TerminalMode::TerminalMode(int terminal, bool echo) : terminal_(terminal) {
    if (::tcgetattr(terminal_, &before_) != 0) return;
    nested_ = guard.on != 0 && guard.terminal == terminal_;
    // In the background the terminal does not have the outer one's mode.
    if (nested_) before_ = guard.meanwhile;
    const bool has_key = before_.c_cc[VINTR] != _POSIX_VDISABLE;
    interrupt_key_ = has_key ? static_cast<char>(before_.c_cc[VINTR]) : kUsualInterruptKey;
    termios mode = before_;
    mode.c_iflag &= ~static_cast<tcflag_t>(IGNCR | INLCR);
    mode.c_iflag |= ICRNL;
    mode.c_lflag &= ~static_cast<tcflag_t>(ISIG | ECHO | ECHONL);
    mode.c_lflag |= ICANON;
    if (echo) mode.c_lflag |= ECHO;
    mode.c_cc[VEOL] = static_cast<cc_t>(*interrupt_key_);
    if (guard.on == 0) {
        BeginGuard(terminal_, before_, mode);
        guarded_ = true;
    } else if (nested_) {
        ChangeMeanwhile(mode);
    }
    SetMode(terminal_, mode);
    termios present{};
    hides_ = ::tcgetattr(terminal_, &present) == 0 && (present.c_lflag & ECHO) == 0;
}

TerminalMode::~TerminalMode() {
    if (guarded_ || nested_) ChangeMeanwhile(before_);
    if (interrupt_key_) Restore(terminal_, before_);
    if (guarded_) EndGuard();
}

}  // namespace kq
