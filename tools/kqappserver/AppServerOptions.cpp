#include "tools/kqappserver/AppServerOptions.h"

#include <iostream>

#include <CLI/CLI.hpp>

namespace kq {
namespace {

constexpr int kUsage = 2;
constexpr std::int32_t kLongestInterval = 2'147'483;  // s, so that it fits into 32 bits as ms

void AddOptions(CLI::App& app, AppServerOptions& options) {
    app.add_option("--app", options.app, "The application identifier")->required();
    app.add_option("--interface-versions", options.interface_versions,
                   "The interface versions that the application accepts, separated by | or ,")
        ->capture_default_str();
    app.add_option("--listen", options.listen, "The address to listen on; empty: all addresses")
        ->capture_default_str();
    app.add_option("--port", options.port, "The port to listen on; 0: a free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--bus-address", options.bus_address, "The address of the bus")->capture_default_str();
    app.add_option("--bus-port", options.bus_port, "The port of the bus")
        ->required()
        ->check(CLI::Range(1, 65535));
    app.add_option("--bus-key-file", options.bus_key_file,
                   "The file with the key of the bus, as zebd reads it; made by 'zebctl bus-key'");
    app.add_option("--path", options.path,
                   "The application's folder; the folder Install in it holds the client installer")
        ->check(CLI::ExistingDirectory);
    app.add_option("--info-interval", options.info_interval, "Seconds between announcements; 0: none")
        ->check(CLI::Range(0, kLongestInterval))
        ->capture_default_str();
    app.add_option("--run-for", options.run_for, "Seconds after which the program ends by itself")
        ->check(CLI::Range(0, kLongestInterval));
    app.add_flag("--commands", options.commands,
                 "Obey lines on standard input: sessions, disconnect ID, quit");
}

}  // namespace

std::optional<AppServerOptions> ParseAppServerOptions(int argc, const char* const* argv, int& exit_code) {
    AppServerOptions options;
    CLI::App app(
        "An application server without an application: accepts sessions and logs every event as one line.",
        "kqappserver");
    app.footer(
        "Exit codes:\n    0  ended by a signal, --run-for or the command quit\n    2  the command line is "
        "wrong\n    1  any other failure\n");
    app.set_version_flag("--version", "kqappserver " KQ_VERSION);
    AddOptions(app, options);
    try {
        app.parse(argc, argv);
        return options;
    } catch (const CLI::Success& success) {
        exit_code = app.exit(success);
    } catch (const CLI::ParseError& error) {
        std::cerr << "kqappserver: " << error.what() << " (see kqappserver --help)\n";
        exit_code = kUsage;
    }
    return std::nullopt;
}

}  // namespace kq
