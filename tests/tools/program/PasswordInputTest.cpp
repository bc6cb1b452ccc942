#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tools/program/PasswordInput.h"
#include "tools/program/StopSignals.h"

namespace kq {
namespace {

// Two connected descriptors, closed in the end.
class Pair {
 public:
    Pair() {
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends_.data()) != 0) throw std::runtime_error("socketpair");
    }
    ~Pair() {
        for (const int end : ends_) {
            if (end >= 0) close(end);
        }
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    int Inner() const { return ends_[0]; }
    void Write(const std::string& text) const {
        ASSERT_EQ(static_cast<ssize_t>(text.size()), write(ends_[1], text.data(), text.size()));
    }
    void End() const { shutdown(ends_[1], SHUT_WR); }

 private:
    std::array<int, 2> ends_{-1, -1};
};

// A terminal and the user in front of it.
class Terminal {
 public:
    Terminal() : user_(posix_openpt(O_RDWR | O_NOCTTY)) {
        grantpt(user_);
        unlockpt(user_);
        terminal_ = open(ptsname(user_), O_RDWR | O_NOCTTY);
        if (terminal_ < 0) throw std::runtime_error("no terminal");
    }
    ~Terminal() {
        close(terminal_);
        close(user_);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int Descriptor() const { return terminal_; }
    bool Echoes() const {
        termios mode{};
        tcgetattr(terminal_, &mode);
        return (mode.c_lflag & ECHO) != 0;
    }
    void Type(const std::string& text) const {
        ASSERT_EQ(static_cast<ssize_t>(text.size()), write(user_, text.data(), text.size()));
    }
    // What the user sees, until it ends with `end`.
    std::string See(const std::string& end) const {
        std::string seen;
        while (!seen.ends_with(end)) {
            char c = 0;
            pollfd ready{user_, POLLIN, 0};
            if (poll(&ready, 1, 10'000) != 1 || read(user_, &c, 1) != 1) break;
            seen += c;
        }
        return seen;
    }

 private:
    int user_;
    int terminal_ = -1;
};

std::string ReadFrom(const std::string& text) {
    const Pair input;
    input.Write(text);
    input.End();
    return PasswordInput(input.Inner(), STDERR_FILENO).Read("").Reveal();
}

// Read by another thread, while this one is the user.
std::future<std::string> ReadOn(const Terminal& terminal) {
    return std::async(std::launch::async, [&terminal] {
        return PasswordInput(terminal.Descriptor(), terminal.Descriptor()).Read("Password: ").Reveal();
    });
}

TEST(PasswordInput, TakesTheFirstLineOfAPipe) {
    EXPECT_EQ("s3cret", ReadFrom("s3cret\nmore\n"));
}

TEST(PasswordInput, TakesALineWithoutItsEnd) {
    EXPECT_EQ("s3cret", ReadFrom("s3cret"));
}

TEST(PasswordInput, TakesOffACarriageReturn) {
    EXPECT_EQ("s3cret", ReadFrom("s3cret\r\n"));
}

TEST(PasswordInput, KeepsBlanks) {
    EXPECT_EQ(" a b ", ReadFrom(" a b \n"));
}

TEST(PasswordInput, AnEmptyLineIsAnEmptyPassword) {
    EXPECT_EQ("", ReadFrom("\n"));
}

TEST(PasswordInput, RefusesAnInputWithoutALine) {
    EXPECT_THROW(ReadFrom(""), PasswordError);
}

TEST(PasswordInput, TakesTheLongestLineAndRefusesALongerOne) {
    EXPECT_EQ(1'024U, ReadFrom(std::string(1'024, 'x') + "\r\n").size());
    EXPECT_THROW(ReadFrom(std::string(1'025, 'x') + "\n"), PasswordError);
    EXPECT_THROW(ReadFrom(std::string(5'000, 'x')), PasswordError);
}

TEST(PasswordInput, PutsALineTogetherThatComesInPieces) {
    const Pair input;
    input.Write("s3");
    auto password = std::async(std::launch::async,
                               [&] { return PasswordInput(input.Inner(), STDERR_FILENO).Read("").Reveal(); });
    input.Write("cret\n");
    EXPECT_EQ("s3cret", password.get());
}

TEST(PasswordInput, EndsWhenASignalComesThatTheProgramHandles) {
    StopSignals signals;
    const Pair input;
    kill(getpid(), SIGINT);
    EXPECT_THROW(PasswordInput(input.Inner(), STDERR_FILENO).Read(""), PasswordInterrupted);
    EXPECT_EQ(SIGINT, signals.Received());
}

TEST(PasswordInput, PromptsOnATerminalWithoutShowingWhatIsTyped) {
    const Terminal terminal;
    auto password = ReadOn(terminal);
    EXPECT_EQ("Password: ", terminal.See(": "));
    EXPECT_FALSE(terminal.Echoes());
    terminal.Type("s3cret\n");
    EXPECT_EQ("s3cret", password.get());
    EXPECT_EQ("\r\n", terminal.See("\n"));
    EXPECT_TRUE(terminal.Echoes());
}

TEST(PasswordInput, HidesASecondPasswordThatWasTypedAhead) {
    const Terminal terminal;
    PasswordInput input(terminal.Descriptor(), terminal.Descriptor());
    terminal.Type("first\nsecond\n");
    EXPECT_EQ("first", input.Read("Password: ").Reveal());
    EXPECT_EQ("second", input.Read("Repeat: ").Reveal());
    EXPECT_EQ("Password: \r\nRepeat: \r\n", terminal.See("Repeat: \r\n"));
}

TEST(PasswordInput, GivesTheTerminalItsEchoBackWhenItIsInterrupted) {
    StopSignals signals;
    const Terminal terminal;
    auto password = ReadOn(terminal);
    EXPECT_EQ("Password: ", terminal.See(": "));
    kill(getpid(), SIGTERM);
    EXPECT_THROW(password.get(), PasswordInterrupted);
    EXPECT_TRUE(terminal.Echoes());
}

}  // namespace
}  // namespace kq
