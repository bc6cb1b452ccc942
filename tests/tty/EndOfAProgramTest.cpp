// A program that asks and ends, is suspended or is in the background, as a process of its own.
#include <csignal>
#include <cstdlib>
#include <functional>
#include <sys/ioctl.h>
#include <sys/wait.h>

#include "tty/RealTerminal.h"

namespace kq {
namespace {

using End = Terminal::End;

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
            const auto loop = MakePlatform()->Loop();
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
        const auto loop = MakePlatform()->Loop();
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
        const auto terminal = MakeTerminal(MakePlatform()->Loop(), program_, program_);
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
        MakeTerminal(MakePlatform()->Loop(), program_, program_)->ReadLine("", false, [] { return false; });
    });
    EXPECT_TRUE(AwaitQuestion());
}

}  // namespace
}  // namespace kq
