// Where the login server is: address, port, time-out for connections, and whether the application server is
// used for the login.
//
// Callers hold the time-out in milliseconds; the user sees and types seconds.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "dialogs/Dialog.h"

namespace kq {

class frmServer : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // Shows the values and lets the user change them. True when the user confirmed values that are valid; the
    // four are then replaced. On false they stay. `icon` may be null; `owner` is the form that waits
    // meanwhile.
    bool GetServerInfo(std::string& address, std::int32_t& port, std::int32_t& time_out, bool& use_as_server,
                       const IconPtr& icon, const std::shared_ptr<Form>& owner = nullptr);
};

}  // namespace kq
