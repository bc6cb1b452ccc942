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

// The prompt was ended by a signal that the program handles (see StopSignals).
struct PasswordInterrupted : PasswordError {
    PasswordInterrupted() : PasswordError("interrupted") {}
};

// Turns the echo of a terminal off for its lifetime. The former mode is restored by the destructor and before
// any signal has its usual effect: it ends the program, is left to StopSignals, or stops the program until it
// is continued. After that the echo is off again, what was typed is dropped, and the prompt is repeated.
class PasswordInput {
 public:
    // Writes prompts to `output`, on a terminal only. Raises PasswordError when a terminal's echo cannot be
    // turned off.
    PasswordInput(int input, int output);
    ~PasswordInput();
    PasswordInput(const PasswordInput&) = delete;
    PasswordInput& operator=(const PasswordInput&) = delete;

    bool IsTerminal() const;
    // Waits for the next line and returns it without its end; from a file or a pipe only one line is read.
    // Raises PasswordError when there is none or it is over 1,024 bytes.
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
