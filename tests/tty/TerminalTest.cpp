// The port's terminal: a pseudo terminal with a person at its other side; files and pipes in its place.
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include <kqappsession/TtyPlatform.h>

#include "platform/DialogHost.h"
#include "platform/Patience.h"
#include "platform/TemporaryFolder.h"
#include "platform/Terminal.h"
#include "support/FakeEventLoop.h"

namespace kq {
namespace {

using End = Terminal::End;

BoxButton Ask(const PlatformPtr& platform) {
    return platform->dialogs->ShowMessageBox("Go on?", "Title", BoxStyle::YesNoCancel);
}

class RealTerminal : public testing::Test {
 protected:
    RealTerminal() {
        EXPECT_EQ(::openpty(&person_, &program_, nullptr, nullptr, nullptr), 0);
        terminal_ = MakeTerminal(loop_, program_, program_);
    }
    ~RealTerminal() override {
        ::close(person_);
        ::close(program_);
    }

    void Type(const std::string& text) {
        EXPECT_EQ(::write(person_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    // Types once the program reads, that is, once the terminal has the mode for it.
    void TypeWhenAsked(const std::string& text) {
        loop_->StartTimer(Milliseconds(0), [this, text] {
            if (Mode() & ISIG) return TypeWhenAsked(text);
            Type(text);
        });
    }
    Terminal::Answer Read(bool echo) {
        return terminal_->ReadLine("", echo, [] { return false; });
    }
    // What is on the screen up to this text; a terminal gives it in pieces.
    std::string ScreenUpTo(const std::string& end) {
        std::string screen;
        pollfd more{person_, POLLIN, 0};
        while (!screen.ends_with(end) && ::poll(&more, 1, static_cast<int>(kPatience.count())) == 1) {
            char bytes[1000];
            const ssize_t count = ::read(person_, bytes, sizeof bytes);
            if (count <= 0) break;
            screen.append(bytes, static_cast<std::size_t>(count));
        }
        return screen;
    }
    tcflag_t Mode() {
        termios mode{};
        ::tcgetattr(program_, &mode);
        return mode.c_lflag;
    }

    int person_ = -1, program_ = -1;
    std::shared_ptr<EventLoop> loop_ = MakePlatform()->loop;
    std::shared_ptr<Terminal> terminal_;
};

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

TEST_F(RealTerminal, IsCancelWhenItsUserHasStoppedTheOutputForTooLong) {
    ASSERT_EQ(::tcflow(program_, TCOOFF), 0);
    Type("1\n");
    EXPECT_EQ(Ask(MakeTtyPlatform(loop_, program_, program_)), BoxButton::Cancel);
    EXPECT_EQ(::tcflow(program_, TCOON), 0);
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

// --- The end of a program that asks, as a process of its own.

class EndOfAProgram : public RealTerminal {
 protected:
    ~EndOfAProgram() override {
        if (child_ <= 0) return;
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }

    // Runs the question in a child process and waits until it is asked.
    void Ask(const std::function<void(EventLoop&)>& meanwhile = {}) {
        Run([&] {
            const auto loop = MakePlatform()->loop;
            if (meanwhile) meanwhile(*loop);
            MakeTerminal(loop, program_, program_)->ReadLine("", false, [] { return false; });
        });
    }
    void Run(const std::function<void()>& program) {
        before_ = Mode();
        child_ = ::fork();
        if (child_ == 0) {
            // As in a shell, wherever the test runs: nothing is ignored, and a program with a parent outside
            // its group can be stopped.
            for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGUSR1, SIGTSTP})
                std::signal(signal, SIG_DFL);
            ::setpgid(0, 0);
            program();
            ::_exit(99);
        }
    }
    void StopAndGoOn() {
        ::kill(child_, SIGTSTP);
        EXPECT_TRUE(WIFSTOPPED(Status(WUNTRACED)));
        EXPECT_EQ(Mode(), before_);
        ::kill(child_, SIGCONT);
    }
    bool AwaitMode(tcflag_t mode) {
        const auto asked = [&] { return Mode() == mode; };
        for (int i = 0; i < 2000 && !asked(); ++i)
            ::poll(nullptr, 0, 10);
        return asked();
    }
    bool AwaitQuestion() { return AwaitMode(before_ & ~static_cast<tcflag_t>(ECHO | ISIG)); }
    int Status(int options = 0) {
        int status = 0;
        pid_t told = 0;
        for (int i = 0; i < 2000 && told == 0; ++i) {
            told = ::waitpid(child_, &status, options | WNOHANG);
            if (told == 0) ::poll(nullptr, 0, 10);
        }
        EXPECT_EQ(told, child_);
        if (told != child_) return status;
        if (!WIFSTOPPED(status)) child_ = -1;
        return status;
    }

    tcflag_t before_ = 0;
    pid_t child_ = -1;
};

TEST_F(EndOfAProgram, BySignalRestoresTheMode) {
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGUSR1}) {
        Ask();
        ASSERT_TRUE(AwaitQuestion());
        ::kill(child_, signal);
        const int status = Status();
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_EQ(Mode(), before_) << signal;
    }
}

TEST_F(EndOfAProgram, ByExitRestoresTheMode) {
    Ask([](EventLoop& loop) {
        loop.StartTimer(Milliseconds(50), [] { std::exit(7); });  // NOLINT(concurrency-mt-unsafe)
    });
    ASSERT_TRUE(AwaitQuestion());
    EXPECT_TRUE(WIFEXITED(Status()));
    EXPECT_EQ(Mode(), before_);
}

TEST_F(EndOfAProgram, IsNotTheEndOfASuspendedOne) {
    Ask();
    ASSERT_TRUE(AwaitQuestion());
    StopAndGoOn();
    EXPECT_TRUE(AwaitQuestion());
    Type("x\n");
    EXPECT_EQ(WEXITSTATUS(Status()), 99);
    EXPECT_EQ(Mode(), before_);
}

TEST_F(EndOfAProgram, IsNotTheEndOfASuspendedOneThatAsksWithinAQuestion) {
    Run([&] {
        const auto loop = MakePlatform()->loop;
        const auto terminal = MakeTerminal(loop, program_, program_);
        const auto never = [] { return false; };
        loop->StartTimer(Milliseconds(10), [&] { terminal->ReadLine("", false, never); });
        terminal->ReadLine("", true, never);
    });
    const tcflag_t outer = before_ & ~static_cast<tcflag_t>(ISIG);
    ASSERT_TRUE(AwaitQuestion());
    StopAndGoOn();
    ASSERT_TRUE(AwaitQuestion());
    Type("inner\n");
    ASSERT_TRUE(AwaitMode(outer));
    StopAndGoOn();
    ASSERT_TRUE(AwaitMode(outer));
    Type("outer\n");
    EXPECT_EQ(WEXITSTATUS(Status()), 99);
    EXPECT_EQ(Mode(), before_);
}

// --- A program in the background, whose terminal does not take a new mode from it at once.

class ProgramInTheBackground : public EndOfAProgram {
 protected:
    // The child is in the foreground of a session with this terminal; it stays until the test ends it. An
    // orphan is a program that nobody in the session can bring to the foreground.
    void RunInTheBackground(bool orphan, const std::function<void()>& program) {
        child_ = ::fork();
        if (child_ != 0) return;
        ::setsid();
        ::ioctl(program_, TIOCSCTTY, 0);
        if (::fork() == 0) {
            const pid_t parent = ::getpid();
            if (orphan && ::fork() != 0) ::_exit(0);
            ::setpgid(0, 0);
            ::alarm(60);
            while (::getppid() == parent)
                ::poll(nullptr, 0, 1);
            program();
            ::_exit(0);
        }
        ::alarm(60);
        for (;;)
            ::pause();
    }
};

TEST_F(ProgramInTheBackground, AsksForNoPasswordThatWouldBeShown) {
    int told[2] = {-1, -1};
    ASSERT_EQ(::pipe(told), 0);
    RunInTheBackground(true, [&] {
        const auto terminal = MakeTerminal(MakePlatform()->loop, program_, program_);
        const auto answer = terminal->ReadLine("Password: ", false, [] { return false; });
        const char end = answer.end == End::GivenUp ? 'g' : 'x';
        static_cast<void>(!::write(told[1], &end, 1));
    });
    pollfd more{told[0], POLLIN, 0};
    ASSERT_EQ(::poll(&more, 1, static_cast<int>(kPatience.count())), 1);
    char end = 0;
    EXPECT_EQ(::read(told[0], &end, 1), 1);
    EXPECT_EQ(end, 'g');
    EXPECT_NE(Mode() & ECHO, 0U);
    terminal_->Write("end");
    EXPECT_EQ(ScreenUpTo("end"), "end");
    ::close(told[0]);
    ::close(told[1]);
}

TEST_F(ProgramInTheBackground, HidesAPasswordAlthoughASignalInterruptsTheChangeOfMode) {
    static int terminal = -1;
    terminal = program_;
    before_ = Mode();
    RunInTheBackground(false, [&] {
        struct sigaction to_front {};
        to_front.sa_handler = [](int) { ::tcsetpgrp(terminal, ::getpgrp()); };
        ::sigaction(SIGTTOU, &to_front, nullptr);
        MakeTerminal(MakePlatform()->loop, program_, program_)->ReadLine("", false, [] { return false; });
    });
    EXPECT_TRUE(AwaitQuestion());
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

// --- What is no terminal

struct Pipe {
    Pipe() { EXPECT_EQ(::pipe(ends), 0); }
    ~Pipe() {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    int ends[2] = {-1, -1};
};

TEST(PipedAnswers, ServeAMessageBoxAndEndWithThePipe) {
    Pipe input;
    Pipe output;
    ASSERT_EQ(::write(input.ends[1], "x\r\n2", 4), 4);
    ::close(std::exchange(input.ends[1], -1));
    const auto platform = MakeTtyPlatform(nullptr, input.ends[0], output.ends[1]);
    EXPECT_EQ(Ask(platform), BoxButton::No);
    EXPECT_EQ(Ask(platform), BoxButton::Cancel);
    char bytes[1000];
    const ssize_t count = ::read(output.ends[0], bytes, sizeof bytes);
    EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(count)).substr(0, 56),
              "\n!  Title\nGo on?\n  1. Yes\n  2. No\n  3. Cancel\n[1]: \n[1]:");
}

TEST(AnOutputThatNobodyReads, IsCancelAndNoSignal) {
    Pipe input;
    Pipe output;
    ASSERT_EQ(::write(input.ends[1], "1\n", 2), 2);
    ::close(std::exchange(output.ends[0], -1));
    const auto before = std::signal(SIGPIPE, SIG_DFL);
    EXPECT_EQ(Ask(MakeTtyPlatform(nullptr, input.ends[0], output.ends[1])), BoxButton::Cancel);
    std::signal(SIGPIPE, before);
    sigset_t blocked;
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, nullptr, &blocked), 0);
    EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
}

