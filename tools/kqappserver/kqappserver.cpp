// kqappserver: runs a session manager and writes a line for each of its events immediately.
#include <cerrno>
#include <memory>
#include <unistd.h>

#include <kqappsession/EventLoop.h>

#include "tools/kqappserver/AppServer.h"
#include "tools/kqappserver/CommandInput.h"
#include "tools/program/LineWriter.h"
#include "tools/program/Output.h"
#include "tools/program/Program.h"
#include "tools/program/StopSignals.h"

namespace kq {
namespace {

void Serve(const AppServerOptions& options, StopSignals& signals, LineWriter& lines) {
    const PlatformPtr platform = MakePlatform();
    EventLoop& loop = *platform->Loop();
    AppServer server(platform, options, [&lines](const std::string& line) { lines.Write(line); });
    // The first signal stops the server in order; a second one ends the program immediately.
    signals.Watch(loop, [&loop, &server] {
        if (server.Ending()) loop.Quit();
        server.End();
    });
    server.Start();
    // Without its first line nobody knows the port. A reader that is slow gets it later.
    if (const int error = lines.Flush(); error != 0 && error != ETIMEDOUT) throw OutputError(error);
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

int Main(int argc, const char* const* argv) {
    int exit_code = kExitDone;
    const auto options = ParseAppServerOptions(argc, argv, exit_code);
    if (!options) return exit_code;
    StopSignals signals;
    LineWriter lines(STDOUT_FILENO, "kqappserver");
    Serve(*options, signals, lines);
    if (const int error = lines.Close()) throw OutputError(error);
    return kExitDone;
}

}  // namespace
}  // namespace kq

int main(int argc, char** argv) {
    return kq::RunProgram("kqappserver", kq::kExitFailed, [&] { return kq::Main(argc, argv); });
}
