// Reads a password from standard input: one line when that is a file or a pipe, a prompt without echo when it
// is a terminal.
#pragma once

#include <stdexcept>

#include <kqappsession/Secret.h>

namespace kq {

// There is no password to read; the sentence says why.
struct PasswordError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A signal ended the prompt.
struct PasswordInterrupted : PasswordError {
    PasswordInterrupted() : PasswordError("interrupted") {}
};

// The line without its end. A terminal echoes nothing meanwhile, and has its old mode again however this
// ends; `prompt` and the line's end are written to `prompt_output` then. Waits until a line is there or
// `stop` becomes readable (PasswordInterrupted). Raises PasswordError when there is no line at all or it
// is over 1,024 bytes.
Secret ReadPassword(int input, int prompt_output, const char* prompt, int stop);

}  // namespace kq
