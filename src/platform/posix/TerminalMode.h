// The mode of a terminal while a line is read from it.
#pragma once

#include <optional>
#include <termios.h>

namespace kq {

// While it lives the system's terminal edits a line and hands it over whole, with or without echo; the
// interrupt key sends no signal but ends the line, as its last character. The mode before comes back with the
// destructor, at the program's exit, before the default action of a usual signal ends the program (SIGHUP,
// SIGINT, SIGTERM, those of faults and others, but for example not SIGKILL) and before that of SIGTSTP stops
// it. They nest on one terminal: the inner one goes first. Does nothing to what is no terminal.
class TerminalMode {
 public:
    TerminalMode(int terminal, bool echo);
    ~TerminalMode();
    TerminalMode(const TerminalMode&) = delete;
    TerminalMode& operator=(const TerminalMode&) = delete;

    // Nothing for what is no terminal.
    std::optional<char> InterruptKey() const { return interrupt_key_; }
    // Whether the terminal says that it shows nothing of what is typed.
    bool Hides() const { return hides_; }

 private:
    const int terminal_;
    termios before_{};
    std::optional<char> interrupt_key_;
    bool hides_ = false;
    bool guarded_ = false;  // began the guard
    bool nested_ = false;   // within another one of the guarded terminal
};

}  // namespace kq
