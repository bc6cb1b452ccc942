// State of one control. Every change is passed to the view through the form. Setting a text box raises its
// Change as typing does, so a handler that sets its own box must guard against recursion.
#include "forms/Control.h"

#include <algorithm>

#include "forms/Form.h"

namespace kq {
namespace {

// Bytes that begin a character.
std::size_t CountCharacters(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

}  // namespace

Control::Control(Form& form, const ControlRow& row)
    : form_(form), row_(row), visible_(row.visible), enabled_(row.enabled) {}

std::size_t Control::Length() const {
    return CountCharacters(Kind() == ControlKind::MaskedBox ? secret_.Reveal() : text_);
}

bool Control::TakesFocus() const {
    switch (Kind()) {
        case ControlKind::TextBox:
        case ControlKind::MaskedBox:
        case ControlKind::CheckBox:
        case ControlKind::Button:
        case ControlKind::ListView:
            return true;
        default:
            return false;
    }
}

void Control::Tell(ControlChange change) const {
    form_.TellControl(*this, change);
}

template <class T>
void Control::Set(T& member, T value, ControlChange change) {
    if (member == value) return;
    member = std::move(value);
    Tell(change);
}

// A copy: the handler may be replaced while it runs.
void Control::RaiseChange() const {
    const Handler handler = change_;
    if (handler) handler();
}

void Control::SetText(std::string_view text) {
    if (text_ == text) return;
    if (text == other_text_) other_text_ = text_;
    text_ = text;
    selection_ = {};
    Tell(ControlChange::Text);
    if (Kind() == ControlKind::TextBox) RaiseChange();
}

// The user's caret may have left the selection without a report, so the same selection is reported again.
void Control::SetSelection(kq::Selection selection) {
    const std::size_t length = Length();
    selection_.start = std::min(selection.start, length);
    selection_.length = std::min(selection.length, length - selection_.start);
    Tell(ControlChange::Selection);
}

void Control::SetVisible(bool on) {
    Set(visible_, on, ControlChange::Visible);
}

void Control::SetEnabled(bool on) {
    Set(enabled_, on, ControlChange::Enabled);
}

void Control::SetChecked(bool on) {
    Set(checked_, on, ControlChange::Checked);
}

void Control::SetItems(std::vector<std::string> items) {
    SelectItem(kNoItem);
    Set(items_, std::move(items), ControlChange::Items);
}

void Control::SelectItem(std::ptrdiff_t index) {
    const bool there = index >= 0 && index < std::ssize(items_);
    Set(selected_item_, there ? index : kNoItem, ControlChange::SelectedItem);
}

void Control::SetProgress(const kq::Progress& progress) {
    Set(progress_, progress, ControlChange::Progress);
}

void Control::SetTimerEnabled(bool on) {
    if (timer_enabled_ == on) return;
    timer_enabled_ = on;
    form_.RunTimer(*this);
}

void Control::Clear() {
    if (secret_.Empty()) return;
    secret_ = Secret();
    selection_ = {};
    Tell(ControlChange::Text);
    RaiseChange();
}

}  // namespace kq
