// A person at a terminal who types what the test wrote down, and remembers what was shown.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/Terminal.h"
#include "support/FakeEventLoop.h"

namespace kq {

class FakeTerminal final : public Terminal {
 public:
    explicit FakeTerminal(std::shared_ptr<FakeEventLoop> loop) : loop_(std::move(loop)) {}

    // The next lines, in order. Afterwards the input has ended.
    void Types(std::initializer_list<const char*> lines) {
        for (const char* const line : lines)
            script_.push_back({line, {}});
    }
    void PressesInterrupt() { script_.push_back({std::nullopt, {}}); }
    // Types nothing while this happens; the question goes on.
    void Waits(std::function<void()> meanwhile) { script_.push_back({std::nullopt, std::move(meanwhile)}); }
    void SetWidth(std::size_t width) { width_ = width; }
    void CannotRewrite() { rewrites_ = false; }
    std::size_t LinesLeft() const { return script_.size(); }

    // Everything shown, and what was typed with echo, as it stands on the screen.
    const std::string& Screen() const { return screen_; }
    bool Shows(const std::string& text) const { return screen_.find(text) != std::string::npos; }

    std::size_t Width() const override { return width_; }
    bool Rewrites() const override { return rewrites_; }
    void Write(std::string_view text) override { screen_ += text; }

    Answer ReadLine(std::string_view prompt, bool echo, const std::function<bool()>& stop) override {
        screen_ += prompt;
        while (!script_.empty()) {
            const Step step = script_.front();
            script_.pop_front();
            if (step.meanwhile) {
                step.meanwhile();
                if (stop() || loop_->Quitting()) return {End::Stopped, {}};
                continue;
            }
            if (!step.line) break;
            screen_ += (echo ? *step.line : std::string()) + "\n";
            return {End::Line, Secret(*step.line)};
        }
        screen_ += "\n";
        return {End::GivenUp, {}};
    }

 private:
    struct Step {
        std::optional<std::string> line;
        std::function<void()> meanwhile;
    };
    std::shared_ptr<FakeEventLoop> loop_;
    std::deque<Step> script_;
    std::string screen_;
    std::size_t width_ = 0;
    bool rewrites_ = true;
};

}  // namespace kq
