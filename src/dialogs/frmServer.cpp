// The time-out is checked rounded but kept as typed: 1.4 seconds pass as 1 and are kept as 1400 ms.
#include "dialogs/frmServer.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"

namespace kq {
namespace {

constexpr std::int32_t kBadPort = 151;
constexpr std::int32_t kBadTimeOut = 152;  // says "less than 60", and 60 is accepted

constexpr std::int32_t kMillisecondsPerSecond = 1000;

// Whether the text's number, rounded, is in the range. Numbers beyond 32 bits are not.
bool RoundsInto(const std::string& text, std::int32_t first, std::int32_t last) {
    try {
        const std::int32_t number = ValLong(text);
        return number >= first && number <= last;
    } catch (const Error&) {
        return false;
    }
}

class ServerWindow : public Window {
 public:
    explicit ServerWindow(Dialog& dialog) : Window(dialog, frmServer::Row()) {
        OnClick("cmdOK", [this] { cmdOK_Click(); });
        OnClick("cmdCancel", [this] { form_->Hide(); });
        SelectsAllOnFocus("txtAddress");
        SelectsAllOnFocus("txtPort");
    }

    bool Run(std::string& address, std::int32_t& port, std::int32_t& time_out, bool& use_as_server,
             const IconPtr& icon, const std::shared_ptr<Form>& owner) {
        if (icon) form_->SetIcon(icon);
        address_.SetText(address);
        port_.SetText(port < 1 ? std::string() : TextOf(port));
        time_out_.SetText(TextOf(time_out / kMillisecondsPerSecond));
        use_as_server_.SetChecked(use_as_server);
        form_->ShowModal(owner);
        if (!ok_) return false;
        address = address_.Text();
        port = ValLong(port_.Text());
        time_out = RoundToLong(Val(time_out_.Text()) * kMillisecondsPerSecond);
        use_as_server = use_as_server_.Checked();
        return true;
    }

 private:
    void cmdOK_Click() {
        if (!IsValid()) return;
        ok_ = true;
        form_->Hide();
    }

    bool IsValid() {
        if (!RoundsInto(port_.Text(), 1, 65535)) {
            Warn(kBadPort);
            GoBackTo(port_);
            return false;
        }
        if (!RoundsInto(time_out_.Text(), 1, 60)) {
            Warn(kBadTimeOut);
            GoBackTo(time_out_);
            return false;
        }
        return true;
    }

    bool ok_ = false;
    Control& address_ = At("txtAddress");
    Control& port_ = At("txtPort");
    Control& time_out_ = At("txtTimeOut");
    Control& use_as_server_ = At("chkUseASServerforLogin");
};

}  // namespace

const FormRow& frmServer::Row() {
    using enum ControlKind;
    static const FormRow row{
        .name = "frmServer",
        .caption_id = 101,
        .default_button = "cmdOK",
        .cancel_button = "cmdCancel",
        .first_focus = "txtAddress",
        .controls = {
            {.kind = Label, .name = "lblIntro", .text_id = 102},
            {.kind = Label, .name = "lblAddress", .text_id = 103, .buddy = "txtAddress"},
            {.kind = TextBox, .name = "txtAddress", .place = Place::SameRow},
            {.kind = Label, .name = "lblPort", .text_id = 104, .buddy = "txtPort"},
            {.kind = TextBox, .name = "txtPort", .place = Place::SameRow},
            {.kind = Label, .name = "lblTimeOut", .text_id = 107, .buddy = "txtTimeOut"},
            {.kind = TextBox, .name = "txtTimeOut", .place = Place::SameRow},
            {.kind = Label, .name = "lblSec", .text_id = 108, .place = Place::SameRow},
            {.kind = CheckBox, .name = "chkUseASServerforLogin", .text_id = 109},
            {.kind = Button, .name = "cmdOK", .text_id = 106, .place = Place::ButtonRow},
            {.kind = Button, .name = "cmdCancel", .text_id = 105, .place = Place::ButtonRow},
        }};
    return row;
}

bool frmServer::GetServerInfo(std::string& address, std::int32_t& port, std::int32_t& time_out,
                              bool& use_as_server, const IconPtr& icon, const std::shared_ptr<Form>& owner) {
    return ServerWindow(*this).Run(address, port, time_out, use_as_server, icon, owner);
}

}  // namespace kq
