#include "tools/Site.h"

#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace kq {

DeadPort::DeadPort(Kind kind) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_, generic, size) != 0 || getsockname(socket_, generic, &size) != 0 ||
        (kind == Kind::Silent && listen(socket_, 8) != 0)) {
        throw std::runtime_error("no port");
    }
    port_ = ntohs(address.sin_port);
}

void DeadPort::AwaitConnection() const {
    pollfd waiting{socket_, POLLIN, 0};
    if (poll(&waiting, 1, 30'000) != 1) throw std::runtime_error("nobody has connected");
}

DeadPort::~DeadPort() {
    close(socket_);
}

Site::Site() : zeb_(KQ_ZEBCTL, KQ_ZEBD) {
    StartAppServer("0");
}

void Site::StartAppServer(const std::string& port) {
    app_server_ = std::make_unique<ChildProcess>(std::vector<std::string>{
        KQ_APPSERVER, "--app", "Demo", "--port", port, "--bus-port", zeb_.BusPort(), "--commands"});
    const std::string line = app_server_->AwaitLine("kqappserver: listening on 127.0.0.1:");
    app_server_port_ = line.substr(line.rfind(':') + 1);
    app_server_->AwaitLine("kqappserver: on the bus");
}

void Site::KillAppServer() {
    app_server_->Signal(SIGKILL);
    app_server_->ExitCode();
}

void Site::StartAppServerAgain() {
    StartAppServer(app_server_port_);
}

std::unique_ptr<ChildProcess> Site::LogIn(const std::vector<std::string>& arguments,
                                          const std::string& password, const std::string& user) const {
    std::vector<std::string> all{"--address", "127.0.0.1", "--port", zeb_.Port(),
                                 "--app",     "Demo",      "--user", user};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return RunLogin(zeb_.Folder(), all, password);
}

std::unique_ptr<ChildProcess> RunLogin(const std::string& folder, const std::vector<std::string>& arguments,
                                       const std::optional<std::string>& password) {
    std::vector<std::string> command{KQ_LOGIN};
    command.insert(command.end(), arguments.begin(), arguments.end());
    auto process = std::make_unique<ChildProcess>(
        command, std::vector<std::string>{"XDG_CONFIG_HOME=" + folder + "/config", "LC_ALL=C"});
    if (password) {
        process->Write(*password + "\n");
    } else {
        process->EndInput();
    }
    return process;
}

}  // namespace kq
