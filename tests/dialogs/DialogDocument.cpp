// Writes the forms as a document for people.
#include "dialogs/DialogDocument.h"

#include "dialogs/DialogCatalogue.h"
#include "messages/MessagesTesting.h"

namespace kq {
namespace {

constexpr std::string_view kIntroduction = R"(# Dialogs

Generated from the forms in `src/dialogs`; a test compares the two. To rewrite this page after a change of a
form, run `KQ_UPDATE_GOLDEN=1 test_dialogs`.

A dialog is data: a list of controls that a renderer draws by kind. Controls are listed in tab order, which is
the order of reading. A text is shown as its number in `resources/strings` and its English words. A control
without one is filled in by the dialog or the user. Enter clicks the default button, Escape the cancel button.
The close box hides a dialog; only the code that showed it ends it.

The first focus is where the table says, else on the first control that accepts it. The login dialog begins with
the password if it knows the login id, the profiles dialog with the button "New" if there is no profile. After
a message the focus is on the box that the message is about, with its text selected.
)";

std::string_view NameOf(ControlKind kind) {
    switch (kind) {
        case ControlKind::Label:
            return "label";
        case ControlKind::TextBox:
            return "text box";
        case ControlKind::MaskedBox:
            return "masked box";
        case ControlKind::CheckBox:
            return "check box";
        case ControlKind::Button:
            return "button";
        case ControlKind::ListView:
            return "list";
        case ControlKind::ProgressBar:
            return "progress bar";
        case ControlKind::Frame:
            return "frame";
        case ControlKind::Timer:
            return "timer";
    }
    return "";
}

std::string TextOf(const Texts& texts, std::int32_t id) {
    return id == 0 ? std::string() : std::to_string(id) + " \"" + texts.LoadText(id) + "\"";
}

std::string TextsOf(const Texts& texts, const ControlRow& control) {
    const std::string other = TextOf(texts, control.other_text_id);
    return TextOf(texts, control.text_id) + (other.empty() ? "" : " or " + other);
}

std::string RemarksOn(const FormRow& form, const ControlRow& control) {
    std::string remarks;
    const auto add = [&](const std::string& remark) { remarks += (remarks.empty() ? "" : ", ") + remark; };
    if (control.name == form.first_focus) add("first focus");
    if (control.name == form.default_button) add("Enter");
    if (control.name == form.cancel_button) add("Escape");
    if (!control.buddy.empty()) add("names `" + std::string(control.buddy) + "`");
    if (!control.frame.empty()) add("in `" + std::string(control.frame) + "`");
    if (control.interval != 0) add(std::to_string(control.interval) + " ms");
    if (!control.visible) add("not shown");
    if (!control.enabled) add("disabled at first");
    return remarks;
}

}  // namespace

std::string DialogDocument() {
    const EnglishMachine machine;
    const Texts texts(machine.platform);
    std::string page(kIntroduction);
    for (const FormRow* form : DialogCatalogue()) {
        page += "\n## " + std::string(form->name) + "\n\n";
        if (form->caption_id != 0) page += "Caption: " + TextOf(texts, form->caption_id) + "\n\n";
        if (form->closing == Closing::Refused) page += "It cannot be closed by hand.\n\n";
        page += "| Control | Kind | Text | |\n|---|---|---|---|\n";
        for (const auto& control : form->controls) {
            page += "| `" + std::string(control.name) + "` | " + std::string(NameOf(control.kind)) + " | " +
                    TextsOf(texts, control) + " | " + RemarksOn(*form, control) + " |\n";
        }
    }
    return page;
}

}  // namespace kq
