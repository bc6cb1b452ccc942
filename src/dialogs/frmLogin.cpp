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

class LoginWindow : public Window {
 public:
    explicit LoginWindow(frmLogin& dialog)
        : Window(dialog, frmLogin::Row()),
          get_address_port_(dialog.GetAddressPort),
          save_address_port_(dialog.SaveAddressPort) {
        OnClick("cmdOK", [this] { cmdOK_Click(); });
        OnClick("cmdCancel", [this] { form_->Hide(); });
        OnClick("cmdShowHide", [this] { cmdShowHide_Click(); });
        OnClick("cmdChangeServer", [this] { cmdChangeServer_Click(); });
        for (const auto box : {"txtLoginID", "txtPassword", "txtNewPassword"})
            SelectsAllOnFocus(box);
    }

    bool Run(std::string& login_id, Secret& password, bool use_profiles, Secret& new_password,
             bool& ask_for_profile, bool& show, const IconPtr& icon) {
        profiles_used_ = use_profiles;
        details_shown_ = show;
        if (use_profiles)
            ask_for_profile_.SetChecked(ask_for_profile);
        else
            ask_for_profile_.SetVisible(false);
        if (icon) form_->SetIcon(icon);
        LayOut();
        login_id_.SetText(login_id);
        form_->SetFocus(login_id.empty() ? login_id_ : password_);
        form_->ShowModal();
        if (!ok_) return false;
        login_id = login_id_.Text();
        password = password_.Typed();
        new_password = new_password_.Typed();
        show = details_shown_;
        if (profiles_used_) ask_for_profile = ask_for_profile_.Checked();
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

    void cmdOK_Click() {
        if (!IsValid()) return;
        ok_ = true;
        form_->Hide();
    }

    bool IsValid() {
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
        std::string address;
        std::int32_t port = 0;
        std::int32_t time_out = 0;
        bool use_as_server = false;
        if (get_address_port_) get_address_port_(address, port, time_out, use_as_server);
        if (!form_->Visible()) return;  // the dialog has gone meanwhile
        frmServer server(platform_);
        const bool changed = server.GetServerInfo(address, port, time_out, use_as_server, nullptr, form_);
        if (changed && save_address_port_) save_address_port_(address, port, time_out, use_as_server);
    }

    const frmLogin::ServerEvent get_address_port_;
    const frmLogin::ServerEvent save_address_port_;
    bool ok_ = false;
    bool details_shown_ = false;
    bool profiles_used_ = false;
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

bool frmLogin::Login(std::string& login_id, Secret& password, bool use_profiles, Secret& new_password,
                     bool& ask_for_profile, bool& show, const IconPtr& icon) {
    return LoginWindow(*this).Run(login_id, password, use_profiles, new_password, ask_for_profile, show,
                                  icon);
}

}  // namespace kq
