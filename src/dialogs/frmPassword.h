// The old password and a new one, typed twice. Only what can be told here is checked; the rules for passwords
// are the server's.
#pragma once

#include <kqappsession/Secret.h>

#include "dialogs/Dialog.h"

namespace kq {

class frmPassword : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // True when the user filled in all boxes and the new password twice the same; both passwords are then
    // what was typed. On false they stay. `icon` may be null.
    bool GetPassword(Secret& old_password, Secret& new_password, const IconPtr& icon);
};

}  // namespace kq
