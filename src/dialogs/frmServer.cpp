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

class ServerWindow : public OKCancelWindow {
 public:
    explicit ServerWindow(Dialog& dialog) : OKCancelWindow(dialog, frmServer::Row()) {
        SelectsAllOnFocus("txtAddress");
        SelectsAllOnFocus("txtPort");
    }

    bool Run(ServerSettings& server, const IconPtr& icon, const std::shared_ptr<Form>& owner) {
        address_.SetText(server.address);
        port_.SetText(server.port < 1 ? std::string() : TextOf(server.port));
        time_out_.SetText(TextOf(server.time_out / kMillisecondsPerSecond));
        use_as_server_.SetChecked(server.use_as_server_for_login);
        if (!Confirmed(icon, owner)) return false;
        server.address = address_.Text();
        server.port = ValLong(port_.Text());
        server.time_out = RoundToLong(Val(time_out_.Text()) * kMillisecondsPerSecond);
        server.use_as_server_for_login = use_as_server_.Checked();
        return true;
    }

 private:
    bool Accepts() override {
        if (!RoundsInto(port_.Text(), 1, 65535)) return Complains(port_, kBadPort);
        if (!RoundsInto(time_out_.Text(), 1, 60)) return Complains(time_out_, kBadTimeOut);
        return true;
    }

    bool Complains(Control& box, std::int32_t text_id) {
        Warn(text_id);
        GoBackTo(box);
        return false;
    }

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

bool frmServer::GetServerInfo(ServerSettings& server, const IconPtr& icon,
                              const std::shared_ptr<Form>& owner) {
    return ServerWindow(*this).Run(server, icon, owner);
}

}  // namespace kq
