// A user who answers message boxes as the test scripted. A box that nobody scripted is recorded, throws
// FakeFailure and, because a handler in between may swallow that, ends the test program when the host goes.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/DialogHost.h"

namespace kq {

class FakeDialogHost final : public DialogHost {
 public:
    struct Box {
        std::string text;
        std::string caption;
        BoxStyle style;
    };

    ~FakeDialogHost() override;

    // The next unanswered box is answered so; `meanwhile` runs while it is open.
    void Answer(BoxButton button, std::function<void()> meanwhile = {});

    // Every box so far.
    const std::vector<Box>& Boxes() const { return boxes_; }
    // The latest box; fails when there was none.
    const Box& LastBox() const;
    // Answers that no box has asked for.
    std::size_t AnswersLeft() const { return answers_.size(); }
    // Boxes that had no answer; reading them tells that the test knows.
    std::size_t TakeUnexpected();

    BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style) override;

 private:
    struct Script {
        BoxButton button;
        std::function<void()> meanwhile;
    };
    std::deque<Script> answers_;
    std::vector<Box> boxes_;
    std::size_t unexpected_ = 0;
};

}  // namespace kq
