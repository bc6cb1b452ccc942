// kqappserver's command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kq {

struct AppServerOptions {
    std::string app;
    std::string interface_versions = "1.0";
    std::string listen = "127.0.0.1";  // empty: all addresses
    std::int32_t port = 0;             // 0: a free one
    std::string bus_address = "127.0.0.1";
    std::int32_t bus_port = 0;
    std::string bus_key_file;
    std::string path;                  // the application's folder; its "Install" holds the client installer
    std::int32_t info_interval = 120;  // s
    std::optional<std::int32_t> run_for;  // s
    bool commands = false;
};

// Nothing when the program has to end now: after --help and --version (code 0) and after a mistake (code 2, a
// line on standard error); `exit_code` is set then.
std::optional<AppServerOptions> ParseAppServerOptions(int argc, const char* const* argv, int& exit_code);

}  // namespace kq
