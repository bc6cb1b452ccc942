// The loop watches the input through a separate epoll. A file that is watched directly is made non-blocking,
// and that would also affect the program's output and the shell that started it, which share the terminal.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

#include "platform/Terminal.h"
#include "platform/posix/TerminalMode.h"

namespace kq {
namespace {

// Of a line; no terminal lets anybody type more than that.
constexpr std::size_t kLongest = 65'536;
// How long an output that takes nothing more, because its user has stopped it, is waited for.
constexpr std::chrono::seconds kStopped(10);
constexpr int kPause = 10;  // ms
// Written at once: as a rule an output that is ready has room for it.
constexpr std::size_t kPiece = 512;

// A pipe or socket that nobody reads any more is an error of the write and no end of the program.
ssize_t WriteWithoutSignal(int file, std::string_view text) {
    sigset_t pipe;
    sigset_t blocked;
    sigset_t pending;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    sigemptyset(&pending);
    ::sigpending(&pending);
    ::pthread_sigmask(SIG_BLOCK, &pipe, &blocked);
    const ssize_t count = ::write(file, text.data(), text.size());
    const int error = errno;
    if (count < 0 && error == EPIPE && sigismember(&pending, SIGPIPE) == 0) {
        const timespec now{};
        while (::sigtimedwait(&pipe, nullptr, &now) < 0 && errno == EINTR) {
        }
    }
    ::pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
    errno = error;
    return count;
}

class PosixTerminal final : public Terminal {
 public:
    PosixTerminal(std::shared_ptr<EventLoop> loop, int input, int output)
        : loop_(std::move(loop)),
          input_(input),
          output_(output),
          typed_by_hand_(::isatty(input) != 0),
          rewrites_(::isatty(output) != 0) {}
    PosixTerminal(const PosixTerminal&) = delete;
    PosixTerminal& operator=(const PosixTerminal&) = delete;
    ~PosixTerminal() override { Wipe(buffer_); }

    std::size_t Width() const override {
        winsize size{};
        return ::ioctl(output_, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
    }

    bool Rewrites() const override { return rewrites_; }

    void Write(std::string_view text) override {
        auto deadline = Clock::now() + kStopped;
        while (!text.empty() && !unseen_) {
            const bool ready = AwaitRoom(deadline);
            const ssize_t count = ready ? WriteWithoutSignal(output_, text.substr(0, kPiece)) : 0;
            if (count > 0) {
                text.remove_prefix(static_cast<std::size_t>(count));
                deadline = Clock::now() + kStopped;
            } else if (count < 0 && errno == EAGAIN) {
                ::poll(nullptr, 0, kPause);
            } else if (count == 0 || errno != EINTR) {
                unseen_ = true;
            }
        }
    }

    Answer ReadLine(std::string_view prompt, bool echo, const std::function<bool()>& stop) override {
        const TerminalMode mode(input_, echo);
        if (typed_by_hand_ && !echo && !mode.Hides()) return {End::GivenUp, {}};
        Write(prompt);
        if (unseen_ || (typed_by_hand_ && !rewrites_)) return {End::GivenUp, {}};
        const Listening listening(*this);
        std::optional<Answer> answer;
        const auto done = [&] { return stop() || (answer = TakeLine(mode.InterruptKey())); };
        loop_->RunUntil(done, EventLoop::TimePoint::max());
        if (!answer) return {End::Stopped, {}};
        // A terminal has shown the line's end itself when that was typed and seen.
        if (!echo || !typed_by_hand_ || answer->end == End::GivenUp) Write("\n");
        return std::move(*answer);
    }

 private:
    using Clock = std::chrono::steady_clock;

    // The input is watched while anybody reads.
    class Listening {
     public:
        explicit Listening(PosixTerminal& terminal) : terminal_(terminal) {
            if (terminal_.readers_ == 0) terminal_.Listen();
            ++terminal_.readers_;
        }
        Listening(const Listening&) = delete;
        Listening& operator=(const Listening&) = delete;
        ~Listening() {
            if (--terminal_.readers_ == 0) terminal_.Unlisten();
        }

     private:
        PosixTerminal& terminal_;
    };

    // False when the output does not become ready in time. An error is ready, for the write to tell.
    bool AwaitRoom(Clock::time_point deadline) const {
        pollfd room{output_, POLLOUT, 0};
        while (output_ >= 0) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0) return false;
            const int ready = ::poll(&room, 1, static_cast<int>(left.count()));
            if (ready >= 0 || errno != EINTR) return ready > 0;
        }
        return false;
    }

