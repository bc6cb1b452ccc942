#include "tools/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

#include "tools/Spawn.h"

namespace kq {
namespace {

constexpr int kPatience = 30'000;  // ms
constexpr int kGlance = 10;        // ms

struct Pipe {
    Pipe() {
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe2");
    }
    std::array<int, 2> ends{-1, -1};
};

void Close(int& descriptor) {
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
}

// Appends what is there; closes the descriptor at its end.
void Take(int& descriptor, std::string& text) {
    std::array<char, 4096> bytes{};
    const ssize_t count = read(descriptor, bytes.data(), bytes.size());
    if (count > 0) text.append(bytes.data(), static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR)) Close(descriptor);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::vector<std::string>& environment) {
    std::signal(SIGPIPE, SIG_IGN);
    Pipe input;
    Pipe output;
    Pipe errors;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.ends[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.ends[1], STDERR_FILENO);
    pid_ = Spawn(command, environment, actions);
    posix_spawn_file_actions_destroy(&actions);
    close(input.ends[0]);
    close(output.ends[1]);
    close(errors.ends[1]);
    input_ = input.ends[1];
    output_pipe_ = output.ends[0];
    error_pipe_ = errors.ends[0];
}

ChildProcess::~ChildProcess() {
    Close(input_);
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    Close(output_pipe_);
    Close(error_pipe_);
}

void ChildProcess::Write(const std::string& text) const {
    if (write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("the program takes no input");
    }
}

void ChildProcess::EndInput() {
    Close(input_);
}

std::string ChildProcess::AwaitLine(const std::string& beginning) {
    for (;;) {
        for (auto end = output_.find('\n', seen_); end != std::string::npos;
             end = output_.find('\n', seen_)) {
            const std::string line = output_.substr(seen_, end - seen_);
            seen_ = end + 1;
            if (line.starts_with(beginning)) return line;
        }
        if (!ReadMore()) throw std::runtime_error("no line \"" + beginning + "\" in:\n" + output_ + errors_);
    }
}

void ChildProcess::Signal(int signal) const {
    kill(pid_, signal);
}

int ChildProcess::ExitCode() {
    while (ReadMore()) {
    }
    HasEnded(0);
    return exit_code_;
}

void ChildProcess::ShrinkPipes() const {
    for (const int pipe : {output_pipe_, error_pipe_}) {
        if (fcntl(pipe, F_SETPIPE_SZ, 4096) < 0) throw std::runtime_error("F_SETPIPE_SZ");
    }
}

int ChildProcess::ExitCodeUnread() {
    for (int waited = 0; !HasEnded(WNOHANG); waited += kGlance) {
        if (waited > kPatience) throw std::runtime_error("the program does not end");
        poll(nullptr, 0, kGlance);
    }
    return ExitCode();
}

bool ChildProcess::HasEnded(int options) {
    int status = 0;
    if (pid_ > 0 && waitpid(pid_, &status, options) == pid_) {
        pid_ = -1;
        exit_code_ = ExitCodeFrom(status);
    }
    return pid_ < 0;
}

bool ChildProcess::ReadMore() {
    std::array<pollfd, 2> pipes{{{output_pipe_, POLLIN, 0}, {error_pipe_, POLLIN, 0}}};
    if (output_pipe_ < 0 && error_pipe_ < 0) return false;
    if (poll(pipes.data(), pipes.size(), kPatience) == 0) {
        throw std::runtime_error("the program is silent after:\n" + output_ + errors_);
    }
    if (pipes[0].revents != 0) Take(output_pipe_, output_);
    if (pipes[1].revents != 0) Take(error_pipe_, errors_);
    return true;
}

}  // namespace kq
