// zebd: the login server as a program.
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <map>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <kqappsession/Error.h>
#include <kqappsession/Platform.h>

#include "zeb/Config.h"
#include "zeb/Host.h"
#include "zeb/Signals.h"

namespace {

using namespace kq;
using namespace kq::zeb;

enum Exit { kStopped = 0, kFailed = 1, kMisused = 2 };

constexpr const char* kAbout =
    "The login server. It answers logins and registrations for the users in its database and carries the "
    "bus.\n"
    "When it is ready it writes two lines to standard output:\n"
    "  zebd: listening on ADDRESS:PORT\n"
    "  zebd: bus on ADDRESS:PORT\n"
    "Its log goes to standard error.";

constexpr const char* kFooter =
    "Every setting can also stand in the configuration file (underlines for hyphens) or in the environment\n"
    "(ZEBD_DATA, ZEBD_PORT and so on; ZEBD_CONFIG names the file). The command line wins over the "
    "environment,\n"
    "the environment over the file.\n"
    "SIGTERM and SIGINT stop the server. Exit codes: 0 stopped, 1 failed, 2 wrong command line or "
    "configuration.";

Config ReadConfig(std::string file, const std::map<std::string, std::string>& flags) {
    Config config;
    const char* variable = std::getenv(kFileVariable.data());
    if (file.empty() && variable) file = variable;
    if (!file.empty()) ApplyFile(file, config);
    ApplyEnvironment(environ, config);
    ApplyFlags(flags, config);
    if (config.data.empty())
        throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebd",
                    "--data: the folder with the database is missing");
    return config;
}

int Serve(const Config& config) {
    auto log = spdlog::stderr_color_mt("zebd");
    log->set_level(spdlog::level::from_str(config.log_level));
    SetStrayExceptionHandler([log](const std::exception_ptr& stray) {
        try {
            std::rethrow_exception(stray);
        } catch (const std::exception& error) {
            log->error("An event handler failed: {}", ForLog(error.what()));
        } catch (...) {
            log->error("An event handler failed.");
        }
    });
    std::signal(SIGPIPE, SIG_IGN);
    const auto platform = MakePlatform();
    bool stopping = false;
    const StopSignals signals(platform->loop, [&] { stopping = true; });
    Host host(platform, config, log);
    const auto shown = [](const std::string& address) { return address.empty() ? "0.0.0.0" : address; };
    std::cout << "zebd: listening on " << shown(config.listen) << ":" << host.Port() << "\n"
              << "zebd: bus on " << shown(config.bus_address) << ":" << host.BusPort() << std::endl;
    platform->loop->RunUntil([&] { return stopping; }, EventLoop::TimePoint::max());
    log->info("Stopping");
    host.Stop();
    return kStopped;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(kAbout, "zebd");
    app.footer(kFooter);
    std::string file;
    app.add_option("--config", file, "configuration file (TOML)")->type_name("FILE");
    std::map<std::string, std::string> values;
    std::map<std::string, CLI::Option*> options;
    for (const auto& setting : ConfigSettings()) {
        const std::string name(setting.name);
        options[name] =
            app.add_option(FlagOf(name), values[name], std::string(setting.help))
                ->type_name(std::holds_alternative<Setting::Number>(setting.value) ? "NUMBER" : "TEXT");
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        std::cerr << "zebd: " << error.what() << std::endl;
        return kMisused;
    }
    std::map<std::string, std::string> flags;
    for (const auto& [name, option] : options) {
        if (option->count() > 0) flags[name] = values[name];
    }
    Config config;
    try {
        config = ReadConfig(file, flags);
    } catch (const Error& error) {
        std::cerr << "zebd: " << error.Description() << std::endl;
        return kMisused;
    }
    try {
        return Serve(config);
    } catch (const std::exception& error) {
        std::cerr << "zebd: " << error.what() << std::endl;
        return kFailed;
    }
}
