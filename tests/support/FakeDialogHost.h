// A user who answers message boxes and works at windows as the test scripted. A box, modal window or question
// for a path that nobody scripted is recorded, throws FakeFailure and, because a handler in between may
// swallow that, ends the test program when the host goes.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "forms/DialogHost.h"
#include "support/FakeUser.h"

namespace kq {

class FakeDialogHost final : public DialogHost {
 public:
    struct Box {
        std::string text;
        std::string caption;
        BoxStyle style;
    };
    using Script = std::function<void(FakeUser&)>;

    explicit FakeDialogHost(std::shared_ptr<FakeEventLoop> loop) : loop_(std::move(loop)) {}
    ~FakeDialogHost() override;

    // The next unanswered box is answered so; `meanwhile` runs while it is open, and may withdraw it.
    void Answer(BoxButton button, std::function<void()> meanwhile = {});
    // What the user does at the next modal window of the form. Afterwards the loop runs until the window is
    // closed, an hour at most.
    void Expect(const std::string& form, Script script);
    // The path that the user picks when asked where to save; nothing: cancels.
    void AnswerPath(std::optional<std::string> path) { paths_.push_back(std::move(path)); }
    // The window of a form that stands open above all others; fails when there is none.
    FakeUser& Window(const std::string& form);

    // Every box so far.
    const std::vector<Box>& Boxes() const { return boxes_; }
    // The latest box; fails when there was none.
    const Box& LastBox() const;
    // Every showing of a form, by name, in order.
    const std::vector<std::string>& Shown() const { return shown_; }
    // Every question for a path so far.
    const std::vector<SaveQuestion>& Questions() const { return questions_; }
    // Answers that no box has asked for.
    std::size_t AnswersLeft() const { return answers_.size(); }
    // Boxes that were withdrawn while they were open.
    std::size_t Withdrawn() const { return withdrawn_; }
    // Scripts whose window has not come.
    std::size_t ScriptsLeft() const;
    // Windows that are not unloaded.
    std::size_t OpenWindows() const;
    // Boxes, windows and questions that had no answer; reading them tells that the test knows.
    std::size_t TakeUnexpected();

    using DialogHost::AskSavePath;
    using DialogHost::ShowMessageBox;
    BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                             Signal<>& withdrawn) override;
    std::unique_ptr<FormView> CreateView(Form& form) override;
    void RunModal(Form& form) override;
    std::optional<std::string> AskSavePath(const SaveQuestion& question, Signal<>& withdrawn) override;

 private:
    struct Reply {
        BoxButton button;
        std::function<void()> meanwhile;
    };
    [[noreturn]] void Unexpected(const std::string& what);
    FakeUser& UserOf(const Form& form);

    std::shared_ptr<FakeEventLoop> loop_;
    std::deque<Reply> answers_;
    std::map<std::string, std::deque<Script>> scripts_;
    std::deque<std::optional<std::string>> paths_;
    std::vector<std::unique_ptr<FakeUser>> users_;  // of every view that was made
    std::vector<Box> boxes_;
    std::vector<std::string> shown_;
    std::vector<SaveQuestion> questions_;
    std::size_t unexpected_ = 0;
    std::size_t withdrawn_ = 0;
};

}  // namespace kq
