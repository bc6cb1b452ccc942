// A write of no more than PIPE_BUF bytes does not block once the output has reported room.
#include "tools/program/Output.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <system_error>
#include <unistd.h>

#include <climits>

#include "tools/program/OneLine.h"

namespace kq {
namespace {

using Clock = std::chrono::steady_clock;

std::string Reason(int error) {
    if (error == ETIMEDOUT) return "nobody reads it";
    if (error == EINTR) return "interrupted";
    return std::generic_category().message(error);
}

// The time left as poll wants it.
int Left(const Patience& patience, Clock::time_point start) {
    if (patience.time == std::chrono::milliseconds::max()) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(start + patience.time - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT_MAX));
}

// 0 when there is room, or an error for the write to tell.
int AwaitRoom(int descriptor, const Patience& patience) {
    const auto start = Clock::now();
    for (;;) {
        std::array<pollfd, 2> descriptors{{{descriptor, POLLOUT, 0}, {patience.stop, POLLIN, 0}}};
        const int ready = poll(descriptors.data(), descriptors.size(), Left(patience, start));
        if (ready < 0 && errno != EINTR) return errno;
        if (ready == 0) return ETIMEDOUT;
        if (ready > 0 && descriptors[0].revents != 0) return 0;
        if (ready > 0) return EINTR;
    }
}

}  // namespace

int WriteAll(int descriptor, std::string_view& text, const Patience& patience) {
    while (!text.empty()) {
        if (const int error = AwaitRoom(descriptor, patience)) return error;
        const ssize_t count = write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (count < 0 && errno != EINTR && errno != EAGAIN) {
            return errno;
        }
    }
    return 0;
}

OutputError::OutputError(int error)
    : std::runtime_error("standard output cannot be written: " + Reason(error)) {}

void Print(std::string_view text, const Patience& patience) {
    if (const int error = WriteAll(STDOUT_FILENO, text, patience)) throw OutputError(error);
}

void Complain(std::string_view program, std::string_view what) {
    const std::string line = std::string(program) + ": " + OneLine(what) + "\n";
    std::string_view rest = line;
    WriteAll(STDERR_FILENO, rest, {.time = std::chrono::seconds(1)});
}

OutputStream::OutputStream(int descriptor, const Patience& patience)
    : std::ostream(this), descriptor_(descriptor), patience_(patience) {}

int OutputStream::overflow(int c) {
    if (c != std::streambuf::traits_type::eof()) waiting_ += std::streambuf::traits_type::to_char_type(c);
    return std::streambuf::traits_type::not_eof(c);
}

std::streamsize OutputStream::xsputn(const char* bytes, std::streamsize count) {
    waiting_.append(bytes, static_cast<std::size_t>(count));
    return count;
}

int OutputStream::sync() {
    std::string_view rest = waiting_;
    if (error_ == 0) error_ = WriteAll(descriptor_, rest, patience_);
    waiting_.clear();
    return error_ == 0 ? 0 : -1;
}

}  // namespace kq
