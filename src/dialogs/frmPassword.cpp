// Message 650 names two boxes though the third is asked for as well.
#include "dialogs/frmPassword.h"

namespace kq {
namespace {

constexpr std::int32_t kValuesMissing = 650;
constexpr std::int32_t kNoMatch = 651;

class PasswordWindow : public OKCancelWindow {
 public:
    explicit PasswordWindow(Dialog& dialog) : OKCancelWindow(dialog, frmPassword::Row()) {
        for (const auto box : {"txtOldPassword", "txtNewPassword", "txtConfirmPassword"})
            SelectsAllOnFocus(box);
    }

    bool Run(Secret& old_password, Secret& new_password, const IconPtr& icon) {
        if (!Confirmed(icon)) return false;
        old_password = old_.Typed();
        new_password = new_.Typed();
        return true;
    }

 private:
    bool Accepts() override {
        for (Control* const box : {&old_, &new_, &confirm_}) {
            if (!box->Typed().Empty()) continue;
            Warn(kValuesMissing);
            GoBackTo(*box);
            return false;
        }
        if (new_.Typed().Reveal() != confirm_.Typed().Reveal()) {
            Warn(kNoMatch);
            confirm_.Clear();
            new_.Clear();
            GoBackTo(new_);
            return false;
        }
        return true;
    }

    Control& old_ = At("txtOldPassword");
    Control& new_ = At("txtNewPassword");
    Control& confirm_ = At("txtConfirmPassword");
};

}  // namespace

const FormRow& frmPassword::Row() {
    using enum ControlKind;
    static const FormRow row{
        .name = "frmPassword",
        .caption_id = 600,
        .default_button = "cmdOK",
        .cancel_button = "cmdCancel",
        .first_focus = "txtOldPassword",
        .controls = {
            {.kind = Label, .name = "lblIntro", .text_id = 601},
            {.kind = Frame, .name = "Picture1"},
            {.kind = Label,
             .name = "lblOldPassword",
             .text_id = 602,
             .buddy = "txtOldPassword",
             .frame = "Picture1"},
            {.kind = MaskedBox, .name = "txtOldPassword", .frame = "Picture1", .place = Place::SameRow},
            {.kind = Label,
             .name = "lblNewPassword",
             .text_id = 603,
             .buddy = "txtNewPassword",
             .frame = "Picture1"},
            {.kind = MaskedBox, .name = "txtNewPassword", .frame = "Picture1", .place = Place::SameRow},
            {.kind = Label,
             .name = "lblConfirmPassword",
             .text_id = 606,
             .buddy = "txtConfirmPassword",
             .frame = "Picture1"},
            {.kind = MaskedBox, .name = "txtConfirmPassword", .frame = "Picture1", .place = Place::SameRow},
            {.kind = Button, .name = "cmdOK", .text_id = 604, .place = Place::ButtonRow},
            {.kind = Button, .name = "cmdCancel", .text_id = 605, .place = Place::ButtonRow},
        }};
    return row;
}

bool frmPassword::GetPassword(Secret& old_password, Secret& new_password, const IconPtr& icon) {
    return PasswordWindow(*this).Run(old_password, new_password, icon);
}

}  // namespace kq
