// zebd: the login server as a program.
#include <cstdlib>
#include <map>
#include <unistd.h>

#include <kqappsession/Error.h>
#include <kqappsession/Platform.h>

#include "tools/program/CommandLine.h"
#include "tools/program/Output.h"
#include "tools/program/Program.h"
#include "tools/program/StopSignals.h"
#include "zeb/Config.h"
#include "zeb/Host.h"
#include "zeb/Log.h"

namespace {

using namespace kq;
using namespace kq::zeb;

constexpr const char* kAbout =
    "The login server. It answers logins and registrations of the users in its database and runs the "
    "message bus. It logs to standard error. When it is ready it writes two lines to standard output:\n"
    "  zebd: listening on ADDRESS:PORT\n"
    "  zebd: bus on ADDRESS:PORT\n"
    "'zebctl init --data DIR' creates the database.\n"
    "Example: zebd --data /var/lib/zebd";

constexpr const char* kFooter =
    "Every setting can also be given in the configuration file (with underscores instead of hyphens) or in "
    "the environment (ZEBD_DATA, ZEBD_PORT and so on; ZEBD_CONFIG names the file). The command line takes "
    "precedence over the environment, the environment over the file.\n"
    "\n"
    "SIGTERM, SIGINT and SIGHUP stop the server.\n"
    "\n";

struct CommandLine {
    std::string file;
    std::map<std::string, std::string> flags;  // by setting
};

// Nothing when the program ends with `exit_code`.
std::optional<CommandLine> ReadCommandLine(int argc, const char* const* argv, int& exit_code) {
    CommandLine result;
    std::map<std::string, std::string> values;
    CLI::App app(kAbout, "zebd");
    app.footer(kFooter + ExitCodeTable({{kExitDone, "stopped"},
                                        {kExitFailed, "failed"},
                                        {kExitMisused, "invalid command line or configuration"}}));
    PrepareCommandLine(app);
    app.add_option("--config", result.file, "configuration file (TOML)")->type_name("FILE");
    for (const auto& setting : ConfigSettings()) {
        const std::string name(setting.name);
        auto* const option = app.add_option(FlagOf(name), values[name], std::string(setting.help));
        option->type_name(TypeOf(setting))->default_str(DefaultOf(setting));
        if (const auto range = RangeOf(setting); !range.empty()) option->check(ShowRange(range));
    }
    if (const auto code = ParseCommandLine(app, argc, argv)) {
        exit_code = *code;
        return std::nullopt;
    }
    for (const auto& [name, value] : values) {
        if (app.count(FlagOf(name)) > 0) result.flags[name] = value;
    }
    return result;
}

Config ReadConfig(const CommandLine& command_line) {
    Config config;
    std::string file = command_line.file;
    const char* variable = std::getenv(kFileVariable.data());
    if (file.empty() && variable) file = variable;
    if (!file.empty()) ApplyFile(file, config);
    ApplyEnvironment(environ, config);
    ApplyFlags(command_line.flags, config);
    if (config.data.empty())
        throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebd",
                    "--data is required (the folder with the database)");
    return config;
}

void LogStrayExceptions(const std::shared_ptr<spdlog::logger>& log) {
    SetStrayExceptionHandler([log](const std::exception_ptr& stray) {
        try {
            std::rethrow_exception(stray);
        } catch (const std::exception& error) {
            log->error("An event handler failed: {}", error.what());
        } catch (...) {
            log->error("An event handler failed.");
        }
    });
}

void Serve(const Config& config, StopSignals& signals, const std::shared_ptr<spdlog::logger>& log) {
    const auto platform = MakePlatform();
    bool stopping = false;
    signals.Watch(*platform->Loop(), [&] { stopping = true; });
    Host host(platform, config, log);
    Print("zebd: listening on " + host.Listening() + "\nzebd: bus on " + host.BusListening() + "\n",
          {.time = std::chrono::seconds(1)});
    platform->Loop()->RunUntil([&] { return stopping; }, EventLoop::TimePoint::max());
    log->info("Stopping");
    host.Stop();
}

int Main(int argc, const char* const* argv) {
    int exit_code = kExitDone;
    const auto command_line = ReadCommandLine(argc, argv, exit_code);
    if (!command_line) return exit_code;
    Config config;
    try {
        config = ReadConfig(*command_line);
    } catch (const Error& error) {
        Complain("zebd", error.Description() + " (see zebd --help)");
        return kExitMisused;
    }
    StopSignals signals;
    const auto lines = std::make_shared<LineWriter>(STDERR_FILENO, "zebd");
    const auto log = MakeLog(lines, config.log_level, StandardErrorShowsColours());
    LogStrayExceptions(log);
    try {
        Serve(config, signals, log);
    } catch (...) {
        lines->Close();
        throw;
    }
    lines->Close();
    return kExitDone;
}

}  // namespace

int main(int argc, char** argv) {
    return RunProgram("zebd", kExitFailed, [&] { return Main(argc, argv); });
}
