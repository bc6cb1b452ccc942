// kqlogin: logs a user in from a command line, registers with the application server, sends a message. It
// gets everything from its options, or asks its user on the terminal.
//
// A signal ends the running step and with it the program. The connections are closed in order on every way
// out.
#include <unistd.h>

#include <kqappsession/EventLoop.h>
#include <kqappsession/KQAppSessClient.h>
#include <kqappsession/Signal.h>
#include <kqappsession/TtyPlatform.h>

#include "tools/kqlogin/ExitCodes.h"
#include "tools/kqlogin/LoginOptions.h"
#include "tools/kqlogin/LoginReport.h"
#include "tools/program/Output.h"
#include "tools/program/PasswordInput.h"
#include "tools/program/Program.h"
#include "tools/program/StopSignals.h"

namespace kq {
namespace {

SystemLoginArguments ArgumentsOf(const LoginOptions& options, Secret password) {
    SystemLoginArguments arguments;
    arguments.AppID = options.app;
    arguments.InterfaceVersion = options.interface_version;
    arguments.ClientVersion = options.client_version;
    arguments.LoginID = options.user;
    arguments.Password = std::move(password);
    arguments.Address = options.address;
    arguments.Port = options.port;
    arguments.TimeOut = options.time_out;
    arguments.UseASServerForLogin = options.use_as_server;
    return arguments;
}

void SaveSettings(KQAppSessClient& client, const LoginOptions& options) {
    if (options.use_as_server) {
        client.SetSystemConnectState2(options.address, options.port, options.time_out,
                                      *options.use_as_server);
    } else {
        client.SetSystemConnectState(options.address, options.port, options.time_out);
    }
}

void SendText(KQAppSessClient& client, const std::string& text, LoginReport& report) {
    XMLMessage message("KQAppMessage", "1");
    message.SetField("Text", text);
    client.SessionClient()->Send(message);
    report.Sent(message.Type(), message.ToXML().size());
}

// Until the application server ends the session or the loop is quit.
void WaitForTheEnd(EventLoop& loop, KQAppSessClient& client, LoginReport& report) {
    const auto gone = [&client] { return client.LoginState() != kqaslsServerLogin; };
    while (!gone() && !loop.Quitting())
        loop.RunUntil(gone, loop.Now() + std::chrono::hours(1));
    report.WaitEnded(gone());
}

// Up to the registration, if it is wanted. False when the user, who is asked only with --tty, gave up.
bool Connect(KQAppSessClient& client, const LoginOptions& options, const SystemLoginArguments& arguments,
             LoginReport& report) {
    for (;;) {
        if (!client.SystemLogin2(options.tty, arguments)) return false;
        report.LoggedIn(client);
        if (options.save_settings) SaveSettings(client, options);
        if (!options.register_session) return true;
        if (client.ServerLogin(options.tty)) break;
        // A user who wants another login instead is not logged in any more.
        if (client.LoginState() != kqaslsNotLoggedIn) return false;
    }
    report.Registered(client);
    return true;
}

bool LogIn(EventLoop& loop, KQAppSessClient& client, const LoginOptions& options, Secret password,
           LoginReport& report) {
    client.SetRestrictIP(options.restrict_ip);
    client.SetRestrictPort(options.restrict_port);
    if (!Connect(client, options, ArgumentsOf(options, std::move(password)), report)) return false;
    if (options.send) SendText(client, *options.send, report);
    report.Succeeded(client);
    if (options.wait) WaitForTheEnd(loop, client, report);
    return true;
}

// Runs the login and returns its exit code.
ExitCode Outcome(const LoginOptions& options, StopSignals& signals, LoginReport& report, Secret password) {
    const PlatformPtr platform = options.tty ? MakeTtyPlatform() : MakePlatform();
    EventLoop& loop = *platform->Loop();
    signals.Watch(loop, [&loop] { loop.Quit(); });
    KQAppSessClient client(platform);
    const Owner tracing;
    if (options.trace)
        client.LoginStepDone.Connect(tracing, [&report](const LoginStep& step) { report.Step(step); });
    try {
        if (LogIn(loop, client, options, std::move(password), report)) return ExitCode::Ok;
    } catch (const Error& error) {
        report.Failed(client, error);
        return signals.Received() != 0 ? ExitCode::Signal : ExitCodeOf(error);
    }
    if (signals.Received() != 0) return ExitCode::Signal;
    report.GivenUp(client);
    return ExitCode::GivenUp;
}

int Run(const LoginOptions& options, StopSignals& signals) {
    Secret password;
    if (!options.tty) password = PasswordInput(STDIN_FILENO, STDERR_FILENO).Read("Password: ");
    // An output that nobody reads does not hold up the end.
    const Patience patience{.stop = signals.Descriptor()};
    OutputStream output(STDOUT_FILENO, patience);
    OutputStream errors(STDERR_FILENO, patience);
    LoginReport report(output, errors, options.json);
    const ExitCode code = Outcome(options, signals, report, std::move(password));
    if (code == ExitCode::Ok && output.Error() != 0) throw OutputError(output.Error());
    return static_cast<int>(code) + (code == ExitCode::Signal ? signals.Received() : 0);
}

int Main(int argc, const char* const* argv) {
    int exit_code = 0;
    const auto options = ParseLoginOptions(argc, argv, exit_code);
    if (!options) return exit_code;
    if (options->tty && isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) == 0) {
        Complain("kqlogin", "--tty asks on standard error, which is not the terminal");
        return static_cast<int>(ExitCode::Usage);
    }
    StopSignals signals;
    try {
        return Run(*options, signals);
    } catch (const PasswordInterrupted&) {
        return static_cast<int>(ExitCode::Signal) + signals.Received();
    } catch (const PasswordError& error) {
        Complain("kqlogin", error.what());
        return static_cast<int>(ExitCode::Usage);
    }
}

}  // namespace
}  // namespace kq

int main(int argc, char** argv) {
    return kq::RunProgram("kqlogin", static_cast<int>(kq::ExitCode::Other),
                          [&] { return kq::Main(argc, argv); });
}
