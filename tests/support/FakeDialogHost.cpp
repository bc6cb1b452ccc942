// Scripted answers. An answer that the box has no button for is a mistake in the test.
#include "support/FakeDialogHost.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "support/FakeFailure.h"

namespace kq {
namespace {

constexpr Milliseconds kPatience = std::chrono::hours(1);

bool HasButton(BoxStyle style, BoxButton button) {
    switch (style) {
        case BoxStyle::YesNoCancel:
            return button != BoxButton::OK;
        case BoxStyle::YesNo:
            return button == BoxButton::Yes || button == BoxButton::No;
        default:
            return button == BoxButton::OK;
    }
}

}  // namespace

FakeDialogHost::~FakeDialogHost() {
    if (unexpected_ == 0) return;
    for (const auto& box : boxes_)
        std::fprintf(stderr, "box shown: %s\n", box.text.c_str());
    for (const auto& form : shown_)
        std::fprintf(stderr, "window shown: %s\n", form.c_str());
    std::fprintf(stderr, "%zu box(es) or window(s) were shown that nobody scripted\n", unexpected_);
    std::abort();
}

void FakeDialogHost::Answer(BoxButton button, std::function<void()> meanwhile) {
    answers_.push_back({button, std::move(meanwhile)});
}

void FakeDialogHost::Expect(const std::string& form, Script script) {
    scripts_[form].push_back(std::move(script));
}

FakeUser& FakeDialogHost::Window(const std::string& form) {
    for (const auto& user : users_) {
        if (user->IsOpen() && user->Window().Name() == form && !user->Window().Modal()) return *user;
    }
    throw FakeFailure("there is no window " + form);
}

const FakeDialogHost::Box& FakeDialogHost::LastBox() const {
    if (boxes_.empty()) throw FakeFailure("no message box was shown");
    return boxes_.back();
}

std::size_t FakeDialogHost::ScriptsLeft() const {
    std::size_t left = 0;
    for (const auto& [form, scripts] : scripts_)
        left += scripts.size();
    return left;
}

std::size_t FakeDialogHost::OpenWindows() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(users_, [](const auto& user) { return !user->state_->gone; }));
}

std::size_t FakeDialogHost::TakeUnexpected() {
    return std::exchange(unexpected_, 0);
}

void FakeDialogHost::Unexpected(const std::string& what) {
    ++unexpected_;
    throw FakeFailure("unexpected " + what);
}

BoxButton FakeDialogHost::ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                                         Signal<>& withdrawn) {
    boxes_.push_back({text, caption, style});
    if (answers_.empty() || !HasButton(style, answers_.front().button)) Unexpected("message box: " + text);
    const Reply reply = std::move(answers_.front());
    answers_.pop_front();
    Owner owner;
    bool closed = false;
    withdrawn.Connect(owner, [&] { closed = true; });
    if (reply.meanwhile) reply.meanwhile();
    if (closed) ++withdrawn_;
    return closed ? Unanswered(style) : reply.button;
}

std::unique_ptr<FormView> FakeDialogHost::CreateView(Form& form) {
    users_.push_back(std::make_unique<FakeUser>(form.shared_from_this(), loop_));
    users_.back()->state_->shown = [this](const Form& shown) { shown_.emplace_back(shown.Name()); };
    return users_.back()->MakeView();
}

FakeUser& FakeDialogHost::UserOf(const Form& form) {
    const auto found = std::ranges::find_if(
        users_, [&](const auto& user) { return user->IsOpen() && &user->Window() == &form; });
    if (found == users_.end()) throw FakeFailure("a form without a window is run");
    return **found;
}

void FakeDialogHost::RunModal(Form& form) {
    auto& scripts = scripts_[std::string(form.Name())];
    if (scripts.empty()) Unexpected("window: " + std::string(form.Name()));
    const Script script = std::move(scripts.front());
    scripts.pop_front();
    FakeUser& user = UserOf(form);
    form.Activated();
    if (script) script(user);
    const bool closed = loop_->RunUntil([&form] { return !form.Visible(); }, loop_->Now() + kPatience);
    if (!closed && !loop_->Quitting())
        throw FakeFailure("the user left " + std::string(form.Name()) + " open");
}

std::optional<std::string> FakeDialogHost::AskSavePath(const SaveQuestion& question, Signal<>&) {
    questions_.push_back(question);
    if (paths_.empty()) Unexpected("question for a path: " + question.title);
    const auto path = std::move(paths_.front());
    paths_.pop_front();
    return path;
}

}  // namespace kq
