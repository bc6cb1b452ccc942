// The bytes stand in one buffer of this file's own, which is wiped; the C library's input buffers are not
// used. The terminal's stop key is held back while the echo is off, so that no shell appears on a silent
// terminal.
#include "tools/PasswordInput.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <string_view>
#include <termios.h>
#include <unistd.h>

namespace kq {
namespace {

constexpr std::size_t kLongest = 1'024;

class Buffer {
 public:
    Buffer() = default;
    ~Buffer() { WipeMemory(bytes_.data(), bytes_.size()); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    std::array<char, kLongest + 2>& Bytes() { return bytes_; }  // room for the longest line and its end

 private:
    std::array<char, kLongest + 2> bytes_{};
};

// Echo off while this lives.
class SilentTerminal {
 public:
    explicit SilentTerminal(int terminal) : terminal_(terminal) {
        sigset_t stop_key;
        sigemptyset(&stop_key);
        sigaddset(&stop_key, SIGTSTP);
        pthread_sigmask(SIG_BLOCK, &stop_key, &former_signals_);
        termios mode{};
        bool silent = tcgetattr(terminal_, &former_mode_) == 0;
        mode = former_mode_;
        mode.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
        mode.c_lflag |= ICANON | ISIG;
        silent = silent && tcsetattr(terminal_, TCSAFLUSH, &mode) == 0;
        if (!silent) {
            pthread_sigmask(SIG_SETMASK, &former_signals_, nullptr);
            throw PasswordError("the terminal's echo cannot be switched off");
        }
    }
    ~SilentTerminal() {
        tcsetattr(terminal_, TCSAFLUSH, &former_mode_);
        pthread_sigmask(SIG_SETMASK, &former_signals_, nullptr);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
    int terminal_;
    termios former_mode_{};
    sigset_t former_signals_{};
};

void Write(int output, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(output, text.data(), text.size());
        if (count <= 0) return;  // a prompt that nobody sees is no reason to fail
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

void WaitForInput(int input, int stop) {
    std::array<pollfd, 2> descriptors{{{input, POLLIN, 0}, {stop, POLLIN, 0}}};
    while (poll(descriptors.data(), descriptors.size(), -1) < 0) {
        if (errno != EINTR) throw PasswordError("standard input cannot be waited for");
    }
    if (descriptors[1].revents != 0) throw PasswordInterrupted();
}

Secret ReadLine(int input, int stop) {
    Buffer buffer;
    auto& bytes = buffer.Bytes();
    std::size_t count = 0;
    while (count < bytes.size()) {
        WaitForInput(input, stop);
        const ssize_t got = read(input, bytes.data() + count, bytes.size() - count);
        if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (got < 0) throw PasswordError("standard input cannot be read");
        if (got == 0 && count == 0) throw PasswordError("there is no password on standard input");
        const char* end = got == 0 ? bytes.data() + count
                                   : static_cast<const char*>(std::memchr(bytes.data() + count, '\n',
                                                                          static_cast<std::size_t>(got)));
        count += static_cast<std::size_t>(got);
        if (end == nullptr) continue;
        std::string_view line(bytes.data(), static_cast<std::size_t>(end - bytes.data()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.size() > kLongest) break;
        return Secret(line);
    }
    throw PasswordError("the password is over 1,024 bytes");
}

}  // namespace

Secret ReadPassword(int input, int prompt_output, const char* prompt, int stop) {
    if (isatty(input) == 0) return ReadLine(input, stop);
    struct EndOfLine {
        int output;
        ~EndOfLine() { Write(output, "\n"); }
    } const end_of_line{prompt_output};
    const SilentTerminal silent(input);
    Write(prompt_output, prompt);
    return ReadLine(input, stop);
}

}  // namespace kq
