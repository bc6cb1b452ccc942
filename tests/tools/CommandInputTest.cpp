#include <array>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Platform.h>

#include "tools/kqappserver/CommandInput.h"

namespace kq {
namespace {

class CommandInputTest : public testing::Test {
 protected:
    CommandInputTest() {
        if (pipe(ends_.data()) != 0) throw std::runtime_error("pipe");
    }
    ~CommandInputTest() override {
        End();
        close(ends_[0]);
    }

    void Write(const std::string& text) {
        ASSERT_EQ(static_cast<ssize_t>(text.size()), write(ends_[1], text.data(), text.size()));
    }
    void End() {
        if (ends_[1] >= 0) close(ends_[1]);
        ends_[1] = -1;
    }
    bool RunUntilLines(std::size_t count) {
        auto& loop = *platform_->Loop();
        return loop.RunUntil([&] { return lines_.size() >= count; }, loop.Now() + std::chrono::seconds(10));
    }

    std::array<int, 2> ends_{-1, -1};
    PlatformPtr platform_ = MakePlatform();
    std::vector<std::string> lines_;
    std::function<void(const std::string&)> keep_ = [this](const std::string& line) {
        lines_.push_back(line);
    };
};

TEST_F(CommandInputTest, HandsOutLineByLineOnTheLoop) {
    const CommandInput input(*platform_->Loop(), ends_[0], keep_);
    Write("sessions\nquit\n");
    EXPECT_TRUE(RunUntilLines(2));
    EXPECT_EQ((std::vector<std::string>{"sessions", "quit"}), lines_);
}

TEST_F(CommandInputTest, WaitsForTheEndOfALine) {
    const CommandInput input(*platform_->Loop(), ends_[0], keep_);
    Write("sess");
    Write("ions\nqu");
    EXPECT_TRUE(RunUntilLines(1));
    EXPECT_EQ((std::vector<std::string>{"sessions"}), lines_);
}

TEST_F(CommandInputTest, DeliversWhatCameBeforeTheEndOfTheInput) {
    const CommandInput input(*platform_->Loop(), ends_[0], keep_);
    Write("quit\n");
    End();
    EXPECT_TRUE(RunUntilLines(1));
}

TEST_F(CommandInputTest, CutsALineThatIsTooLong) {
    const CommandInput input(*platform_->Loop(), ends_[0], keep_);
    Write(std::string(5'000, 'x') + "\nquit\n");
    EXPECT_TRUE(RunUntilLines(2));
    EXPECT_EQ(4'096U, lines_[0].size());
    EXPECT_EQ("quit", lines_[1]);
}

TEST_F(CommandInputTest, DoesNotCallAfterItHasGone) {
    {
        const CommandInput input(*platform_->Loop(), ends_[0], [](const std::string&) { FAIL(); });
        Write("quit\n");
    }
    platform_->Loop()->ProcessPending();
}

}  // namespace
}  // namespace kq
