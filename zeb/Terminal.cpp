// The terminal's echo is off while a password is typed, and on again whatever happens.
#include "zeb/Terminal.h"

#include <istream>
#include <ostream>
#include <termios.h>
#include <unistd.h>

#include <kqappsession/Error.h>

namespace kq::zeb {
namespace {

constexpr std::size_t kMaxLine = 4096;

class EchoOff {
 public:
    explicit EchoOff(bool terminal) {
        if (!terminal || tcgetattr(STDIN_FILENO, &before_) != 0) return;
        auto silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        changed_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) == 0;
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;
    ~EchoOff() {
        if (changed_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
    }

 private:
    termios before_{};
    bool changed_ = false;
};

Secret ReadLine(std::istream& in) {
    std::string line;
    line.reserve(kMaxLine);  // so that no copy is left behind
    for (int c = in.get(); c != std::istream::traits_type::eof() && c != '\n' && line.size() < kMaxLine;
         c = in.get()) {
        line.push_back(static_cast<char>(c));
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return Secret(std::move(line));
}

[[noreturn]] void Fail(const char* what) {
    throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebctl", what);
}

}  // namespace

Secret ReadNewPassword(std::istream& in, bool terminal, std::ostream& prompt) {
    const EchoOff echo_off(terminal);
    if (terminal) prompt << "Password: " << std::flush;
    auto password = ReadLine(in);
    if (terminal) {
        prompt << "\nThe same again: " << std::flush;
        const auto again = ReadLine(in);
        prompt << "\n";
        if (again.Reveal() != password.Reveal()) Fail("The two passwords differ.");
    }
    if (password.Empty()) Fail("No password was given on standard input.");
    return password;
}

bool StandardInputIsTerminal() {
    return isatty(STDIN_FILENO) == 1;
}

}  // namespace kq::zeb
