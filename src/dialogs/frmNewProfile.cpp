// The filter writes the box that it listens to, and so would call itself; the guard ends that. The caret
// stays at its number, not at its character, when characters before it are dropped. An error ends the filter,
// not the dialog.
#include "dialogs/frmNewProfile.h"

#include "base/Convert.h"

namespace kq {
namespace {

constexpr std::int32_t kNewCaption = 800;
constexpr std::int32_t kNewIntro = 801;
constexpr std::int32_t kRenameCaption = 804;
constexpr std::int32_t kRenameIntro = 805;
constexpr std::string_view kForbidden = "*|\\/:\"<>?'";

thread_local bool filtering = false;  // one guard for all uses of the dialog

class Filtering {
 public:
    Filtering() { filtering = true; }
    Filtering(const Filtering&) = delete;
    Filtering& operator=(const Filtering&) = delete;
    ~Filtering() { filtering = false; }
};

class NewProfileWindow : public OKCancelWindow {
 public:
    explicit NewProfileWindow(Dialog& dialog) : OKCancelWindow(dialog, frmNewProfile::Row()) {
        SelectsAllOnFocus("txtName");
        name_.OnChange([this] { txtName_Change(); });
        At("Timer1").OnTick([this] { At("cmdOK").SetEnabled(!IsBlank()); });
    }

    bool Run(std::int32_t caption, std::int32_t intro, std::string& name,
             const std::shared_ptr<Form>& owner) {
        form_->SetCaption(texts_.LoadText(caption));
        At("lblIntro").SetText(texts_.LoadText(intro));
        name_.SetText(name);
        At("Timer1").SetTimerEnabled(true);
        if (!Confirmed(nullptr, owner)) return false;
        name = Trim(name_.Text());
        return true;
    }

 private:
    bool Accepts() override { return !IsBlank(); }  // emptied since the last tick
    bool IsBlank() const { return Trim(name_.Text()).empty(); }

    void txtName_Change() {
        if (filtering) return;
        const Filtering guard;
        try {
            const Selection selection = name_.Selection();
            name_.SetText(AllowedInProfileName(name_.Text()));
            name_.SetSelection(selection);
        } catch (const std::exception&) {
            // The box keeps what it has; the next change is filtered again.
        }
    }

    Control& name_ = At("txtName");
};

}  // namespace

std::string AllowedInProfileName(std::string_view text) {
    std::string allowed;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= 32 && code < 128 && kForbidden.find(character) == kForbidden.npos) allowed += character;
    }
    return allowed;
}

const FormRow& frmNewProfile::Row() {
    using enum ControlKind;
    static const FormRow row{
        .name = "frmNewProfile",
        .caption_id = kNewCaption,
        .default_button = "cmdOK",
        .cancel_button = "cmdCancel",
        .first_focus = "txtName",
        .controls = {
            {.kind = Label, .name = "lblIntro", .text_id = kNewIntro, .buddy = "txtName"},
            {.kind = TextBox, .name = "txtName"},
            {.kind = Button, .name = "cmdOK", .text_id = 802, .place = Place::ButtonRow, .enabled = false},
            {.kind = Button, .name = "cmdCancel", .text_id = 803, .place = Place::ButtonRow},
            {.kind = Timer, .name = "Timer1", .interval = 100},
        }};
    return row;
}

bool frmNewProfile::GetNewProfile(std::string& name, const std::shared_ptr<Form>& owner) {
    return NewProfileWindow(*this).Run(kNewCaption, kNewIntro, name, owner);
}

bool frmNewProfile::RenameProfile(std::string& name, const std::shared_ptr<Form>& owner) {
    return NewProfileWindow(*this).Run(kRenameCaption, kRenameIntro, name, owner);
}

}  // namespace kq
