// Where the login server is: address, port, time-out for connections, and whether the application server is
// used for the login.
//
// Callers hold the time-out in milliseconds; the user sees and types seconds.
#pragma once

#include <memory>

#include "dialogs/Dialog.h"
#include "messages/ServerSettings.h"

namespace kq {

class frmServer : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // Shows the settings and lets the user change them. True when the user confirmed settings that are valid;
    // `server` holds them now. On false it stays. `icon` may be null; `owner` is the form that waits in the
    // meantime.
    bool GetServerInfo(ServerSettings& server, const IconPtr& icon,
                       const std::shared_ptr<Form>& owner = nullptr);
};

}  // namespace kq
