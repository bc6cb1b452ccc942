// kqlogin: logs a user in from a command line, registers with the application server, sends a message.
//
// A signal ends the running step and with it the program; the connections are closed in order on every way
// out.
#include <exception>
#include <iostream>
#include <unistd.h>

#include <kqappsession/EventLoop.h>
#include <kqappsession/KQAppSessClient.h>

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

void LogIn(EventLoop& loop, KQAppSessClient& client, const LoginOptions& options, Secret password,
           LoginReport& report) {
    client.SetRestrictIP(options.restrict_ip);
    client.SetRestrictPort(options.restrict_port);
    client.SystemLogin2(false, ArgumentsOf(options, std::move(password)));
    report.LoggedIn(client);
    if (options.save_settings) SaveSettings(client, options);
    if (options.register_session) {
        client.ServerLogin(false);
        report.Registered(client);
    }
    if (options.send) SendText(client, *options.send, report);
    report.Succeeded(client);
    if (options.wait) WaitForTheEnd(loop, client, report);
}

int Run(const LoginOptions& options, StopSignals& signals) {
    Secret password = ReadPassword(STDIN_FILENO, STDERR_FILENO, "Password: ", signals.Descriptor());
    const PlatformPtr platform = MakePlatform();
    EventLoop& loop = *platform->loop;
    signals.Watch(loop, [&loop] { loop.Quit(); });
    KQAppSessClient client(platform);
    LoginReport report(std::cout, std::cerr, options.json);
    try {
        LogIn(loop, client, options, std::move(password), report);
    } catch (const Error& error) {
        report.Failed(client, error);
        if (signals.Received() != 0) return static_cast<int>(ExitCode::Signal) + signals.Received();
        return static_cast<int>(ExitCodeOf(error.Number()));
    }
    return static_cast<int>(ExitCode::Ok);
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
