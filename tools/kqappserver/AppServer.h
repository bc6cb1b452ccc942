// The program around a session manager: joins the bus, writes a line for each event, executes commands.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <kqappsession/KQAppSessServer.h>

#include "tools/kqappserver/AppServerOptions.h"

namespace kq {

class AppServer {
 public:
    using WriteLine = std::function<void(const std::string&)>;

    AppServer(PlatformPtr platform, const AppServerOptions& options, WriteLine write_line);
    ~AppServer();  // Stop
    AppServer(const AppServer&) = delete;
    AppServer& operator=(const AppServer&) = delete;

    // Listens and announces itself. Raises the errors of KQAppSessServer::Listen.
    void Start();
    // Leaves the bus and disconnects every client; their Disconnected lines are written in the meantime.
    void Stop();
    // "sessions", "disconnect ID" or "quit"; any other line is answered by the list of commands.
    void Obey(const std::string& command);
    // Whether the program is to end, by the command "quit" or by End.
    bool Ending() const { return ending_; }
    void End() { ending_ = true; }

 private:
    void ListenToServer();
    void ListenToBus();

    PlatformPtr platform_;
    AppServerOptions options_;
    WriteLine write_line_;
    std::shared_ptr<XMLBusClient> bus_;
    std::shared_ptr<Statistics> statistics_;
    KQAppSessServer server_;
    bool ending_ = false;
    Owner owner_;
};

}  // namespace kq
