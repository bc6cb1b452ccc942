// Who logs in: login id, password and, on demand, a new password.
//
// The window has two parts. The lower one, the "more" area, is opened and closed by a button and holds the
// new password, the way to the server dialog and the choice to be asked for a profile every time.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <kqappsession/Secret.h>

#include "dialogs/Dialog.h"

namespace kq {

class frmLogin : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // Address, port, time-out in milliseconds, use of the application server for the login.
    using ServerEvent = std::function<void(std::string&, std::int32_t&, std::int32_t&, bool&)>;
    // The dialog's two events. Set before Login; an error that one raises ends the dialog and comes out of
    // Login.
    ServerEvent GetAddressPort;   // the owner fills in the current settings
    ServerEvent SaveAddressPort;  // the owner keeps the new settings

    // True when the user gave an id and a password. Then `login_id`, `password`, `new_password` (empty: none
    // typed) and `show` (whether the "more" area is open) are what the user left, and, if `use_profiles`,
    // `ask_for_profile`, too. On false nothing is changed. `icon` may be null.
    bool Login(std::string& login_id, Secret& password, bool use_profiles, Secret& new_password,
               bool& ask_for_profile, bool& show, const IconPtr& icon);
};

}  // namespace kq
