// A dialog as data. A Form lists its controls and holds their state. Its behaviour is one handler for each
// event. A renderer (FormView) draws kinds of controls and knows no particular dialog.
//
// For behaviour: a handler may hide the form, change any control, show another modal form or a message box,
// and anything may happen while those are open. An exception that leaves a handler hides the form and is
// raised by ShowModal; for a modeless form it is a stray exception.
//
// For renderers:
// - DialogHost::CreateView makes the view when the form is shown first. The view reads everything from the
//   form and is informed of every later change that it has not reported itself. It reports what the user did,
//   never what the form set.
// - Before an event returns it may change and hide the form, show other forms and run the loop. It may also
//   unload the form and so destroy the view. A view therefore hides its window immediately, destroys it
//   later, and after an event uses only what it has kept alive itself.
// - shared_from_this keeps the form alive as long as a view needs it.
// - A control can be used while Reachable returns true; events of others are ignored.
#pragma once

#include <exception>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Secret.h>
#include <kqappsession/Signal.h>

#include "forms/Control.h"

namespace kq {

// A picture for title bars. Only the renderer that made it can show it; others show none.
class Icon {
 public:
    virtual ~Icon() = default;
};
using IconPtr = std::shared_ptr<const Icon>;

// What the close box does: it hides the form, or nothing. Only Unload ends a form.
enum class Closing { Hides, Refused };

struct FormRow {
    std::string_view name;
    std::int32_t caption_id = 0;           // 0: the form sets its caption
    std::string_view default_button = {};  // Enter, unless another button has the focus
    std::string_view cancel_button = {};   // Escape
    std::string_view first_focus = {};     // empty: the first control that takes the focus
    Closing closing = Closing::Hides;
    std::vector<ControlRow> controls = {};
};

// The height of the window.
struct FormHeight {
    enum class Rule {
        Natural,  // what the controls need
        Outer,    // `twips` from the window's upper to its lower edge (1440 to the inch)
        EndsAt,   // the inner area ends at the upper edge of the frame `frame`, which is cut off
    };
    Rule rule = Rule::Natural;
    std::int32_t twips = 0;
    std::string_view frame = {};
    bool operator==(const FormHeight&) const = default;
};

enum class FormChange { Caption, Icon, Height, Visible };

// The window of one form.
class FormView {
 public:
    virtual ~FormView() = default;
    virtual void Changed(const Control& control, ControlChange what) = 0;
    virtual void Changed(FormChange what) = 0;
    // Puts the keyboard focus on a control; Form::GotFocus follows when it is there.
    virtual void Focus(const Control& control) = 0;
};

class Form final : public std::enable_shared_from_this<Form> {
 public:
    // A hidden form with the rows' controls, no texts yet.
    static std::shared_ptr<Form> Load(PlatformPtr platform, const FormRow& row);
    ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    const FormRow& Row() const { return row_; }
    std::string_view Name() const { return row_.name; }
    const std::string& Caption() const { return caption_; }
    const IconPtr& FormIcon() const { return icon_; }
    const FormHeight& Height() const { return height_; }
    bool Visible() const { return visible_; }
    bool Modal() const { return modal_; }  // else it stays above all windows
    std::shared_ptr<Form> OwnerForm() const { return owner_form_.lock(); }
    const std::list<Control>& Controls() const { return controls_; }
    // Null when there is no control of that name.
    const Control* Find(std::string_view name) const;
    const Control* DefaultButton() const { return Find(row_.default_button); }
    const Control* CancelButton() const { return Find(row_.cancel_button); }
    // Drawn: visible and not in a hidden part of the form. Reachable: drawn and enabled.
    bool Drawn(const Control& control) const;
    bool Reachable(const Control& control) const { return Drawn(control) && control.Enabled(); }
    const Control* Focused() const {
        return focused_;
    }  // the last GotFocus since the form was shown; may be null

    // Events, from the view.
    void
    Activated();  // the window can get the focus; later reports are ignored until the form is shown again
    void Click(const Control& button);
    void Toggle(const Control& check_box, bool checked);
    // The user changed a text. `selection`: afterwards.
    void Type(const Control& text_box, std::string_view text, Selection selection);
    void Type(const Control& masked_box, Secret text);
    void GotFocus(const Control& control);
    void Select(const Control& list, std::ptrdiff_t index);
    // Double click, or Enter on an item: selects it, then runs its handler or else clicks the default button.
    void ActivateItem(const Control& list, std::ptrdiff_t index);
    void EnterPressed();   // clicks the default button
    void EscapePressed();  // clicks the cancel button; without one: as CloseAsked
    void CloseAsked();     // the close box, or the system's menu

    // For the form's behaviour.
    Control& At(std::string_view name);  // raises RuntimeError::InvalidProcedureCall for an unknown name
    void SetCaption(std::string_view caption);
    void SetIcon(IconPtr icon);
    void SetHeight(const FormHeight& height);
    // Sets the first focus instead of the row's, before the window can get the focus.
    void SetFocus(Control& control);
    // Shows the form and runs the event loop until it is hidden or the loop quits; the owner and every other
    // modal form accept no input in the meantime. Returns immediately when the form is unloaded. Raises what
    // a handler raised, and RuntimeError::InvalidProcedureCall in a program without a user interface.
    void ShowModal(const std::shared_ptr<Form>& owner = nullptr);
    // Shows the form above all other windows and returns. A form that is already shown is raised again.
    void ShowTopmost();
    // Also hides the modal form that it owns.
    void Hide();
    // Raised by each Hide, even if the form is not shown: questions that are asked on the form's behalf are
    // withdrawn.
    Signal<> Hidden;
    // Called after the user has closed the form by the close box, or by Escape without a cancel button.
    void OnClosed(Control::Handler handler) { closed_ = std::move(handler); }
    // Hides the form and releases its window. Timers stop, and no handler is called again.
    void Unload();

 private:
    friend class Control;
    Form(PlatformPtr platform, const FormRow& row);
    void Show();
    void SetVisible(bool on);
    void Tell(FormChange change) const;
    void TellControl(const Control& control, ControlChange change) const;
    Control& Own(const Control& control);
    void Fire(const Control::Handler Control::*event, Control& control);
    void Guarded(const std::function<void()>& handler);
    void RunTimer(Control& timer);

    PlatformPtr platform_;
    const FormRow row_;
    std::string caption_;
    IconPtr icon_;
    FormHeight height_;
    bool visible_ = false;
    bool modal_ = false;
    bool activated_ = false;
    bool running_ = false;
    bool unloaded_ = false;
    std::weak_ptr<Form> owner_form_;
    std::weak_ptr<Form> owned_;
    std::list<Control> controls_;
    const Control* first_focus_ = nullptr;  // null: the row's
    const Control* focused_ = nullptr;
    std::shared_ptr<FormView> view_;
    Control::Handler closed_;
    std::exception_ptr failure_;
    kq::Owner timers_;
};

}  // namespace kq
