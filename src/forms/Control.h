// One control of a form, as data: what it is, what it shows, what happens when the user uses it.
//
// A renderer reads controls and is informed of their changes (FormView); it never writes them. It reports
// what the user does to the form. Positions and lengths in a text count characters (code points).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/Secret.h>

namespace kq {

class Form;

enum class ControlKind {
    Label,        // a text; with a buddy it names that box, for screen readers and access keys too
    TextBox,      // one line that the user types
    MaskedBox,    // the same shown as "*"; only the form gets the text
    CheckBox,     // a text and a tick
    Button,       // a text and a click
    ListView,     // items of one column, at most one selected
    ProgressBar,  // how much of a range is done
    Frame,        // holds the controls that name it; no text, no border needed
    Timer,        // not shown; the form runs it
};

// The position of a control in its frame. Frames without a frame are below each other in the form.
enum class Place {
    NextRow,    // begins a row; a label without a buddy runs over the whole width
    SameRow,    // right of the control before it
    ButtonRow,  // in the one row of buttons of its frame, at the position of its first button
    Side,       // in the column of buttons right of the list
};

// What a control is. The order of a form's rows is its tab order and the order of reading.
struct ControlRow {
    ControlKind kind = ControlKind::Label;
    std::string_view name;
    std::int32_t text_id = 0;  // 0: none
    std::string_view buddy = {};
    std::string_view frame = {};  // empty: the form itself
    Place place = Place::NextRow;
    bool visible = true;
    bool enabled = true;
    std::int32_t interval = 0;       // Timer: milliseconds
    std::int32_t other_text_id = 0;  // a second text that alternates with the first; 0: none
};

struct Selection {
    std::size_t start = 0;
    std::size_t length = 0;
    bool operator==(const Selection&) const = default;
};

struct Progress {
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;  // as large as the minimum: nothing is shown as done
    std::int64_t value = 0;
    bool operator==(const Progress&) const = default;
};

// What a view has to draw again.
enum class ControlChange { Text, Selection, Visible, Enabled, Checked, Items, SelectedItem, Progress };

class Control {
 public:
    using Handler = std::function<void()>;
    static constexpr std::ptrdiff_t kNoItem = -1;

    Control(Form& form, const ControlRow& row);

    const ControlRow& Row() const { return row_; }
    ControlKind Kind() const { return row_.kind; }
    std::string_view Name() const { return row_.name; }
    // Caption or typed text. Always empty for a masked box.
    const std::string& Text() const { return text_; }
    // The text that alternates with Text: setting one makes the other this. There is room for both, so that
    // nothing moves. Empty: none.
    const std::string& OtherText() const { return other_text_; }
    std::size_t Length() const;  // characters; of a masked box too
    kq::Selection Selection() const { return selection_; }
    bool Visible() const { return visible_; }
    bool Enabled() const { return enabled_; }
    bool Checked() const { return checked_; }
    const std::vector<std::string>& Items() const { return items_; }
    std::ptrdiff_t SelectedItem() const { return selected_item_; }  // kNoItem: none
    const kq::Progress& Progress() const { return progress_; }
    bool TimerEnabled() const { return timer_enabled_; }
    bool TakesFocus() const;

    // For the form's behaviour. Each informs the view. Setting the present value does nothing, except that a
    // selection is made again. SetText puts the caret at the start and, for a text box, raises Change before
    // it returns.
    void SetText(std::string_view text);
    void SetOtherText(std::string_view text) { other_text_ = text; }  // before the form is shown
    void SetSelection(kq::Selection selection);                       // cut to the text
    void SelectAll() { SetSelection({0, Length()}); }
    void SetVisible(bool on);
    void SetEnabled(bool on);
    void SetChecked(bool on);
    void SetItems(std::vector<std::string> items);  // selects none
    void SelectItem(std::ptrdiff_t index);          // raises no event; out of range: none
    void SetProgress(const kq::Progress& progress);
    // Enabling starts the interval; a timer that is already enabled goes on.
    void SetTimerEnabled(bool on);
    // Masked box: the typed text, and emptying it. Only the user can fill it.
    const Secret& Typed() const { return secret_; }
    void Clear();

    // Handlers of what the user does, one for each event.
    void OnClick(Handler handler) { click_ = std::move(handler); }
    void OnChange(Handler handler) { change_ = std::move(handler); }
    void OnGotFocus(Handler handler) { got_focus_ = std::move(handler); }
    void OnSelect(Handler handler) { select_ = std::move(handler); }
    void OnActivateItem(Handler handler) { activate_item_ = std::move(handler); }
    void OnTick(Handler handler) { tick_ = std::move(handler); }

 private:
    friend class Form;
    void Tell(ControlChange change) const;
    void RaiseChange() const;
    template <class T>
    void Set(T& member, T value, ControlChange change);

    Form& form_;
    const ControlRow row_;
    std::string text_;
    std::string other_text_;
    Secret secret_;
    kq::Selection selection_;
    bool visible_;
    bool enabled_;
    bool checked_ = false;
    std::vector<std::string> items_;
    std::ptrdiff_t selected_item_ = kNoItem;
    kq::Progress progress_;
    bool timer_enabled_ = false;
    std::uint64_t timer_ = 0;
    Handler click_, change_, got_focus_, select_, activate_item_, tick_;
};

}  // namespace kq
