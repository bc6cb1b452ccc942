// The host of a session manager: joins it to the bus, writes a line for each of its events, obeys commands.
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
    // Takes its leave of the bus and disconnects every client; their Disconnected lines are written on the
    // way.
    void Stop();
    // "sessions", "disconnect ID" or "quit"; another line is answered by one that says what there is.
    void Obey(const std::string& command);
    // The program is to end; asked for by the command "quit" or by the caller.
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
