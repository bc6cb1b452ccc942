// Reads passwords from standard input: a line of a file or a pipe, or a prompt without echo on a terminal.
#pragma once

#include <memory>
#include <stdexcept>

#include <kqappsession/Secret.h>

namespace kq {

// There is no password to read; the description says why.
struct PasswordError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A signal that the program handles itself, see StopSignals, ended the prompt.
struct PasswordInterrupted : PasswordError {
    PasswordInterrupted() : PasswordError("interrupted") {}
};

// While it lives, a terminal echoes nothing. Its former mode comes back with the destructor, and before any
// signal has its usual effect: one ends the program, is left to StopSignals, or stops the program until it is
// continued; in that case the echo is off again, nothing that was typed counts, and the prompt is repeated.
class PasswordInput {
 public:
    // Prompts are written to `output`, on a terminal only. Raises PasswordError when a terminal's echo cannot
    // be switched off.
    PasswordInput(int input, int output);
    ~PasswordInput();
    PasswordInput(const PasswordInput&) = delete;
    PasswordInput& operator=(const PasswordInput&) = delete;

    bool IsTerminal() const;
    // The next line without its end; from a file or a pipe only one is read. Waits for it. Raises
    // PasswordError when there is none or it is over 1,024 bytes.
    Secret Read(const char* prompt);

 private:
    class Signals;
    class Echo;
    class Line;
    void Handle(int signal);
    int AwaitInput();

    int input_;
    int output_;
    std::unique_ptr<Signals> signals_;
    std::unique_ptr<Echo> echo_;  // null when the input is not a terminal
};

}  // namespace kq
