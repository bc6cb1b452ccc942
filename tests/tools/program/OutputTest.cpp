#include <cerrno>
#include <csignal>
#include <fcntl.h>

#include <gtest/gtest.h>

#include "tools/program/Output.h"
#include "tools/program/Pipe.h"

namespace kq {
namespace {

int WriteTo(int descriptor, std::string_view text, const Patience& patience = {}) {
    return WriteAll(descriptor, text, patience);
}

TEST(Output, WritesALongTextWhole) {
    const Pipe pipe;
    const std::string text = std::string(4'000, 'x') + "end";
    EXPECT_EQ(WriteTo(pipe.Writer(), text), 0);
    EXPECT_EQ(pipe.ReadUpTo("end"), text);
}

TEST(Output, LeavesWhatItCouldNotWrite) {
    const Pipe pipe;
    const std::string text(5'000, 'x');
    std::string_view rest = text;
    EXPECT_EQ(WriteAll(pipe.Writer(), rest, {.time = std::chrono::milliseconds(1)}), ETIMEDOUT);
    EXPECT_EQ(rest.size(), 904U);
}

TEST(Output, StopsWaitingWhenItIsAskedTo) {
    const Pipe pipe;
    const Pipe stop;
    pipe.Fill();
    stop.Fill();
    EXPECT_EQ(WriteTo(pipe.Writer(), "x", {.stop = stop.Reader()}), EINTR);
}

TEST(Output, IsWrittenAlsoAfterTheRequestToStopWhenThereIsRoom) {
    const Pipe pipe;
    const Pipe stop;
    stop.Fill();
    EXPECT_EQ(WriteTo(pipe.Writer(), "x", {.stop = stop.Reader()}), 0);
}

TEST(Output, TellsThatItsReaderHasGone) {
    std::signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    pipe.CloseReader();
    EXPECT_EQ(WriteTo(pipe.Writer(), "x"), EPIPE);
}

TEST(Output, SaysWhyItCannotBeWritten) {
    EXPECT_STREQ(OutputError(ENOSPC).what(), "standard output cannot be written: No space left on device");
    EXPECT_STREQ(OutputError(ETIMEDOUT).what(), "standard output cannot be written: nobody reads it");
}

TEST(OutputStream, IsWrittenWhenItIsFlushed) {
    const Pipe pipe;
    OutputStream output(pipe.Writer(), {});
    output << "number " << 7 << '\n' << std::flush;
    EXPECT_EQ(pipe.ReadUpTo("\n"), "number 7\n");
    EXPECT_EQ(output.Error(), 0);
}

TEST(OutputStream, IsBadAfterAFailedWriteAndSaysWhy) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    OutputStream output(full, {});
    output << "x" << std::flush;
    EXPECT_TRUE(output.bad());
    EXPECT_EQ(output.Error(), ENOSPC);
    close(full);
}

TEST(Complaint, IsOneLineOnStandardError) {
    testing::internal::CaptureStderr();
    Complain("zebctl", "There is\nno \u202Edatabase");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "zebctl: There is\\u000ano \\u202edatabase\n");
}

}  // namespace
}  // namespace kq
