// The steps that a client object reports, kept for the test to look at.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/KQAppSessClient.h>

namespace kq {

class TracedLogin {
 public:
    explicit TracedLogin(KQAppSessClient& client) {
        client.LoginStepDone.Connect(owner_, [this](const LoginStep& step) {
            steps_.push_back(step);
            if (step.State == state_) act_();
        });
    }

    // What the host does when a step of this state is reported.
    void At(std::string_view state, std::function<void()> act) {
        state_ = state;
        act_ = std::move(act);
    }

    const std::vector<LoginStep>& Steps() const { return steps_; }
    std::vector<std::string> Lines() const { return LinesOf(steps_.begin()); }
    // From the first step of the state on; none when there was no such step.
    std::vector<std::string> LinesFrom(std::string_view state) const {
        return LinesOf(std::ranges::find(steps_, state, &LoginStep::State));
    }

 private:
    std::vector<std::string> LinesOf(std::vector<LoginStep>::const_iterator first) const {
        std::vector<std::string> lines;
        std::transform(first, steps_.end(), std::back_inserter(lines), LineOf);
        return lines;
    }

    std::vector<LoginStep> steps_;
    std::string_view state_;
    std::function<void()> act_;
    Owner owner_;
};

}  // namespace kq
