#include "tools/Loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace kq {
namespace {

class Socket {
 public:
    explicit Socket(int family) : socket_(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~Socket() {
        if (socket_ >= 0) close(socket_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int Descriptor() const { return socket_; }
    bool ConnectTo(const std::string& port) const {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
        return connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }

 private:
    int socket_;
};

}  // namespace

bool HasIPv6() {
    const Socket socket(AF_INET6);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    return bind(socket.Descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

std::string FreePort() {
    const Socket socket(AF_INET);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket.Descriptor(), generic, size) != 0 ||
        getsockname(socket.Descriptor(), generic, &size) != 0) {
        throw std::runtime_error("no port");
    }
    return std::to_string(ntohs(address.sin_port));
}

bool AwaitListener(const std::string& port) {
    for (int i = 0; i < 3'000; ++i) {
        if (Socket(AF_INET).ConnectTo(port)) return true;
        poll(nullptr, 0, 10);
    }
    return false;
}

void ConnectAndSend(const std::string& port, const std::string& bytes) {
    const Socket socket(AF_INET);
    if (!socket.ConnectTo(port) || send(socket.Descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0)
        throw std::runtime_error("nobody listens on port " + port);
}

}  // namespace kq
