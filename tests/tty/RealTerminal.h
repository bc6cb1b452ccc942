// The port's terminal: a pseudo terminal with a person at its other side.
#pragma once

#include <memory>
#include <poll.h>
#include <pty.h>
#include <string>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <kqappsession/TtyPlatform.h>

#include "platform/Patience.h"
#include "platform/Terminal.h"

namespace kq {

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
    std::shared_ptr<EventLoop> loop_ = MakePlatform()->Loop();
    std::shared_ptr<Terminal> terminal_;
};

}  // namespace kq
