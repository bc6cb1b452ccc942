#include "tools/TerminalProcess.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "tools/Spawn.h"

namespace kq {
namespace {

constexpr int kPatience = 30'000;  // ms
constexpr int kGlance = 20;        // ms

}  // namespace

TerminalProcess::TerminalProcess(const std::vector<std::string>& command,
                                 const std::vector<std::string>& environment) {
    std::array<char, 256> name{};
    if (openpty(&person_, &terminal_, name.data(), nullptr, nullptr) != 0)
        throw std::runtime_error("no terminal");
    for (const int end : {person_, terminal_})
        fcntl(end, F_SETFD, FD_CLOEXEC);
    // The first terminal that the leader of a new session opens is the session's own.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, name.data(), O_RDWR, 0);
    posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_ = Spawn(command, environment, actions, &attributes);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
}

TerminalProcess::~TerminalProcess() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    if (terminal_ >= 0) close(terminal_);
    if (person_ >= 0) close(person_);
}

void TerminalProcess::Await(const std::string& text) {
    for (;;) {
        const auto found = screen_.find(text, seen_);
        if (found != std::string::npos) {
            seen_ = found + text.size();
            return;
        }
        if (!ReadMore(kPatience)) throw std::runtime_error("no \"" + text + "\" on:\n" + screen_);
    }
}

void TerminalProcess::Type(const std::string& keys) const {
    if (write(person_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
        throw std::runtime_error("the terminal takes no keys");
}

void TerminalProcess::Answer(const std::string& question, const std::string& answer) {
    Await(question);
    Type(answer + "\n");
}

void TerminalProcess::ShowWhatIsTyped() const {
    termios mode{};
    tcgetattr(terminal_, &mode);
    mode.c_lflag |= ECHO;
    tcsetattr(terminal_, TCSANOW, &mode);
}

void TerminalProcess::HangUp() {
    close(terminal_);
    close(person_);
    terminal_ = person_ = -1;
}

void TerminalProcess::Signal(int signal) const {
    kill(pid_, signal);
}

int TerminalProcess::ExitCode() {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(kPatience);
    while (pid_ > 0) {
        ReadMore(kGlance);
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            exit_code_ = ExitCodeFrom(status);
        } else if (Clock::now() > deadline) {
            throw std::runtime_error("the program does not end after:\n" + screen_);
        }
    }
    while (ReadMore(0)) {
    }
    return exit_code_;
}

bool TerminalProcess::IsAsUsual() const {
    termios mode{};
    const tcflag_t usual = ECHO | ISIG | ICANON;
    return tcgetattr(terminal_, &mode) == 0 && (mode.c_lflag & usual) == usual;
}

bool TerminalProcess::ReadMore(int milliseconds) {
    pollfd more{person_, POLLIN, 0};
    if (poll(&more, 1, milliseconds) != 1) return false;
    std::array<char, 4096> bytes{};
    const ssize_t count = read(person_, bytes.data(), bytes.size());
    for (ssize_t i = 0; i < count; ++i) {
        if (bytes[static_cast<std::size_t>(i)] != '\r') screen_ += bytes[static_cast<std::size_t>(i)];
    }
    return count > 0;
}

}  // namespace kq
