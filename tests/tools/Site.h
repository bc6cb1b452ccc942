// A whole site on this machine: a login server and an application server as processes on free loopback ports.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/ChildProcess.h"
#include "tools/LoginServer.h"

namespace kq {

// A loopback port that is held without listening on it: who connects is refused. Listening: who connects
// waits for a reply for ever.
class DeadPort {
 public:
    enum class Kind { Refusing, Silent };
    explicit DeadPort(Kind kind);
    ~DeadPort();
    DeadPort(const DeadPort&) = delete;
    DeadPort& operator=(const DeadPort&) = delete;
    std::string Number() const { return std::to_string(port_); }
    // Waits until somebody has connected (Silent).
    void AwaitConnection() const;

 private:
    int socket_ = -1;
    int port_ = 0;
};

class Site {
 public:
    Site();

    ChildProcess& AppServer() { return *app_server_; }
    LoginServer& Zeb() { return zeb_; }
    // Ends the application server as a crash would, and waits for its end.
    void KillAppServer();
    // Another one at the port of the one that was killed.
    void StartAppServerAgain();
    // kqlogin for the user, with the password on standard input and these arguments besides.
    std::unique_ptr<ChildProcess> LogIn(const std::vector<std::string>& arguments,
                                        const std::string& password = LoginServer::kPassword,
                                        const std::string& user = LoginServer::kUser) const;

 private:
    void StartAppServer(const std::string& port);

    LoginServer zeb_;
    std::string app_server_port_;
    std::unique_ptr<ChildProcess> app_server_;
};

// kqlogin with these arguments and this line on standard input, or with none there; its settings stand in
// `folder`.
std::unique_ptr<ChildProcess> RunLogin(const std::string& folder, const std::vector<std::string>& arguments,
                                       const std::optional<std::string>& password = LoginServer::kPassword);

}  // namespace kq
