// Asking the user. A program without a face has no DialogHost.
//
// A host draws message boxes and forms of any kind; it knows none by name. Everything that it shows modally
// keeps the event loop running, so anything may happen until the call returns; modal calls nest.
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

// What counts as the answer to a box that nobody answers: the button that asks for nothing.
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
    std::string extension;  // without the point; appended to a name that has it not
    std::string file_name;  // proposed
};

class DialogHost {
 public:
    virtual ~DialogHost() = default;
    // Shows a modal box and returns the button pressed. The event loop keeps running in the meantime. The box
    // belongs to the modal form on top, when there is one. It closes as Unanswered when the loop quits and
    // when `withdrawn` is raised, which must outlive the call.
    virtual BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                                     Signal<>& withdrawn) = 0;
    // The same without an end from outside.
    BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style) {
        Signal<> never;
        return ShowMessageBox(text, caption, style, never);
    }

    // Makes the window of a form, hidden until the form's Visible changes; Modal and OwnerForm stand. Called
    // by the form, which keeps the view until it is unloaded. Never null.
    virtual std::unique_ptr<FormView> CreateView(Form& form) = 0;
    // Runs the event loop until the form, which is shown, is no longer Visible or the loop quits. Windows of
    // the program other than the form's take no input meanwhile. The caller keeps the form.
    virtual void RunModal(Form& form) = 0;
    // Asks modally for a file to save to, an existing one only after the user agreed to replace it. Nothing
    // when the user cancels, when the loop quits and when `withdrawn` is raised.
    virtual std::optional<std::string> AskSavePath(const SaveQuestion& question, Signal<>& withdrawn) = 0;
    std::optional<std::string> AskSavePath(const SaveQuestion& question) {
        Signal<> never;
        return AskSavePath(question, never);
    }
};

}  // namespace kq
