// Keeps what a window keeps: where the focus is, and what was typed into masked boxes, which the form does
// not tell.
#include "support/FakeUser.h"

#include <algorithm>

#include "base/Utf.h"
#include "support/FakeFailure.h"

namespace kq {

class FakeUser::View final : public FormView {
 public:
    explicit View(std::shared_ptr<State> state) : state_(std::move(state)) {}
    ~View() override { state_->gone = true; }

    void Changed(const Control& control, ControlChange what) override {
        if (what == ControlChange::Text && control.Kind() == ControlKind::MaskedBox)
            state_->typed.erase(&control);
    }
    void Changed(FormChange what) override {
        const auto form = state_->form.lock();
        if (what == FormChange::Visible && form && form->Visible() && state_->shown) state_->shown(*form);
        if (what == FormChange::Visible) state_->focus = nullptr;
    }
    void Focus(const Control& control) override { Move(*state_, control); }

    static void Move(State& state, const Control& control) {
        if (state.focus == &control) return;
        state.focus = &control;
        if (const auto form = state.form.lock()) form->GotFocus(control);
    }

 private:
    const std::shared_ptr<State> state_;
};

FakeUser::FakeUser(const std::shared_ptr<Form>& form, std::shared_ptr<FakeEventLoop> loop)
    : loop_(std::move(loop)) {
    state_->form = form;
}

std::unique_ptr<FormView> FakeUser::MakeView() {
    return std::make_unique<View>(state_);
}

bool FakeUser::IsOpen() const {
    const auto form = state_->form.lock();
    return form && !state_->gone && form->Visible();
}

std::shared_ptr<Form> FakeUser::Open() const {
    if (!IsOpen()) throw FakeFailure("the window is not open any more");
    return state_->form.lock();
}

const Control& FakeUser::Named(std::string_view name) const {
    const Control* const control = Open()->Find(name);
    if (!control) throw FakeFailure("there is no " + std::string(name));
    return *control;
}

const Control& FakeUser::Drawn(std::string_view name) const {
    if (!CanSee(name)) throw FakeFailure(std::string(name) + " cannot be seen");
    return Named(name);
}

const Control& FakeUser::Usable(std::string_view name, ControlKind kind) const {
    const Control& control = Named(name);
    if (control.Kind() != kind) throw FakeFailure(std::string(name) + " is of another kind");
    if (!CanUse(name)) throw FakeFailure(std::string(name) + " cannot be used");
    return control;
}

void FakeUser::Focus(const Control& control) {
    View::Move(*state_, control);
}

void FakeUser::GoesTo(std::string_view control) {
    Focus(Usable(control, Named(control).Kind()));
}

const Control& FakeUser::GoToBox(std::string_view name) {
    const bool masked = Named(name).Kind() == ControlKind::MaskedBox;
    const Control& box = Usable(name, masked ? ControlKind::MaskedBox : ControlKind::TextBox);
    Focus(box);
    return box;
}

// What a box does with input: it takes the place of the selection, the caret stands behind it.
void FakeUser::Replace(const Control& box, std::string_view text) {
    const bool masked = box.Kind() == ControlKind::MaskedBox;
    const std::string before = masked ? state_->typed[&box] : box.Text();
    const Selection marked = box.Selection();
    const auto head = FirstCharacters(before, marked.start);
    const auto cut = FirstCharacters(std::string_view(before).substr(head.size()), marked.length);
    const std::string up_to_caret = std::string(head) + std::string(text);
    const std::string after = up_to_caret + before.substr(head.size() + cut.size());
    const auto form = Open();
    if (masked) {
        state_->typed[&box] = after;
        form->Type(box, Secret(std::string_view(after)));
    } else {
        const auto characters = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
        form->Type(box, after, {static_cast<std::size_t>(std::ranges::count_if(up_to_caret, characters)), 0});
    }
}

void FakeUser::Types(std::string_view box_name, std::string_view text) {
    const Control& box = GoToBox(box_name);
    while (!text.empty()) {
        const auto letter = FirstCharacters(text, 1);
        Replace(box, letter);
        text.remove_prefix(letter.size());
    }
}

void FakeUser::Pastes(std::string_view box, std::string_view text) {
    Replace(GoToBox(box), text);
}

void FakeUser::Clears(std::string_view box) {
    Marks(box, {0, GoToBox(box).Length()});
    Replace(GoToBox(box), "");
}

void FakeUser::Marks(std::string_view box_name, Selection selection) {
    const Control& box = GoToBox(box_name);
    const auto form = Open();
    if (box.Kind() == ControlKind::TextBox)
        form->Type(box, std::string(box.Text()), selection);
    else
        form->At(box_name).SetSelection(selection);
}

void FakeUser::Clicks(std::string_view name) {
    const Control& button = Usable(name, ControlKind::Button);
    Focus(button);
    Open()->Click(button);
}

void FakeUser::Ticks(std::string_view name) {
    const Control& box = Usable(name, ControlKind::CheckBox);
    Focus(box);
    if (box.Checked()) throw FakeFailure(std::string(name) + " is ticked already");
    Open()->Toggle(box, true);
}

void FakeUser::Unticks(std::string_view name) {
    const Control& box = Usable(name, ControlKind::CheckBox);
    Focus(box);
    if (!box.Checked()) throw FakeFailure(std::string(name) + " is not ticked");
    Open()->Toggle(box, false);
}

std::ptrdiff_t FakeUser::IndexOf(const Control& list, std::string_view item) const {
    const auto found = std::ranges::find(list.Items(), item);
    if (found == list.Items().end()) throw FakeFailure("the list has no " + std::string(item));
    return found - list.Items().begin();
}

void FakeUser::Selects(std::string_view name, std::string_view item) {
    const Control& list = Usable(name, ControlKind::ListView);
    Focus(list);
    Open()->Select(list, IndexOf(list, item));
}

void FakeUser::DoubleClicks(std::string_view name, std::string_view item) {
    const Control& list = Usable(name, ControlKind::ListView);
    Focus(list);
    Open()->ActivateItem(list, IndexOf(list, item));
}

void FakeUser::Presses(Key key) {
    const auto form = Open();
    const Control* const focus = state_->focus;
    if (key == Key::Escape) return form->EscapePressed();
    if (key == Key::Enter) {
        if (focus && focus->Kind() == ControlKind::Button) return form->Click(*focus);
        if (focus && focus->Kind() == ControlKind::ListView && focus->SelectedItem() != Control::kNoItem)
            return form->ActivateItem(*focus, focus->SelectedItem());
        return form->EnterPressed();
    }
    std::vector<const Control*> stops;
    for (const auto& control : form->Controls()) {
        if (control.TakesFocus() && form->Reachable(control)) stops.push_back(&control);
    }
    if (stops.empty()) return;
    const auto at = std::ranges::find(stops, focus);
    Focus(at == stops.end() || at + 1 == stops.end() ? *stops.front() : **(at + 1));
}

void FakeUser::Closes() {
    Open()->CloseAsked();
}

std::string FakeUser::Sees(std::string_view name) const {
    const Control& control = Drawn(name);
    if (control.Kind() != ControlKind::MaskedBox) return control.Text();
    const auto typed = state_->typed.find(&control);
    return typed == state_->typed.end() ? std::string() : std::string(control.Length(), '*');
}

std::string FakeUser::SeesSelected(std::string_view name) const {
    const Control& list = Drawn(name);
    if (list.SelectedItem() == Control::kNoItem) return {};
    return list.Items()[static_cast<std::size_t>(list.SelectedItem())];
}

}  // namespace kq
