// kqlogin's command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kq {

struct LoginOptions {
    bool tty = false;  // ask the user on the terminal for server, login id and password
    std::string address;
    std::int32_t port = 0;
    std::int32_t time_out = 10'000;  // ms
    bool settings = false;           // address, port and time-out come from the settings file
    bool save_settings = false;
    std::string app;
    std::string interface_version = "1.0";
    std::string client_version;
    std::string user;
    std::string restrict_ip;
    std::int32_t restrict_port = 0;
    std::optional<bool> use_as_server;
    bool register_session = false;
    std::optional<std::string> send;
    bool wait = false;
    bool json = false;
    bool trace = false;
};

// Nothing when the program has to end now: after --help and --version (code 0, the text on standard output)
// and after a mistake (code 2, a line on standard error); `exit_code` is set then.
std::optional<LoginOptions> ParseLoginOptions(int argc, const char* const* argv, int& exit_code);

}  // namespace kq
