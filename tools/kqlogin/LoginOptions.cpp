// There is no option for the password: other users of the machine can read a command line.
#include "tools/kqlogin/LoginOptions.h"

#include <limits>

#include "tools/kqlogin/ExitCodes.h"
#include "tools/program/CommandLine.h"

namespace kq {
namespace {

// Throws an error for options that contradict each other or need another one.
void CheckTogether(const LoginOptions& options) {
    const auto refuse = [](const char* sentence) { throw CLI::ValidationError(sentence); };
    if (!options.tty && options.user.empty()) refuse("--user is required");
    if (!options.tty && options.address.empty() && !options.settings)
        refuse("--address or --settings is required");
    if (!options.address.empty() && options.settings) refuse("--address and --settings exclude each other");
    if (!options.address.empty() && options.port == 0) refuse("--address needs --port");
    if (options.save_settings && options.settings) refuse("--save-settings needs --address");
    if (options.send && !options.register_session) refuse("--send needs --register");
    if (options.wait && !options.register_session) refuse("--wait needs --register");
}

void AddOptions(CLI::App& app, LoginOptions& options) {
    constexpr auto kLargest = std::numeric_limits<std::int32_t>::max();
    const CLI::Validator filled([](std::string& text) { return std::string(text.empty() ? "is empty" : ""); },
                                "");
    auto* tty = app.add_flag("--tty", options.tty,
                             "Ask on the terminal for login id and password, for the server if the settings "
                             "file has none, and what to do about failures");
    app.add_option("--address", options.address, "The login server's name or address")->excludes(tty);
    app.add_option("--port", options.port, "The login server's port")->check(InRange(kPort))->excludes(tty);
    app.add_option("--time-out", options.time_out, "Milliseconds to wait for a connection or a reply")
        ->check(InRange({1, kLargest}))
        ->capture_default_str()
        ->excludes(tty);
    app.add_flag("--settings", options.settings,
                 "Read address, port and time-out from the settings file (see below)")
        ->excludes(tty);
    app.add_flag("--save-settings", options.save_settings,
                 "Store address, port and time-out in the settings file after the login")
        ->excludes(tty);
    app.add_option("--app", options.app, "The application identifier")->required()->check(filled);
    app.add_option("--interface", options.interface_version,
                   "The interface version that the application needs")
        ->capture_default_str();
    app.add_option("--client-version", options.client_version, "The version of this client");
    app.add_option("--user", options.user, "The login id")->check(filled)->excludes(tty);
    app.add_option("--restrict-ip", options.restrict_ip, "Use only application servers at this address");
    app.add_option("--restrict-port", options.restrict_port, "Use only application servers at this port")
        ->check(InRange(kPort));
    auto* through = app.add_flag_callback(
        "--use-as-server", [&options] { options.use_as_server = true; },
        "Log in through the application server (default: the stored setting)");
    app.add_flag_callback(
           "--no-use-as-server", [&options] { options.use_as_server = false; },
           "Log in with the login server itself")
        ->excludes(through);
    app.add_flag("--register", options.register_session,
                 "Register with the application server after the login");
    app.add_option("--send", options.send, "Send an application message with this text after registering");
    app.add_flag("--wait", options.wait,
                 "Stay connected until the server ends the session or a signal arrives");
    app.add_flag("--json", options.json, "Write the result as one JSON object");
    app.add_flag("--trace", options.trace,
                 "Write a line for each step of the login to standard error: procedure, state, milliseconds, "
                 "outcome; with --json as a JSON object");
}

}  // namespace

std::optional<LoginOptions> ParseLoginOptions(int argc, const char* const* argv, int& exit_code) {
    LoginOptions options;
    CLI::App app(
        "Logs a user in. The password is one line of standard input; on a terminal there is a prompt without "
        "echo. With --tty the user is asked for everything, as in the dialogs of a program with windows. "
        "Questions go to standard error, the result to standard output.\n"
        "Example: kqlogin --address 127.0.0.1 --port 7700 --app Demo --user ann",
        "kqlogin");
    app.footer(
        "Settings file: $XDG_CONFIG_HOME/HLXApps/AppSess_APP.ini, where APP is the\n"
        "application identifier; XDG_CONFIG_HOME defaults to ~/.config\n\n" +
        ExitCodeHelp());
    PrepareCommandLine(app);
    AddOptions(app, options);
    app.final_callback([&options] { CheckTogether(options); });
    const auto code = ParseCommandLine(app, argc, argv);
    if (!code) return options;
    exit_code = *code;
    return std::nullopt;
}

}  // namespace kq
