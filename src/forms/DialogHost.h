// Asking the user. A program without a user interface has no DialogHost.
//
// A DialogHost shows message boxes and forms of any kind; it knows no particular form. Modal calls keep the
// event loop running, so anything may happen until they return; they may be nested.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <kqappsession/Signal.h>

namespace kq {

class Form;
class FormView;

// Buttons and icon of a message box in the platform's numbering; the first button is always the default.
enum class BoxStyle : std::int32_t {
    Error = 16,        // OK, stop icon
    Warning = 48,      // OK, exclamation icon
    YesNoCancel = 51,  // Yes, No, Cancel, exclamation icon
    YesNo = 52,        // Yes, No, exclamation icon
    Information = 64,  // OK, information icon
};

enum class BoxButton : std::int32_t { OK = 1, Cancel = 2, Yes = 6, No = 7 };

// The answer of a box that nobody answers: the button with the least effect.
constexpr BoxButton Unanswered(BoxStyle style) {
    switch (style) {
        case BoxStyle::YesNoCancel:
            return BoxButton::Cancel;
        case BoxStyle::YesNo:
            return BoxButton::No;
        default:
            return BoxButton::OK;
    }
}

// Where to save a file.
struct SaveQuestion {
    std::string title;
    std::string folder;     // where the question starts; empty: wherever the platform likes
    std::string filter;     // "Shortcut|*.lnk": what files are called and their pattern
    std::string extension;  // without the point; appended to a name without it
    std::string file_name;  // proposed
};

class DialogHost {
 public:
    virtual ~DialogHost() = default;
    // Shows a modal box and returns the button that was pressed. The event loop runs in the meantime. The box
    // belongs to the topmost modal form, if there is one. It closes as Unanswered when the loop quits and
    // when `withdrawn` is raised, which must outlive the call.
    virtual BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                                     Signal<>& withdrawn) = 0;
    // The same without `withdrawn`.
    BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style) {
        Signal<> never;
        return ShowMessageBox(text, caption, style, never);
    }

    // Makes the window of a form, hidden until the form's Visible changes; the form's Modal and OwnerForm are
    // set before. Called by the form, which keeps the view until it is unloaded. Never null.
    virtual std::unique_ptr<FormView> CreateView(Form& form) = 0;
    // Runs the event loop until the form, which is shown, is no longer Visible or the loop quits. The
    // program's other windows accept no input in the meantime. The caller keeps the form alive.
    virtual void RunModal(Form& form) = 0;
    // Asks modally for a file to save to. An existing file is returned only after the user has agreed to
    // replace it. Nothing when the user cancels, when the loop quits and when `withdrawn` is raised.
    virtual std::optional<std::string> AskSavePath(const SaveQuestion& question, Signal<>& withdrawn) = 0;
    std::optional<std::string> AskSavePath(const SaveQuestion& question) {
        Signal<> never;
        return AskSavePath(question, never);
    }
};

}  // namespace kq
