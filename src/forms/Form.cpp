// Runs forms: events in, changes out. The form holds itself while a handler runs, so a handler may release
// everything else.
#include "forms/Form.h"

#include <algorithm>
#include <utility>

#include <kqappsession/Error.h>

#include "forms/DialogHost.h"
#include "platform/Machine.h"

namespace kq {

std::shared_ptr<Form> Form::Load(PlatformPtr platform, const FormRow& row) {
    return std::shared_ptr<Form>(new Form(std::move(platform), row));
}

Form::Form(PlatformPtr platform, const FormRow& row) : platform_(std::move(platform)), row_(row) {
    for (const auto& control : row_.controls)
        controls_.emplace_back(*this, control);
}

// Nobody may be told any more: the form is no longer held.
Form::~Form() {
    for (auto& control : controls_)
        platform_->Loop()->CancelTimer(control.timer_);
}

const Control* Form::Find(std::string_view name) const {
    const auto found = std::ranges::find(controls_, name, &Control::Name);
    return found == controls_.end() ? nullptr : &*found;
}

Control& Form::At(std::string_view name) {
    const Control* const found = Find(name);
    if (!found) Raise(RuntimeError::InvalidProcedureCall, "The form has no such control");
    return Own(*found);
}

Control& Form::Own(const Control& control) {
    return const_cast<Control&>(control);  // every control of a form is one of its own members
}

bool Form::Drawn(const Control& control) const {
    if (control.Kind() == ControlKind::Timer) return false;
    for (const Control* part = &control; part; part = Find(part->Row().frame)) {
        const bool cut = height_.rule == FormHeight::Rule::EndsAt && part->Name() == height_.frame;
        if (!part->Visible() || cut) return false;
    }
    return true;
}

// --- Events

void Form::Guarded(const std::function<void()>& handler) {
    const auto self = shared_from_this();
    try {
        handler();
    } catch (...) {
        if (running_) {
            if (!failure_) failure_ = std::current_exception();
            Hide();
        } else {
            ReportStrayException(std::current_exception());
        }
    }
}

void Form::Fire(const Control::Handler Control::*event, Control& control) {
    if (unloaded_ || !(control.*event)) return;
    Guarded(Control::Handler(control.*event));
}

void Form::Activated() {
    if (!visible_ || activated_) return;
    activated_ = true;
    const auto takes_it = [this](const Control& control) {
        return control.TakesFocus() && Reachable(control);
    };
    const Control* first = first_focus_ ? first_focus_ : Find(row_.first_focus);
    if (!first || !takes_it(*first)) {
        const auto found = std::ranges::find_if(controls_, takes_it);
        first = found == controls_.end() ? nullptr : &*found;
    }
    if (first && view_) {
        const auto view = view_;
        view->Focus(*first);
    }
}

void Form::Click(const Control& button) {
    if (visible_ && button.Kind() == ControlKind::Button && Reachable(button))
        Fire(&Control::click_, Own(button));
}

void Form::Toggle(const Control& check_box, bool checked) {
    if (!visible_ || check_box.Kind() != ControlKind::CheckBox || !Reachable(check_box)) return;
    Own(check_box).checked_ = checked;
    Fire(&Control::click_, Own(check_box));
}

void Form::Type(const Control& text_box, std::string_view text, Selection selection) {
    if (!visible_ || text_box.Kind() != ControlKind::TextBox || !Reachable(text_box)) return;
    Control& box = Own(text_box);
    const bool changed = box.text_ != text;
    box.text_ = text;
    const std::size_t length = box.Length();
    box.selection_.start = std::min(selection.start, length);
    box.selection_.length = std::min(selection.length, length - box.selection_.start);
    if (changed) Fire(&Control::change_, box);
}

void Form::Type(const Control& masked_box, Secret text) {
    if (!visible_ || masked_box.Kind() != ControlKind::MaskedBox || !Reachable(masked_box)) return;
    Control& box = Own(masked_box);
    box.secret_ = std::move(text);
    box.selection_ = {box.Length(), 0};
    Fire(&Control::change_, box);
}

void Form::GotFocus(const Control& control) {
    if (!visible_ || !control.TakesFocus()) return;
    focused_ = &control;
    Fire(&Control::got_focus_, Own(control));
}

void Form::Select(const Control& list, std::ptrdiff_t index) {
    if (!visible_ || list.Kind() != ControlKind::ListView || !Reachable(list)) return;
    Control& own = Own(list);
    const bool there = index >= 0 && index < std::ssize(own.items_);
    own.selected_item_ = there ? index : Control::kNoItem;
    Fire(&Control::select_, own);
}

void Form::ActivateItem(const Control& list, std::ptrdiff_t index) {
    const auto self = shared_from_this();
    Select(list, index);
    if (!visible_ || list.SelectedItem() == Control::kNoItem) return;
    if (Own(list).activate_item_)
        Fire(&Control::activate_item_, Own(list));
    else
        EnterPressed();
}

void Form::EnterPressed() {
    if (const Control* const button = DefaultButton()) Click(*button);
}

void Form::EscapePressed() {
    if (const Control* const button = CancelButton())
        Click(*button);
    else
        CloseAsked();
}

void Form::CloseAsked() {
    if (!visible_ || row_.closing != Closing::Hides) return;
    const Control::Handler closed = closed_;
    Guarded([&] {
        Hide();
        if (closed) closed();
    });
}

// The next tick is due one interval after this one was delivered, so ticks never pile up.
void Form::RunTimer(Control& timer) {
    platform_->Loop()->CancelTimer(std::exchange(timer.timer_, 0));
    if (unloaded_ || !timer.timer_enabled_ || timer.row_.interval <= 0) return;
    timer.timer_ =
        platform_->Loop()->StartTimer(Milliseconds(timer.row_.interval), timers_.Bind([this, &timer] {
            const auto self = shared_from_this();
            timer.timer_ = 0;
            Fire(&Control::tick_, timer);
            if (timer.timer_ == 0) RunTimer(timer);
        }));
}

// --- Behaviour's side

void Form::Tell(FormChange change) const {
    if (const auto view = view_) view->Changed(change);
}

void Form::TellControl(const Control& control, ControlChange change) const {
    if (const auto view = view_) view->Changed(control, change);
}

void Form::SetCaption(std::string_view caption) {
    if (caption_ == caption) return;
    caption_ = caption;
    Tell(FormChange::Caption);
}

void Form::SetIcon(IconPtr icon) {
    icon_ = std::move(icon);
    Tell(FormChange::Icon);
}

void Form::SetHeight(const FormHeight& height) {
    if (height_ == height) return;
    height_ = height;
    Tell(FormChange::Height);
}

void Form::SetFocus(Control& control) {
    if (!visible_ || !activated_) {
        first_focus_ = &control;
        return;
    }
    const auto view = view_;
    if (view && Reachable(control)) view->Focus(control);
}

void Form::SetVisible(bool on) {
    if (visible_ == on) return;
    if (const auto owned = owned_.lock(); owned && !on) owned->Hide();
    visible_ = on;
    activated_ = false;
    focused_ = nullptr;
    Tell(FormChange::Visible);
}

void Form::Show() {
    if (!platform_->Interactive())
        Raise(RuntimeError::InvalidProcedureCall, "This program has no dialogs, so the user cannot be asked");
    if (!view_) view_ = platform_->Parts().dialogs->CreateView(*this);
    SetVisible(true);
}

void Form::ShowModal(const std::shared_ptr<Form>& owner) {
    const auto self = shared_from_this();
    const auto platform = platform_;
    if (unloaded_) return;
    modal_ = true;
    owner_form_ = owner;
    if (owner) owner->owned_ = self;
    Show();
    running_ = true;
    try {
        platform->Parts().dialogs->RunModal(*this);
    } catch (...) {
        if (!failure_) failure_ = std::current_exception();
    }
    running_ = false;
    Hide();
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void Form::ShowTopmost() {
    if (unloaded_) return;
    modal_ = false;
    if (visible_)
        Tell(FormChange::Visible);
    else
        Show();
}

void Form::Hide() {
    SetVisible(false);
    Hidden();
}

void Form::Unload() {
    if (std::exchange(unloaded_, true)) return;
    for (auto& control : controls_)
        platform_->Loop()->CancelTimer(control.timer_);
    timers_.Cancel();
    Hide();
    view_.reset();
}

}  // namespace kq
