// Opening and closing the "more" area changes the height of the window and nothing else, so what was typed in
// it counts though it is closed.
#include "dialogs/frmLogin.h"

#include "dialogs/frmServer.h"

namespace kq {
namespace {

constexpr std::int32_t kNoLoginID = 250;
constexpr std::int32_t kNoPassword = 251;
constexpr std::int32_t kShowMore = 205;
constexpr std::int32_t kHide = 206;
// Outer heights in twips; the difference is the row of the check box.
constexpr std::int32_t kOpenWithProfiles = 3645;
constexpr std::int32_t kOpen = 3360;

class LoginWindow : public OKCancelWindow {
 public:
    LoginWindow(frmLogin& dialog, bool use_profiles)
        : OKCancelWindow(dialog, frmLogin::Row()),
          get_address_port_(dialog.GetAddressPort),
          save_address_port_(dialog.SaveAddressPort),
          profiles_used_(use_profiles) {
        OnClick("cmdShowHide", [this] { cmdShowHide_Click(); });
        OnClick("cmdChangeServer", [this] { cmdChangeServer_Click(); });
        for (const auto box : {"txtLoginID", "txtPassword", "txtNewPassword"})
            SelectsAllOnFocus(box);
    }

    bool Run(LoginAnswer& answer, const IconPtr& icon) {
        details_shown_ = answer.show_details;
        if (profiles_used_)
            ask_for_profile_.SetChecked(answer.ask_for_profile);
        else
            ask_for_profile_.SetVisible(false);
        LayOut();
        login_id_.SetText(answer.login_id);
        form_->SetFocus(answer.login_id.empty() ? login_id_ : password_);
        if (!Confirmed(icon)) return false;
        answer.login_id = login_id_.Text();
        answer.password = password_.Typed();
        answer.new_password = new_password_.Typed();
        answer.show_details = details_shown_;
        if (profiles_used_) answer.ask_for_profile = ask_for_profile_.Checked();
        return true;
    }

 private:
    void LayOut() {
        At("cmdShowHide").SetText(texts_.LoadText(details_shown_ ? kHide : kShowMore));
        if (details_shown_)
            form_->SetHeight({FormHeight::Rule::Outer, profiles_used_ ? kOpenWithProfiles : kOpen});
        else
            form_->SetHeight({FormHeight::Rule::EndsAt, 0, "Picture2"});
    }

    bool Accepts() override {
        if (login_id_.Text().empty()) {
            boxes_.ShowWarning(kNoLoginID);
            GoBackTo(login_id_);
            return false;
        }
        if (password_.Typed().Empty()) {
            boxes_.ShowWarning(kNoPassword);
            GoBackTo(password_);
            return false;
        }
        return true;
    }

    void cmdShowHide_Click() {
        details_shown_ = !details_shown_;
        LayOut();
    }

    void cmdChangeServer_Click() {
        ServerSettings server;
        if (get_address_port_) get_address_port_(server);
        if (!form_->Visible()) return;  // the dialog has gone in the meantime
        const bool changed = frmServer(platform_).GetServerInfo(server, nullptr, form_);
        if (changed && save_address_port_) save_address_port_(server);
    }

    const std::function<void(ServerSettings&)> get_address_port_;
    const std::function<void(const ServerSettings&)> save_address_port_;
    const bool profiles_used_;
    bool details_shown_ = false;
    Control& login_id_ = At("txtLoginID");
    Control& password_ = At("txtPassword");
    Control& new_password_ = At("txtNewPassword");
    Control& ask_for_profile_ = At("chkAskForProfile");
};

}  // namespace

const FormRow& frmLogin::Row() {
    using enum ControlKind;
    static const FormRow row{
        .name = "frmLogin",
        .caption_id = 200,
        .default_button = "cmdOK",
        .cancel_button = "cmdCancel",
        .controls = {
            {.kind = Frame, .name = "Picture1"},
            {.kind = Label, .name = "lblLoginID", .text_id = 201, .buddy = "txtLoginID", .frame = "Picture1"},
            {.kind = TextBox, .name = "txtLoginID", .frame = "Picture1", .place = Place::SameRow},
            {.kind = Label,
             .name = "lblPassword",
             .text_id = 202,
             .buddy = "txtPassword",
             .frame = "Picture1"},
            {.kind = MaskedBox, .name = "txtPassword", .frame = "Picture1", .place = Place::SameRow},
            {.kind = Button, .name = "cmdOK", .text_id = 204, .frame = "Picture1", .place = Place::ButtonRow},
            {.kind = Button,
             .name = "cmdCancel",
             .text_id = 203,
             .frame = "Picture1",
             .place = Place::ButtonRow},
            {.kind = Button,
             .name = "cmdShowHide",
             .text_id = kShowMore,
             .frame = "Picture1",
             .place = Place::ButtonRow,
             .other_text_id = kHide},
            {.kind = Frame, .name = "Picture2"},
            {.kind = Label,
             .name = "lblNewPassword",
             .text_id = 207,
             .buddy = "txtNewPassword",
             .frame = "Picture2"},
            {.kind = MaskedBox, .name = "txtNewPassword", .frame = "Picture2", .place = Place::SameRow},
            {.kind = Button, .name = "cmdChangeServer", .text_id = 208, .frame = "Picture2"},
            {.kind = CheckBox, .name = "chkAskForProfile", .text_id = 209, .frame = "Picture2"},
        }};
    return row;
}

bool frmLogin::Login(LoginAnswer& answer, bool use_profiles, const IconPtr& icon) {
    return LoginWindow(*this, use_profiles).Run(answer, icon);
}

}  // namespace kq