    // The end that a terminal's user typed may not have been answered by anybody.
    void Listen() {
        if (ended_ && ::isatty(input_) != 0) ended_ = false;
        if (ended_) return;
        epoll_event wanted{};
        wanted.events = EPOLLIN;
        epoll_ = ::epoll_create1(EPOLL_CLOEXEC);
        if (epoll_ < 0 || ::epoll_ctl(epoll_, EPOLL_CTL_ADD, input_, &wanted) != 0) return;
        try {
            watch_ = loop_->Watch(epoll_, {true, false}, [this](EventLoop::Readiness) { Read(); });
        } catch (...) {
            Unlisten();
            throw;
        }
    }

    void Unlisten() {
        if (watch_ != 0) loop_->Unwatch(std::exchange(watch_, 0));
        if (epoll_ >= 0) ::close(std::exchange(epoll_, -1));
    }

    void Read() {
        char bytes[4096];
        const ssize_t count = ::read(input_, bytes, sizeof bytes);
        if (count > 0) {
            Append({bytes, static_cast<std::size_t>(count)});
            WipeMemory(bytes, static_cast<std::size_t>(count));
        } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
            End();
        }
    }

    void End() {
        ended_ = true;
        if (watch_ != 0) loop_->ChangeWatch(watch_, {});
    }

    // A short text lives inside the object, and is still there when it has moved.
    void Refill(std::string&& text) {
        Wipe(buffer_);
        buffer_.swap(text);
        Wipe(text);
    }

    void Append(std::string_view bytes) {
        std::string longer;
        longer.reserve(buffer_.size() + bytes.size());
        longer.append(buffer_).append(bytes);
        Refill(std::move(longer));
    }

    // A file can always be read and never be waited for.
    std::size_t FindEnd(const std::string& ends) {
        std::size_t end = buffer_.find_first_of(ends);
        while (end == std::string::npos && watch_ == 0 && !ended_ && buffer_.size() <= kLongest) {
            Read();
            end = buffer_.find_first_of(ends);
        }
        if (end == std::string::npos && buffer_.size() > kLongest) {
            Wipe(buffer_);
            End();
        }
        return end;
    }

    std::optional<Answer> TakeLine(std::optional<char> interrupt_key) {
        std::string ends = "\n";
        if (interrupt_key) ends += *interrupt_key;
        const std::size_t end = FindEnd(ends);
        if (end == std::string::npos) return ended_ ? std::optional(TakeRest()) : std::nullopt;
        Answer answer{End::Line, {}};
        if (buffer_[end] == '\n') {
            std::string_view line = std::string_view(buffer_).substr(0, end);
            if (line.ends_with('\r')) line.remove_suffix(1);
            answer.line = Secret(line);
        } else {
            answer.end = End::GivenUp;
        }
        Refill(buffer_.substr(end + 1));
        return answer;
    }

    // A terminal's user may go on after the end; a file's end, and a terminal that has gone, stay.
    Answer TakeRest() {
        if (watch_ != 0 && ::isatty(input_) != 0) {
            ended_ = false;
            loop_->ChangeWatch(watch_, {true, false});
        }
        if (buffer_.empty()) return {End::GivenUp, {}};
        return {End::Line, Secret(std::move(buffer_))};
    }

    std::shared_ptr<EventLoop> loop_;
    const int input_;
    const int output_;
    const bool typed_by_hand_;
    const bool rewrites_;
    bool unseen_ = false;  // what is written does not arrive
    std::string buffer_;   // typed and not yet taken
    bool ended_ = false;
    int readers_ = 0;
    int epoll_ = -1;
    EventLoop::WatchId watch_ = 0;  // 0 while reading: the input cannot be waited for
};

}  // namespace

std::shared_ptr<Terminal> MakeTerminal(std::shared_ptr<EventLoop> loop, int input, int output) {
    return std::make_shared<PosixTerminal>(std::move(loop), input, output);
}

}  // namespace kq
