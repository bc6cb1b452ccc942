// kqlogin: logs a user in from a command line, registers with the application server, sends a message. It has
// all that it needs from its options, or asks its user on the terminal.
//
// A signal ends the running step and with it the program; the connections are closed in order on every way
// out.
#include <exception>
#include <iostream>
#include <unistd.h>

#include <kqappsession/EventLoop.h>
#include <kqappsession/KQAppSessClient.h>
#include <kqappsession/TtyPlatform.h>

#include "tools/PasswordInput.h"
#include "tools/StopSignals.h"
#include "tools/kqlogin/ExitCodes.h"
#include "tools/kqlogin/LoginOptions.h"
#include "tools/kqlogin/LoginReport.h"

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

// Until the application server ends the session or the loop is told to quit.
void WaitForTheEnd(EventLoop& loop, KQAppSessClient& client, LoginReport& report) {
    const auto gone = [&client] { return client.LoginState() != kqaslsServerLogin; };
    while (!gone() && !loop.Quitting())
        loop.RunUntil(gone, loop.Now() + std::chrono::hours(1));
    report.WaitEnded(gone());
}

// Up to the registration, if that is wanted. False when the user, who is asked with --tty alone, gave up.
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

int Run(const LoginOptions& options, StopSignals& signals) {
    if (options.tty && isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) == 0) {
        std::cerr << "kqlogin: --tty asks on standard error, which is not the terminal\n";
        return static_cast<int>(ExitCode::Usage);
    }
    Secret password;
    if (!options.tty) {
        password = ReadPassword(STDIN_FILENO, STDERR_FILENO, "Password: ", signals.Descriptor());
    }
    const PlatformPtr platform = options.tty ? MakeTtyPlatform() : MakePlatform();
    EventLoop& loop = *platform->loop;
    signals.Watch(loop, [&loop] { loop.Quit(); });
    KQAppSessClient client(platform);
    LoginReport report(std::cout, std::cerr, options.json);
    ExitCode code = ExitCode::Ok;
    try {
        if (LogIn(loop, client, options, std::move(password), report)) return static_cast<int>(code);
        code = ExitCode::GivenUp;
    } catch (const Error& error) {
        report.Failed(client, error);
        code = ExitCodeOf(error);
    }
    if (signals.Received() != 0) return static_cast<int>(ExitCode::Signal) + signals.Received();
    if (code == ExitCode::GivenUp) report.GivenUp(client);
    return static_cast<int>(code);
}

}  // namespace
}  // namespace kq

int main(int argc, char** argv) {
    int exit_code = 0;
    try {
        const auto options = kq::ParseLoginOptions(argc, argv, exit_code);
        if (!options) return exit_code;
        kq::StopSignals signals;
        try {
            return kq::Run(*options, signals);
        } catch (const kq::PasswordInterrupted&) {
            return static_cast<int>(kq::ExitCode::Signal) + signals.Received();
        } catch (const kq::PasswordError& error) {
            std::cerr << "kqlogin: " << error.what() << '\n';
            return static_cast<int>(kq::ExitCode::Usage);
        }
    } catch (const std::exception& error) {
        std::cerr << "kqlogin: " << error.what() << '\n';
        return static_cast<int>(kq::ExitCode::Other);
    }
}
