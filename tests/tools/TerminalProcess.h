// A program that a test runs on a terminal of its own, and the person who sits at it. The destructor ends the
// program, by its process id; no wait is longer than 30 seconds.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace kq {

class TerminalProcess {
 public:
    // `command`: the program's file, then its arguments. `environment`: NAME=VALUE, besides the test's own.
    TerminalProcess(const std::vector<std::string>& command, const std::vector<std::string>& environment);
    ~TerminalProcess();
    TerminalProcess(const TerminalProcess&) = delete;
    TerminalProcess& operator=(const TerminalProcess&) = delete;

    // Waits for this text on the screen, behind the one that was awaited before. Raises std::runtime_error
    // with the whole screen when it does not come.
    void Await(const std::string& text);
    void Type(const std::string& keys) const;
    // Awaits a question, then types the answer and the Enter key.
    void Answer(const std::string& question, const std::string& answer);
    // The terminal shows what is typed, whatever the program has set.
    void ShowWhatIsTyped() const;
    void HangUp();  // as when the line to a far terminal breaks
    void Signal(int signal) const;
    // Waits for the end. A program that a signal ended has the exit code 1000 plus the signal.
    int ExitCode();

    // All that was shown so far, up to the end after ExitCode; lines end with "\n".
    const std::string& Screen() const { return screen_; }
    // Whether the terminal shows what is typed and sends signals for keys.
    bool IsAsUsual() const;

 private:
    bool ReadMore(int milliseconds);  // false when nothing came

    pid_t pid_ = -1;
    int exit_code_ = -1;
    int person_ = -1;
    int terminal_ = -1;  // kept open, so that its mode can be read when the program is gone
    std::string screen_;
    std::size_t seen_ = 0;
};

}  // namespace kq
