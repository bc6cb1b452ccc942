// Scripted answers. An answer that the box has no button for is a mistake in the test.
#include "support/FakeDialogHost.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "support/FakeFailure.h"

namespace kq {
namespace {

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
    std::fprintf(stderr, "%zu message box(es) were shown without a scripted answer\n", unexpected_);
    std::abort();
}

void FakeDialogHost::Answer(BoxButton button, std::function<void()> meanwhile) {
    answers_.push_back({button, std::move(meanwhile)});
}

const FakeDialogHost::Box& FakeDialogHost::LastBox() const {
    if (boxes_.empty()) throw FakeFailure("no message box was shown");
    return boxes_.back();
}

std::size_t FakeDialogHost::TakeUnexpected() {
    return std::exchange(unexpected_, 0);
}

BoxButton FakeDialogHost::ShowMessageBox(const std::string& text, const std::string& caption,
                                         BoxStyle style) {
    boxes_.push_back({text, caption, style});
    if (answers_.empty() || !HasButton(style, answers_.front().button)) {
        ++unexpected_;
        throw FakeFailure("unexpected message box: " + text);
    }
    const Script script = std::move(answers_.front());
    answers_.pop_front();
    if (script.meanwhile) script.meanwhile();
    return script.button;
}

}  // namespace kq
