// A dialog as data. A Form lists its controls and holds their state; its behaviour is a handler per event; a
// renderer (FormView) draws kinds of controls and knows no dialog by name.
//
// For who writes behaviour: a handler may hide the form, change any control, show another modal form or a
// message box, during which everything else may happen. An exception that leaves a handler hides the form and
// comes out of ShowModal (of a modeless form it is a stray exception).
//
// For who writes a renderer:
// - The view is made by DialogHost::CreateView at the first showing, reads everything from the form, and is
//   told of every later change that is not its own report. It reports what the user did, never what the form
//   set.
// - Every event may, before it returns, change and hide the form, show others and run the loop, or unload the
//   form and so destroy the view: a view lets its window go without pulling it from under the toolkit (hide
//   at once, destroy later) and touches nothing of itself after an event that it did not hold.
// - The form is held by shared_from_this as long as a view needs it.
// - A control can be used while Reachable says so; events of others are ignored.
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

// A picture for title bars, made and understood by one port. Others show none.
class Icon {
 public:
    virtual ~Icon() = default;
};
using IconPtr = std::shared_ptr<const Icon>;

// What the close box does: the form is hidden, or nothing happens. Nothing but Unload ends a form.
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

// How high the window is.
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
    bool Modal() const { return modal_; }  // else it stays above all windows and takes no focus
    std::shared_ptr<Form> OwnerForm() const { return owner_form_.lock(); }
    const std::list<Control>& Controls() const { return controls_; }
    // Null when there is none of the name.
    const Control* Find(std::string_view name) const;
    const Control* DefaultButton() const { return Find(row_.default_button); }
    const Control* CancelButton() const { return Find(row_.cancel_button); }
    // Drawn: visible and not in a part of the form that is cut off. Reachable: drawn and enabled.
    bool Drawn(const Control& control) const;
    bool Reachable(const Control& control) const { return Drawn(control) && control.Enabled(); }
    const Control* Focused() const { return focused_; }  // the latest GotFocus of this showing; may be null

    // Events, from the view.
    void Activated();  // the window can take the focus; counts once for each showing
    void Click(const Control& button);
    void Toggle(const Control& check_box, bool checked);
    // The user changed a text; where the selection is afterwards.
    void Type(const Control& text_box, std::string_view text, Selection selection);
    void Type(const Control& masked_box, Secret text);
    void GotFocus(const Control& control);
    void Select(const Control& list, std::ptrdiff_t index);
    // Double click, or Enter on an item: selects it, then its handler or else the default button.
    void ActivateItem(const Control& list, std::ptrdiff_t index);
    void EnterPressed();   // clicks the default button
    void EscapePressed();  // clicks the cancel button; without one as CloseAsked
    void CloseAsked();     // the close box, or the system's menu

    // For the form's behaviour.
    Control& At(std::string_view name);  // raises RuntimeError::InvalidProcedureCall for an unknown name
    void SetCaption(std::string_view caption);
    void SetIcon(IconPtr icon);
    void SetHeight(const FormHeight& height);
    // Before the window can take the focus: where it is at first, instead of at the row's first focus.
    void SetFocus(Control& control);
    // Shows the form and runs the event loop until it is hidden or the loop quits; the owner and every other
    // modal form wait meanwhile. Raises what a handler raised, and RuntimeError::InvalidProcedureCall in a
    // program without a face. Returns at once when the form is unloaded.
    void ShowModal(const std::shared_ptr<Form>& owner = nullptr);
    // Shows the form above all other windows and returns; when it is shown, raises it again.
    void ShowTopmost();
    // Hides the modal form that it owns, too.
    void Hide();
    // Raised by each Hide, though the form is not shown: what is asked on the form's behalf is withdrawn.
    Signal<> Hidden;
    // Called after the user has closed the form by hand: the close box, or Escape without a cancel button.
    void OnClosed(Control::Handler handler) { closed_ = std::move(handler); }
    // Hides the form and lets its window go for good; timers stop, no handler is called again.
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
    const Control* first_focus_ = nullptr;  // null: as the row says
    const Control* focused_ = nullptr;
    std::shared_ptr<FormView> view_;
    Control::Handler closed_;
    std::exception_ptr failure_;
    kq::Owner timers_;
};

}  // namespace kq
