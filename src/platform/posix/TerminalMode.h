// The mode of a terminal while a line is read from it.
#pragma once

#include <optional>
#include <termios.h>

namespace kq {

// While it lives the system's terminal edits a line and hands it over whole, with or without echo; the
// interrupt key sends no signal but ends the line, as its last character. The mode before comes back with the
// destructor, at the program's exit and before a signal of default action ends or stops the program.
// Does nothing to what is no terminal.
class TerminalMode {
 public:
    TerminalMode(int terminal, bool echo);
    ~TerminalMode();
    TerminalMode(const TerminalMode&) = delete;
    TerminalMode& operator=(const TerminalMode&) = delete;

    // Nothing for what is no terminal.
    std::optional<char> InterruptKey() const { return interrupt_key_; }

 private:
    const int terminal_;
    termios before_{};
    std::optional<char> interrupt_key_;
    bool guarded_ = false;
};

}  // namespace kq
