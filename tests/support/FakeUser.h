// What a user does at one window: types, clicks, presses keys, reads. Every action is checked as a real
// toolkit would: what is not drawn cannot be read, what is disabled or covered cannot be clicked. What cannot
// be done throws FakeFailure.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "forms/Form.h"
#include "support/FakeEventLoop.h"

namespace kq {

enum class Key { Enter, Escape, Tab };

class FakeUser {
 public:
    FakeUser(const std::shared_ptr<Form>& form, std::shared_ptr<FakeEventLoop> loop);

    // Types into a box, letter by letter, in place of what is selected, after going there.
    void Types(std::string_view box, std::string_view text);
    // The same all at once.
    void Pastes(std::string_view box, std::string_view text);
    void Clears(std::string_view box);
    // Marks a part of a box's text.
    void Marks(std::string_view box, Selection selection);
    void Clicks(std::string_view button);
    void Ticks(std::string_view check_box);
    void Unticks(std::string_view check_box);
    void Selects(std::string_view list, std::string_view item);
    void DoubleClicks(std::string_view list, std::string_view item);
    void GoesTo(std::string_view control);
    void Presses(Key key);
    void Closes();
    void Waits(Milliseconds span) { loop_->Advance(span); }

    // The text that is drawn there: caption, typed text, a "*" for each character of a masked box.
    std::string Sees(std::string_view control) const;
    std::string SeesCaption() const { return Open()->Caption(); }
    std::vector<std::string> SeesItems(std::string_view list) const { return Drawn(list).Items(); }
    std::string SeesSelected(std::string_view list) const;  // empty: none
    bool SeesTicked(std::string_view check_box) const { return Drawn(check_box).Checked(); }
    Progress SeesProgress(std::string_view bar) const { return Drawn(bar).Progress(); }
    Selection SeesMarked(std::string_view box) const { return Drawn(box).Selection(); }
    bool CanSee(std::string_view control) const { return Open()->Drawn(Named(control)); }
    bool CanUse(std::string_view control) const { return Open()->Reachable(Named(control)); }
    bool IsOpen() const;
    std::string Focus() const { return state_->focus ? std::string(state_->focus->Name()) : std::string(); }
    // The form itself, for what no eye sees.
    const Form& Window() const { return *Open(); }

 private:
    friend class FakeDialogHost;
    class View;
    struct State {
        std::weak_ptr<Form> form;
        const Control* focus = nullptr;
        std::function<void(const Form&)> shown;
        bool gone = false;                                         // unloaded
        std::map<const Control*, std::string, std::less<>> typed;  // in masked boxes
    };

    std::unique_ptr<FormView> MakeView();
    std::shared_ptr<Form> Open() const;  // fails when the window is not open
    const Control& Named(std::string_view name) const;
    const Control& Drawn(std::string_view name) const;
    const Control& Usable(std::string_view name, ControlKind kind) const;
    const Control& GoToBox(std::string_view name);
    void Focus(const Control& control);
    void Replace(const Control& box, std::string_view text);
    std::ptrdiff_t IndexOf(const Control& list, std::string_view item) const;

    std::shared_ptr<State> state_ = std::make_shared<State>();
    std::shared_ptr<FakeEventLoop> loop_;
};

}  // namespace kq
