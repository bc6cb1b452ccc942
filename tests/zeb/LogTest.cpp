// The lines of zebd's log.
#include <cstdio>
#include <unistd.h>

#include <gtest/gtest.h>

#include "zeb/Log.h"
#include "zeb/store/Services.h"

namespace kq::zeb {
namespace {

class ZebLog : public testing::Test {
 protected:
    ~ZebLog() override { std::fclose(file_); }
    std::shared_ptr<spdlog::logger> Open(bool colours = false) { return MakeLog(lines_, "info", colours); }
    std::string Text() {
        EXPECT_EQ(lines_->Close(), 0);
        std::string text(10'000, '\0');
        const ssize_t count = pread(fileno(file_), text.data(), text.size(), 0);
        return text.substr(0, static_cast<std::size_t>(count));
    }

 private:
    std::FILE* file_ = std::tmpfile();
    std::shared_ptr<LineWriter> lines_ = std::make_shared<LineWriter>(fileno(file_), "zebd");
};

TEST_F(ZebLog, HasALineForEachMessageOfItsLevel) {
    const auto log = Open();
    log->debug("not this");
    log->info("one {}", 1);
    log->warn("two");
    const auto text = Text();
    EXPECT_EQ(text.front(), '[') << text;
    EXPECT_NE(text.find(" [zebd] [info] one 1\n["), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with(" [zebd] [warning] two\n")) << text;
}

TEST_F(ZebLog, ColoursTheLevelOnATerminal) {
    Open(true)->warn("two");
    EXPECT_TRUE(Text().ends_with(" [zebd] [\x1b[33mwarning\x1b[m] two\n"));
}

TEST_F(ZebLog, ShowsNothingThatATerminalWouldObey) {
    Open()->info("Bus: {}", "a\nb\x1b[2J\u009bc\u202Ed");
    EXPECT_TRUE(Text().ends_with("] Bus: a\\u000ab\\u001b[2J\\u009bc\\u202ed\n"));
}

TEST_F(ZebLog, HasTheServersOwnReasonsWhole) {
    const std::string reason = std::string(100, 'x') + " database or disk is full";
    Open()->error("A registration failed: {}", reason);
    EXPECT_TRUE(Text().ends_with(reason + "\n"));
}

TEST(ForLog, CutsAStrangersTextBetweenCharacters) {
    EXPECT_EQ(ForLog(std::string(63, 'x') + "é" + "more"), std::string(63, 'x') + "é…");
    EXPECT_EQ(ForLog("short"), "short");
}

}  // namespace
}  // namespace kq::zeb
