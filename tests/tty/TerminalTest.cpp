// The port's terminal while it reads and writes.
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <thread>
#include <utility>

#include "support/FakeEventLoop.h"
#include "tty/RealTerminal.h"

namespace kq {
namespace {

using End = Terminal::End;

TEST_F(RealTerminal, GivesALineAsItWasTyped) {
    TypeWhenAsked("gr\xc3\xbc\xc3\x9f dich\n");
    const auto answer = Read(true);
    EXPECT_EQ(answer.end, End::Line);
    EXPECT_EQ(answer.line.Reveal(), "gr\xc3\xbc\xc3\x9f dich");
}

TEST_F(RealTerminal, ShowsWhatIsTypedOnlyWithEcho) {
    TypeWhenAsked("seen\n");
    Read(true);
    TypeWhenAsked("hidden\n");
    EXPECT_EQ(Read(false).line.Reveal(), "hidden");
    terminal_->Write("end");
    EXPECT_EQ(ScreenUpTo("end"), "seen\r\n\r\nend");
}

TEST_F(RealTerminal, ShowsNothingThatIsTypedAfterThePromptForAPassword) {
    std::thread user([this] {
        EXPECT_EQ(ScreenUpTo("Password: "), "Password: ");
        Type("hidden\n");
    });
    const auto answer = terminal_->ReadLine("Password: ", false, [] { return false; });
    user.join();
    EXPECT_EQ(answer.line.Reveal(), "hidden");
    terminal_->Write("end");
    EXPECT_EQ(ScreenUpTo("end"), "\r\nend");
}

TEST_F(RealTerminal, TakesTheInterruptKeyAsGivingUp) {
    TypeWhenAsked("half\x03");
    EXPECT_EQ(Read(true).end, End::GivenUp);
    TypeWhenAsked("next\n");
    EXPECT_EQ(Read(true).line.Reveal(), "next");
}

TEST_F(RealTerminal, KnowsTheInterruptKeyOfItsUser) {
    termios mode{};
    ::tcgetattr(program_, &mode);
    mode.c_cc[VINTR] = 11;
    ::tcsetattr(program_, TCSANOW, &mode);
    TypeWhenAsked("half\x0b");
    EXPECT_EQ(Read(false).end, End::GivenUp);
}

TEST_F(RealTerminal, TakesTheEndKeyAsGivingUpAndGoesOn) {
    TypeWhenAsked("\x04");
    EXPECT_EQ(Read(true).end, End::GivenUp);
    TypeWhenAsked("next\n");
    EXPECT_EQ(Read(true).line.Reveal(), "next");
}

TEST_F(RealTerminal, GivesUpForGoodWhenItHasGone) {
    loop_->StartTimer(Milliseconds(10), [this] { ::close(std::exchange(person_, -1)); });
    EXPECT_EQ(Read(true).end, End::GivenUp);
    EXPECT_EQ(Read(true).end, End::GivenUp);
}

TEST_F(RealTerminal, IsInItsOldModeAfterEachAnswer) {
    const tcflag_t before = Mode();
    TypeWhenAsked("x\n");
    Read(false);
    EXPECT_EQ(Mode(), before);
    loop_->StartTimer(Milliseconds(10), [&] {
        EXPECT_EQ(Mode() & (ECHO | ISIG), 0U);
        loop_->Quit();
    });
    EXPECT_EQ(Read(false).end, End::Stopped);
    EXPECT_EQ(Mode(), before);
}

TEST_F(RealTerminal, IsInItsOldModeAfterAnException) {
    const tcflag_t before = Mode();
    EXPECT_THROW(terminal_->ReadLine("", false, []() -> bool { throw std::runtime_error("x"); }),
                 std::runtime_error);
    EXPECT_EQ(Mode(), before);
}

TEST_F(RealTerminal, LeavesTheInputBlockingWhileItReads) {
    loop_->StartTimer(Milliseconds(10), [&] {
        EXPECT_EQ(::fcntl(program_, F_GETFL) & O_NONBLOCK, 0);
        Type("x\n");
    });
    EXPECT_EQ(Read(true).end, End::Line);
}

TEST_F(RealTerminal, GoesOnAfterAnEndKeyThatNobodyAnswered) {
    Type("\x04");
    const auto taken = [this] {
        pollfd more{program_, POLLIN, 0};
        return ::poll(&more, 1, 0) == 0;
    };
    EXPECT_EQ(terminal_->ReadLine("", true, taken).end, End::Stopped);
    TypeWhenAsked("next\n");
    EXPECT_EQ(Read(true).line.Reveal(), "next");
}

TEST_F(RealTerminal, KeepsNoFileOpenWhenTheLoopCannotWatchIt) {
    const auto terminal = MakeTerminal(std::make_shared<FakeEventLoop>(), program_, program_);
    const auto next_file = [] {
        const int file = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::close(file);
        return file;
    };
    const int before = next_file();
    for (int i = 0; i < 2; ++i)
        EXPECT_THROW(terminal->ReadLine("", true, [] { return false; }), FakeFailure);
    EXPECT_EQ(next_file(), before);
}

TEST_F(RealTerminal, ShowsAllOfALongText) {
    const std::string text = std::string(20'000, 'x') + "end";
    std::thread writer([&] { terminal_->Write(text); });
    EXPECT_EQ(ScreenUpTo("end"), text);
    writer.join();
}

TEST_F(RealTerminal, StopsReadingWhenAskedTo) {
    bool stop = false;
    loop_->StartTimer(Milliseconds(10), [&] { stop = true; });
    EXPECT_EQ(terminal_->ReadLine("", true, [&] { return stop; }).end, End::Stopped);
}

TEST_F(RealTerminal, GivesLinesThatWereTypedAheadOneByOne) {
    Type("one\ntwo\n");
    EXPECT_EQ(Read(true).line.Reveal(), "one");
    EXPECT_EQ(Read(true).line.Reveal(), "two");
}

TEST_F(RealTerminal, GivesTheInnermostReaderTheNextLine) {
    std::string inner;
    loop_->StartTimer(Milliseconds(10), [&] {
        TypeWhenAsked("inner\n");
        inner = Read(false).line.Reveal();
        TypeWhenAsked("outer\n");
    });
    EXPECT_EQ(Read(true).line.Reveal(), "outer");
    EXPECT_EQ(inner, "inner");
}

TEST_F(RealTerminal, ServesSocketsAndTimersWhileItReads) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    std::string received;
    const auto watch = loop_->Watch(ends[0], {true, false}, [&](EventLoop::Readiness) {
        char byte = 0;
        if (::read(ends[0], &byte, 1) == 1) received += byte;
        if (received == "ab") Type("x\n");
    });
    EXPECT_EQ(::write(ends[1], "a", 1), 1);
    loop_->StartTimer(Milliseconds(10), [&] { EXPECT_EQ(::write(ends[1], "b", 1), 1); });
    EXPECT_EQ(Read(true).end, End::Line);
    EXPECT_EQ(received, "ab");
    loop_->Unwatch(watch);
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(RealTerminal, IsAsWideAsItIsNow) {
    winsize size{};
    size.ws_col = 37;
    ::ioctl(program_, TIOCSWINSZ, &size);
    EXPECT_EQ(terminal_->Width(), 37U);
    EXPECT_TRUE(terminal_->Rewrites());
}

TEST_F(RealTerminal, LeavesSignalsAloneThatTheProgramHandlesAndThoseOfOtherTimes) {
    const auto handler_of = [](int signal) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        return action.sa_handler;
    };
    const auto mine = [](int) {};
    void (*const my_handler)(int) = mine;
    std::signal(SIGUSR2, my_handler);
    loop_->StartTimer(Milliseconds(10), [&] {
        EXPECT_EQ(handler_of(SIGUSR2), my_handler);
        EXPECT_NE(handler_of(SIGTERM), SIG_DFL);
        Type("x\n");
    });
    Read(false);
    EXPECT_EQ(handler_of(SIGUSR2), my_handler);
    EXPECT_EQ(handler_of(SIGTERM), SIG_DFL);
    EXPECT_EQ(handler_of(SIGTSTP), SIG_DFL);
    std::signal(SIGUSR2, SIG_DFL);
}

}  // namespace
}  // namespace kq
