// The settings of a login server: where it is and how a login uses it. One value from the settings file to
// the connection, by way of the dialogs.
#pragma once

#include <cstdint>
#include <string>

namespace kq {

struct ServerSettings {
    std::string address{};                 // host name or numeric address
    std::int32_t port = 0;                 // 0: none is known
    std::int32_t time_out = 0;             // ms, of the connection and of each reply
    bool use_as_server_for_login = false;  // the login goes by way of the application server
};

}  // namespace kq
