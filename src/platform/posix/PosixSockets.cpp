// The calls on sockets, and the network that is made of them.
#include <cerrno>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/net/SocketCalls.h"
#include "platform/net/TcpNetwork.h"
#include "platform/posix/PosixAddress.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

constexpr int kKeepAliveIdle = 60;  // seconds of silence before the first probe
constexpr int kKeepAliveInterval = 15;
constexpr int kKeepAliveProbes = 4;

bool SetOption(int socket, int level, int option, int value) {
    return ::setsockopt(socket, level, option, &value, sizeof value) == 0;
}

std::int32_t LastError() {
    return WinsockNumber(errno);
}

std::int32_t ErrorUnless(bool done) {
    return done ? 0 : LastError();
}

// A call again as long as a signal cuts it short.
template <class Call>
auto Uninterrupted(Call&& call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

SocketCalls::Opened OpenedAs(int socket) {
    return {socket, ErrorUnless(socket != -1)};
}

SocketCalls::Moved MovedBy(ssize_t count) {
    if (count < 0) return {0, LastError()};
    return {static_cast<std::size_t>(count), 0};
}

// What a call that fills in an address has answered, and that address; empty when it has filled in none.
template <class Ask>
std::pair<int, SocketCalls::End> WithEnd(Ask&& ask) {
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    auto* const raw = reinterpret_cast<sockaddr*>(&storage);
    const int answer = ask(raw, &length);
    if (answer == -1) return {answer, {}};
    const SocketAddress address = AddressFrom(raw, length);
    return {answer, {TextOf(address), PortOf(address)}};
}

class PosixSockets final : public SocketCalls {
 public:
    std::optional<SocketAddress> Parse(const std::string& text, int port) override {
        return ParseAddress(text, port);
    }

    bool SameFamily(const SocketAddress& one, const SocketAddress& other) override {
        return FamilyOf(one) == FamilyOf(other);
    }

    Opened Open(const SocketAddress& family) override {
        return OpenedAs(::socket(FamilyOf(family), SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP));
    }

    std::int32_t Bind(Socket socket, const SocketAddress& address) override {
        return ErrorUnless(::bind(socket, Raw(address), address.length) == 0);
    }

    std::int32_t Connect(Socket socket, const SocketAddress& address) override {
        const bool begun =
            ::connect(socket, Raw(address), address.length) == 0 || errno == EINPROGRESS || errno == EINTR;
        return ErrorUnless(begun);
    }

    std::int32_t ConnectError(Socket socket) override {
        int error = 0;
        socklen_t length = sizeof error;
        if (::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length) != 0) return LastError();
        return error == 0 ? 0 : WinsockNumber(error);
    }

    std::int32_t PrepareListener(Socket socket, const SocketAddress&, bool both_families) override {
        SetOption(socket, SOL_SOCKET, SO_REUSEADDR, 1);
        return ErrorUnless(!both_families || SetOption(socket, IPPROTO_IPV6, IPV6_V6ONLY, 0));
    }

    std::int32_t Listen(Socket socket) override { return ErrorUnless(::listen(socket, SOMAXCONN) == 0); }

    Accepted Accept(Socket listener) override {
        auto [socket, remote] = WithEnd([&](sockaddr* address, socklen_t* length) {
            return Uninterrupted([&] {
                *length = sizeof(sockaddr_storage);
                return ::accept4(listener, address, length, SOCK_NONBLOCK | SOCK_CLOEXEC);
            });
        });
        return {socket, ErrorUnless(socket != -1), std::move(remote)};
    }

    Moved Receive(Socket socket, std::span<std::byte> buffer) override {
        return MovedBy(Uninterrupted([&] { return ::recv(socket, buffer.data(), buffer.size(), 0); }));
    }

    Moved Send(Socket socket, std::span<const std::byte> bytes) override {
        return MovedBy(
            Uninterrupted([&] { return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL); }));
    }

    void FinishSending(Socket socket) override { ::shutdown(socket, SHUT_WR); }
    void Close(Socket socket) override { ::close(socket); }

    End LocalEnd(Socket socket) override {
        return WithEnd([&](auto... out) { return ::getsockname(socket, out...); }).second;
    }
    End RemoteEnd(Socket socket) override {
        return WithEnd([&](auto... out) { return ::getpeername(socket, out...); }).second;
    }

    void SendWithoutDelay(Socket socket) override { SetOption(socket, IPPROTO_TCP, TCP_NODELAY, 1); }

    void SetKeepAlive(Socket socket, bool on) override {
        SetOption(socket, SOL_SOCKET, SO_KEEPALIVE, on ? 1 : 0);
        if (!on) return;
        SetOption(socket, IPPROTO_TCP, TCP_KEEPIDLE, kKeepAliveIdle);
        SetOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, kKeepAliveInterval);
        SetOption(socket, IPPROTO_TCP, TCP_KEEPCNT, kKeepAliveProbes);
    }

    std::vector<std::string> OwnAddresses() override;
};

std::vector<std::string> PosixSockets::OwnAddresses() {
    std::vector<std::string> own;
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0) return own;
    for (const ifaddrs* entry = first; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET) continue;
        if ((entry->ifa_flags & IFF_UP) == 0 || (entry->ifa_flags & IFF_LOOPBACK) != 0) continue;
        own.push_back(TextOf(AddressFrom(entry->ifa_addr, sizeof(sockaddr_in))));
    }
    freeifaddrs(first);
    return own;
}

}  // namespace

std::shared_ptr<Network> MakePosixNetwork(std::shared_ptr<EventLoop> loop) {
    return MakeTcpNetwork(std::make_shared<PosixSockets>(), std::move(loop));
}

}  // namespace kq
