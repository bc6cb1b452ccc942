// What a login needs of its user.
#pragma once

#include <string>

#include <kqappsession/Secret.h>

namespace kq {

struct LoginAnswer {
    std::string login_id{};
    Secret password{};
    Secret new_password{};         // empty: the password is not to be changed
    bool ask_for_profile = false;  // at every login
    bool show_details = false;     // the "more" area of the dialog is open
};

}  // namespace kq