TEST(FiledAnswers, ServeAMessageBoxAndEndWithTheFile) {
    const TemporaryFolder folder;
    folder.Put("answers", "no\n");
    const Pipe output;
    const int input = ::open(folder.File("answers").c_str(), O_RDONLY | O_CLOEXEC);
    const auto platform = MakeTtyPlatform(nullptr, input, output.ends[1]);
    EXPECT_EQ(Ask(platform), BoxButton::No);
    EXPECT_EQ(Ask(platform), BoxButton::Cancel);
    ::close(input);
}

TEST(NoAnswers, AreCancel) {
    const Pipe output;
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(Ask(MakeTtyPlatform(nullptr, nothing, output.ends[1])), BoxButton::Cancel);
    EXPECT_EQ(Ask(MakeTtyPlatform(nullptr, -1, output.ends[1])), BoxButton::Cancel);
    ::close(nothing);
}

TEST(AnswersWithoutALineEnd, AreCancelOnceTheyAreTooLong) {
    const TemporaryFolder folder;
    folder.Put("answers", std::string(1'000'000, '1'));
    const Pipe output;
    const int input = ::open(folder.File("answers").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(Ask(MakeTtyPlatform(nullptr, input, output.ends[1])), BoxButton::Cancel);
    ::close(input);
}

// A shell's "yes perhaps": never an answer, and always one there.
TEST(WrongAnswers, LeaveTheLoopRunning) {
    const TemporaryFolder folder;
    std::string wrong;
    for (int i = 0; i < 100'000; ++i)
        wrong += "perhaps\n";
    folder.Put("answers", wrong);
    const int input = ::open(folder.File("answers").c_str(), O_RDONLY | O_CLOEXEC);
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    const auto platform = MakeTtyPlatform(nullptr, input, nowhere);
    platform->loop->StartTimer(Milliseconds(0), [&] { platform->loop->Quit(); });
    EXPECT_EQ(Ask(platform), BoxButton::Cancel);
    char byte = 0;
    EXPECT_EQ(::read(input, &byte, 1), 1) << "every answer was taken";
    ::close(input);
    ::close(nowhere);
}

TEST_F(RealTerminal, IsCancelWhereItsUserSeesNoQuestion) {
    const Pipe output;
    Type("1\n");
    EXPECT_EQ(Ask(MakeTtyPlatform(loop_, program_, output.ends[1])), BoxButton::Cancel);
    EXPECT_EQ(Ask(MakeTtyPlatform(loop_, program_, -1)), BoxButton::Cancel);
}

}  // namespace
}  // namespace kq
