#include "tools/kqappserver/AppServerOptions.h"

#include "tools/program/CommandLine.h"
#include "tools/program/Program.h"

namespace kq {
namespace {

constexpr std::int32_t kLongestInterval = 2'147'483;  // s, so that it fits into 32 bits as ms

void AddOptions(CLI::App& app, AppServerOptions& options) {
    app.add_option("--app", options.app, "The application identifier")->required();
    app.add_option("--interface-versions", options.interface_versions,
                   "The interface versions that the application accepts, separated by | or ,")
        ->capture_default_str();
    app.add_option("--listen", options.listen, "The address to listen on; empty: all addresses")
        ->capture_default_str();
    app.add_option("--port", options.port, "The port to listen on; 0: a free one")
        ->check(InRange(kPortOrFree))
        ->capture_default_str();
    app.add_option("--bus-address", options.bus_address, "The address of the bus")->capture_default_str();
    app.add_option("--bus-port", options.bus_port, "The port of the bus")->required()->check(InRange(kPort));
    app.add_option("--bus-key-file", options.bus_key_file,
                   "The file with the bus key of zebd, created by 'zebctl bus-key'")
        ->type_name("FILE");
    app.add_option("--path", options.path,
                   "The application's folder; the folder Install in it holds the client installer")
        ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
        ->type_name("DIR");
    app.add_option("--info-interval", options.info_interval, "Seconds between announcements; 0: none")
        ->check(InRange({0, kLongestInterval}))
        ->capture_default_str();
    app.add_option("--run-for", options.run_for, "Seconds after which the program ends")
        ->check(InRange({0, kLongestInterval}));
    app.add_flag("--commands", options.commands,
                 "Read commands from standard input: sessions, disconnect ID, quit");
}

}  // namespace

std::optional<AppServerOptions> ParseAppServerOptions(int argc, const char* const* argv, int& exit_code) {
    AppServerOptions options;
    CLI::App app(
        "An application server without an application: registers clients and logs every event as one line.\n"
        "Example: kqappserver --app Demo --bus-port 7701",
        "kqappserver");
    app.footer(ExitCodeTable({{kExitDone, "ended by a signal, --run-for or the command quit"},
                              {kExitFailed, "failed"},
                              {kExitMisused, "invalid command line"}}));
    PrepareCommandLine(app);
    AddOptions(app, options);
    const auto code = ParseCommandLine(app, argc, argv);
    if (!code) return options;
    exit_code = *code;
    return std::nullopt;
}

}  // namespace kq
