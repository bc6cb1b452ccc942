// Who logs in: login id, password and, on demand, a new password.
//
// The window has two parts. The lower one, the "more" area, is opened and closed by a button and holds the
// new password, the way to the server dialog and the choice to be asked for a profile every time.
#pragma once

#include <functional>

#include "dialogs/Dialog.h"
#include "dialogs/LoginAnswer.h"
#include "messages/ServerSettings.h"

namespace kq {

class frmLogin : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // The dialog's two events. Set before Login; an error that one raises ends the dialog and comes out of
    // Login.
    std::function<void(ServerSettings&)> GetAddressPort;         // the owner fills in the current settings
    std::function<void(const ServerSettings&)> SaveAddressPort;  // the owner keeps the new settings

    // Starts with the id and the two choices of `answer`. True when the user gave an id and a password;
    // `answer` is then what the user left, with the choice of the profile only if `use_profiles`. On false
    // nothing is changed. `icon` may be null.
    bool Login(LoginAnswer& answer, bool use_profiles, const IconPtr& icon);
};

}  // namespace kq
