// Signals are blocked and read like bytes. Each gets its effect here, between two reads, while the terminal
// has its former mode. So there is no signal handler that would have to know the terminal.
//
// The bytes are kept in one buffer of this file, which is wiped; the C library's input buffers are not used.
#include "tools/program/PasswordInput.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <optional>
#include <poll.h>
#include <string_view>
#include <sys/signalfd.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

#include "tools/program/StopSignals.h"

namespace kq {
namespace {

constexpr std::size_t kLongest = 1'024;

// What ends a program by default, apart from its own faults, what stops it from the keyboard, and what
// continues it. Those that stop a program in the background keep their effect at any moment.
constexpr std::array kSignals = {SIGHUP,  SIGINT,  SIGQUIT, SIGUSR1,   SIGUSR2, SIGPIPE, SIGALRM,
                                 SIGTERM, SIGXCPU, SIGXFSZ, SIGVTALRM, SIGPROF, SIGTSTP, SIGCONT};

void Show(int output, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(output, text.data(), text.size());
        if (count <= 0) return;  // a prompt that nobody sees is no reason to fail
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace

// Holds the signals back while it lives.
class PasswordInput::Signals {
 public:
    Signals() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : kSignals) {
            if (!IsIgnored(signal)) sigaddset(&signals, signal);
        }
        descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
        if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "Cannot handle signals");
        pthread_sigmask(SIG_BLOCK, &signals, &former_);
    }
    ~Signals() {
        pthread_sigmask(SIG_SETMASK, &former_, nullptr);
        close(descriptor_);
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    int Descriptor() const { return descriptor_; }
    // The next signal that has come; 0 when there is none.
    int Take() const {
        signalfd_siginfo info{};
        return read(descriptor_, &info, sizeof info) == sizeof info ? static_cast<int>(info.ssi_signo) : 0;
    }
    // Returns when the program goes on afterwards. False when the program held the signal back before this
    // object did; it is pending again.
    bool LetActUsually(int signal) const {
        sigset_t held;
        pthread_sigmask(SIG_SETMASK, &former_, &held);
        raise(signal);
        pthread_sigmask(SIG_SETMASK, &held, nullptr);
        return sigismember(&former_, signal) == 0;
    }
    void ForgetContinue() const {
        sigset_t one;
        sigemptyset(&one);
        sigaddset(&one, SIGCONT);
        const timespec now{};
        while (sigtimedwait(&one, nullptr, &now) > 0) {
        }
    }

 private:
    sigset_t former_{};
    int descriptor_ = -1;
};

// Neither change waits for output, which may be stopped. Input that was typed before a change is dropped: it
// is seen already, or a part of a password that must not become a shell's input.
class PasswordInput::Echo {
 public:
    explicit Echo(int terminal) : terminal_(terminal) {
        if (tcgetattr(terminal_, &former_) != 0) Fail();
        SwitchOff();
    }
    ~Echo() { Restore(); }
    Echo(const Echo&) = delete;
    Echo& operator=(const Echo&) = delete;

    // In the background this stops the program until it is in the foreground.
    void SwitchOff() {
        termios mode = former_;
        mode.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
        mode.c_lflag |= ICANON | ISIG;
        tcflush(terminal_, TCIFLUSH);
        while (tcsetattr(terminal_, TCSANOW, &mode) != 0) {
            if (errno != EINTR) Fail();
        }
        if (tcgetattr(terminal_, &mode) != 0 || (mode.c_lflag & ECHO) != 0) Fail();
    }
    // In the background the terminal has the mode of another program.
    void Restore() const {
        const pid_t in_front = tcgetpgrp(terminal_);
        if (in_front >= 0 && in_front != getpgrp()) return;
        tcflush(terminal_, TCIFLUSH);
        tcsetattr(terminal_, TCSANOW, &former_);
    }

 private:
    [[noreturn]] static void Fail() { throw PasswordError("the terminal's echo cannot be switched off"); }

    int terminal_;
    termios former_{};
};

// The line that is being read.
class PasswordInput::Line {
 public:
    Line() = default;
    ~Line() { Clear(); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    void Clear() {
        WipeMemory(bytes_.data(), bytes_.size());
        count_ = 0;
    }
    // Reads what is there; the line once its end is among it.
    std::optional<Secret> ReadFrom(int input) {
        char* const place = bytes_.data() + count_;
        const ssize_t got = read(input, place, bytes_.size() - count_);
        if (got < 0 && (errno == EINTR || errno == EAGAIN)) return std::nullopt;
        if (got < 0) throw PasswordError("standard input cannot be read");
        if (got == 0 && count_ == 0) throw PasswordError("there is no password on standard input");
        const auto* const end =
            got == 0 ? place
                     : static_cast<const char*>(std::memchr(place, '\n', static_cast<std::size_t>(got)));
        count_ += static_cast<std::size_t>(got);
        if (end == nullptr && count_ < bytes_.size()) return std::nullopt;
        std::string_view line(bytes_.data(),
                              end == nullptr ? count_ : static_cast<std::size_t>(end - bytes_.data()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.size() > kLongest) throw PasswordError("the password is over 1,024 bytes");
        return Secret(line);
    }

 private:
    std::array<char, kLongest + 2> bytes_{};  // room for the longest line and its end
    std::size_t count_ = 0;
};

PasswordInput::PasswordInput(int input, int output)
    : input_(input),
      output_(output),
      signals_(std::make_unique<Signals>()),
      echo_(isatty(input) != 0 ? std::make_unique<Echo>(input) : nullptr) {}

PasswordInput::~PasswordInput() {
    echo_.reset();  // before a signal that comes now may end the program
}

bool PasswordInput::IsTerminal() const {
    return echo_ != nullptr;
}

Secret PasswordInput::Read(const char* prompt) {
    Line line;
    if (echo_) Show(output_, prompt);
    for (;;) {
        if (const int signal = AwaitInput()) {
            Handle(signal);
            if (!echo_) continue;
            line.Clear();
            Show(output_, prompt);
        } else if (auto password = line.ReadFrom(input_)) {
            if (echo_) Show(output_, "\n");
            return *std::move(password);
        }
    }
}

// The signal that came before any input, or 0.
int PasswordInput::AwaitInput() {
    for (;;) {
        std::array<pollfd, 2> descriptors{{{signals_->Descriptor(), POLLIN, 0}, {input_, POLLIN, 0}}};
        if (poll(descriptors.data(), descriptors.size(), -1) < 0 && errno != EINTR)
            throw PasswordError("standard input cannot be waited for");
        if (descriptors[0].revents != 0) return signals_->Take();
        if (descriptors[1].revents != 0) return 0;
    }
}

void PasswordInput::Handle(int signal) {
    if (echo_) {
        echo_->Restore();
        Show(output_, "\n");
    }
    if (!signals_->LetActUsually(signal)) throw PasswordInterrupted();
    if (!echo_) return;
    echo_->SwitchOff();
    signals_->ForgetContinue();
}

}  // namespace kq
