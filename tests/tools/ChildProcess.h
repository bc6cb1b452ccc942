// A program that a test runs: its output line by line, its end, its exit code. The destructor ends it, by its
// process id; no wait is longer than 30 seconds.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace kq {

class ChildProcess {
 public:
    // `command`: the program's file, then its arguments. `environment`: NAME=VALUE, besides the test's own.
    explicit ChildProcess(const std::vector<std::string>& command,
                          const std::vector<std::string>& environment = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void Write(const std::string& text) const;
    void EndInput();
    // Reads standard output up to the first line that begins so and returns that line; what was read before
    // is skipped. Raises std::runtime_error with everything that was written when no such line comes.
    std::string AwaitLine(const std::string& beginning);
    void Signal(int signal) const;
    // Waits for the end. A program that a signal ended has the exit code 1000 plus the signal.
    int ExitCode();
    // The program finds no more room than a page in each of the pipes that it writes to.
    void ShrinkPipes() const;
    // ExitCode of a program whose output nobody reads before it has ended.
    int ExitCodeUnread();
    // All that was written so far, up to the end after ExitCode.
    const std::string& Output() const { return output_; }
    const std::string& Errors() const { return errors_; }

 private:
    bool HasEnded(int options);
    bool ReadMore();  // false at the end of both streams

    pid_t pid_ = -1;
    int exit_code_ = -1;
    int input_ = -1;
    int output_pipe_ = -1;
    int error_pipe_ = -1;
    std::string output_;
    std::string errors_;
    std::size_t seen_ = 0;  // of output_, by AwaitLine
};

}  // namespace kq
