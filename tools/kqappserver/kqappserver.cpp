// kqappserver: runs a session manager and logs its events, one line each, at once.
#include <exception>
#include <iostream>
#include <memory>
#include <unistd.h>

#include <kqappsession/EventLoop.h>

#include "tools/StopSignals.h"
#include "tools/kqappserver/AppServer.h"
#include "tools/kqappserver/CommandInput.h"

namespace kq {
namespace {

void Run(const AppServerOptions& options, StopSignals& signals) {
    const PlatformPtr platform = MakePlatform();
    EventLoop& loop = *platform->loop;
    AppServer server(platform, options, [](const std::string& line) {
        std::cout << line << '\n' << std::flush;
    });
    // The first signal lets the server take its leave; a second one ends that as well.
    signals.Watch(loop, [&loop, &server] {
        if (server.Ending()) loop.Quit();
        server.End();
    });
    server.Start();
    std::unique_ptr<CommandInput> commands;
    if (options.commands) {
        commands = std::make_unique<CommandInput>(loop, STDIN_FILENO,
                                                  [&server](const std::string& line) { server.Obey(line); });
    }
    if (options.run_for) loop.StartTimer(std::chrono::seconds(*options.run_for), [&server] { server.End(); });
    const auto ending = [&server] { return server.Ending(); };
    while (!ending() && !loop.Quitting())
        loop.RunUntil(ending, loop.Now() + std::chrono::hours(1));
}

}  // namespace
}  // namespace kq

int main(int argc, char** argv) {
    int exit_code = 0;
    try {
        const auto options = kq::ParseAppServerOptions(argc, argv, exit_code);
        if (!options) return exit_code;
        kq::StopSignals signals;
        kq::Run(*options, signals);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "kqappserver: " << error.what() << '\n';
        return 1;
    }
}
