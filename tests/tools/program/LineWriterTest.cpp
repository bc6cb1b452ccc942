#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sstream>
#include <sys/resource.h>

#include <gtest/gtest.h>

#include "tools/program/LineWriter.h"
#include "tools/program/Pipe.h"

namespace kq {
namespace {

TEST(LineWriter, WritesLinesInTheirOrder) {
    const Pipe pipe;
    LineWriter lines(pipe.Writer(), "test");
    lines.Write("one");
    lines.Write("");
    lines.Write("three");
    EXPECT_EQ(pipe.ReadUpTo("three\n"), "one\n\nthree\n");
    EXPECT_EQ(lines.Close(), 0);
}

TEST(LineWriter, WritesAtItsEndWhatIsStillQueued) {
    const Pipe pipe;
    {
        LineWriter lines(pipe.Writer(), "test");
        for (int i = 0; i < 100; ++i)
            lines.Write(std::to_string(i));
    }
    EXPECT_TRUE(pipe.ReadUpTo("99\n").ends_with("\n98\n99\n"));
}

// Lines that came, and those that are said to be missing.
struct Counted {
    int lines = 0;
    int missing = 0;
    std::size_t after_last_mark = 0;  // bytes
};

Counted CountIn(const std::string& text) {
    Counted counted;
    std::istringstream input(text.substr(text.find_first_not_of('.')));
    for (std::string line; std::getline(input, line);) {
        int missing = 0;
        if (line.starts_with("line ")) {
            ++counted.lines;
            counted.after_last_mark += line.size() + 1;
        } else if (std::sscanf(line.c_str(), "test: %d lines", &missing) == 1) {
            counted.missing += missing;
            counted.after_last_mark = 0;
            EXPECT_TRUE(line.ends_with(" lines are missing here, they could not be written")) << line;
        }
    }
    return counted;
}

TEST(LineWriter, KeepsTheNewestLinesAndCountsTheOthersWhenNobodyReads) {
    const Pipe pipe;
    pipe.Fill();
    LineWriter lines(pipe.Writer(), "test", 1'000);
    for (int i = 1; i <= 10'000; ++i)
        lines.Write("line " + std::to_string(i));
    const auto counted = CountIn(pipe.ReadUpTo("line 10000\n"));
    EXPECT_EQ(counted.lines + counted.missing, 10'000);
    EXPECT_GT(counted.missing, 9'000);
    EXPECT_LE(counted.after_last_mark, 1'000U);
    EXPECT_GT(counted.after_last_mark, 950U);
    EXPECT_EQ(lines.Close(), 0);
}

TEST(LineWriter, TakesALineThatIsLargerThanItsRoom) {
    const Pipe pipe;
    LineWriter lines(pipe.Writer(), "test", 10);
    const std::string line(20'000, 'x');
    lines.Write(line);
    EXPECT_EQ(pipe.ReadUpTo("\n"), line + "\n");
}

TEST(LineWriter, EndsAlthoughNobodyReads) {
    const Pipe pipe;
    pipe.Fill();
    LineWriter lines(pipe.Writer(), "test");
    lines.Write("never read");
    EXPECT_EQ(lines.Close(), ETIMEDOUT);
    EXPECT_EQ(lines.Close(), ETIMEDOUT);
}

TEST(LineWriter, WritesNothingAfterItsEnd) {
    const Pipe pipe;
    pipe.Fill();
    LineWriter lines(pipe.Writer(), "test");
    lines.Write("never read");
    EXPECT_EQ(lines.Close(), ETIMEDOUT);
    lines.Write("too late");
    EXPECT_EQ(pipe.ReadUpTo("."), std::string(4096, '.'));
    pollfd more{pipe.Reader(), POLLIN, 0};
    EXPECT_EQ(poll(&more, 1, 50), 0);
}

TEST(LineWriter, TellsWhyLinesAreLost) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    LineWriter lines(full, "test");
    EXPECT_EQ(lines.Flush(), 0);
    lines.Write("lost");
    EXPECT_EQ(lines.Flush(), ENOSPC);
    EXPECT_EQ(lines.Close(), ENOSPC);
    close(full);
}

// A file that may have no more than so many bytes.
class LimitedFile {
 public:
    LimitedFile() : file_(std::tmpfile()) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
    }
    ~LimitedFile() {
        Limit(before_.rlim_cur);
        std::fclose(file_);
    }
    LimitedFile(const LimitedFile&) = delete;
    LimitedFile& operator=(const LimitedFile&) = delete;
    int Descriptor() const { return fileno(file_); }
    void Limit(rlim_t bytes) {
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    void Unlimit() { Limit(before_.rlim_cur); }
    std::string Text() const {
        std::string text(10'000, '\0');
        const ssize_t count = pread(Descriptor(), text.data(), text.size(), 0);
        return text.substr(0, static_cast<std::size_t>(count));
    }

 private:
    std::FILE* file_;
    rlimit before_{};
};

TEST(LineWriter, CountsLostLinesOnceItCanWriteAgain) {
    LimitedFile file;
    LineWriter lines(file.Descriptor(), "test");
    lines.Write("one");
    EXPECT_EQ(lines.Flush(), 0);
    file.Limit(4);
    for (const auto* line : {"two", "three", "four"}) {
        lines.Write(line);
        EXPECT_EQ(lines.Flush(), EFBIG);
    }
    file.Unlimit();
    lines.Write("five");
    EXPECT_EQ(lines.Flush(), 0);
    EXPECT_EQ(file.Text(), "one\ntest: 3 lines are missing here, they could not be written\nfive\n");
}

}  // namespace
}  // namespace kq
