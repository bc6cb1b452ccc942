// Files and pipes in the place of a terminal, and an output that nobody sees.
#include <csignal>
#include <fcntl.h>
#include <string>
#include <utility>

#include <kqappsession/Error.h>

#include "forms/DialogHost.h"
#include "platform/Machine.h"
#include "platform/TemporaryFolder.h"
#include "tty/RealTerminal.h"

namespace kq {
namespace {

BoxButton Ask(const PlatformPtr& platform) {
    return platform->Parts().dialogs->ShowMessageBox("Go on?", "Title", BoxStyle::YesNoCancel);
}

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
    platform->Loop()->StartTimer(Milliseconds(0), [&] { platform->Loop()->Quit(); });
    EXPECT_EQ(Ask(platform), BoxButton::Cancel);
    char byte = 0;
    EXPECT_EQ(::read(input, &byte, 1), 1) << "every answer was taken";
    ::close(input);
    ::close(nowhere);
}

using HiddenQuestion = RealTerminal;

TEST_F(HiddenQuestion, IsCancelWhereItsUserSeesNoQuestion) {
    const Pipe output;
    Type("1\n");
    EXPECT_EQ(Ask(MakeTtyPlatform(loop_, program_, output.ends[1])), BoxButton::Cancel);
    EXPECT_EQ(Ask(MakeTtyPlatform(loop_, program_, -1)), BoxButton::Cancel);
}

TEST_F(HiddenQuestion, IsCancelWhenItsUserHasStoppedTheOutputForTooLong) {
    ASSERT_EQ(::tcflow(program_, TCOOFF), 0);
    Type("1\n");
    EXPECT_EQ(Ask(MakeTtyPlatform(loop_, program_, program_)), BoxButton::Cancel);
    EXPECT_EQ(::tcflow(program_, TCOON), 0);
}

TEST(ALanguageThatIsNoLocaleIdentifier, IsRefused) {
    EXPECT_THROW(MakeTtyPlatform(nullptr, 0, 2, 99'999), Error);
}

}  // namespace
}  // namespace kq
