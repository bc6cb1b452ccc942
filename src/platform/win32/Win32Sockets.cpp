// The calls on sockets, and the network that is made of them.
#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <vector>

#include "platform/net/SocketCalls.h"
#include "platform/net/TcpNetwork.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Winsock.h"

namespace kq {
namespace {

constexpr ULONG kKeepAliveIdle = 60'000;  // milliseconds of silence before the first probe
constexpr ULONG kKeepAliveInterval = 15'000;

int Length(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

std::int32_t ErrorUnless(bool done) {
    return done ? 0 : WSAGetLastError();
}

SocketCalls::Moved MovedBy(int count) {
    if (count < 0) return {0, WSAGetLastError()};
    return {static_cast<std::size_t>(count), 0};
}

SocketCalls::Opened OpenedAs(SOCKET socket) {
    if (socket == INVALID_SOCKET) return {SocketCalls::kNone, WSAGetLastError()};
    MakeOurs(socket);
    return {socket, 0};
}

SocketCalls::End EndOf(const SocketAddress& address) {
    if (address.length == 0) return {};
    return {TextOf(address), PortOf(address)};
}

class Win32Sockets final : public SocketCalls {
 public:
    std::optional<SocketAddress> Parse(const std::string& text, int port) override {
        return ParseAddress(text, port);
    }

    bool SameFamily(const SocketAddress& one, const SocketAddress& other) override {
        return FamilyOf(one) == FamilyOf(other);
    }

    Opened Open(const SocketAddress& family) override {
        return OpenedAs(socket(FamilyOf(family), SOCK_STREAM, IPPROTO_TCP));
    }

    std::int32_t Bind(Socket socket, const SocketAddress& address) override {
        return ErrorUnless(bind(socket, Raw(address), LengthOf(address)) == 0);
    }

    std::int32_t Connect(Socket socket, const SocketAddress& address) override {
        const std::int32_t error = ErrorUnless(connect(socket, Raw(address), LengthOf(address)) == 0);
        return error == WSAEWOULDBLOCK || error == WSAEINPROGRESS ? 0 : error;
    }

    std::int32_t ConnectError(Socket socket) override {
        int error = 0;
        int length = sizeof error;
        const bool known =
            getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) == 0;
        return known ? error : WSAGetLastError();
    }

    // No other program may take the port over.
    std::int32_t PrepareListener(Socket socket, const SocketAddress& address, bool both_families) override {
        SetOption(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1);
        if (FamilyOf(address) == AF_INET6)
            SetOption(socket, IPPROTO_IPV6, IPV6_V6ONLY, both_families ? 0 : 1);
        return 0;
    }

    std::int32_t Listen(Socket socket) override { return ErrorUnless(listen(socket, SOMAXCONN) == 0); }

    Accepted Accept(Socket listener) override {
        const Opened opened = OpenedAs(accept(listener, nullptr, nullptr));
        return {opened.socket, opened.error, opened.error == 0 ? RemoteEnd(opened.socket) : End()};
    }

    Moved Receive(Socket socket, std::span<std::byte> buffer) override {
        return MovedBy(recv(socket, reinterpret_cast<char*>(buffer.data()), Length(buffer.size()), 0));
    }

    Moved Send(Socket socket, std::span<const std::byte> bytes) override {
        return MovedBy(send(socket, reinterpret_cast<const char*>(bytes.data()), Length(bytes.size()), 0));
    }

    void FinishSending(Socket socket) override { shutdown(socket, SD_SEND); }
    void Close(Socket socket) override { closesocket(socket); }

    End LocalEnd(Socket socket) override { return EndOf(LocalAddressOf(socket)); }
    End RemoteEnd(Socket socket) override { return EndOf(RemoteAddressOf(socket)); }

    void SendWithoutDelay(Socket socket) override { SetOption(socket, IPPROTO_TCP, TCP_NODELAY, 1); }

    void SetKeepAlive(Socket socket, bool on) override {
        tcp_keepalive settings{on ? 1UL : 0UL, kKeepAliveIdle, kKeepAliveInterval};
        DWORD unused = 0;
        if (WSAIoctl(socket, SIO_KEEPALIVE_VALS, &settings, sizeof settings, nullptr, 0, &unused, nullptr,
                     nullptr) != 0)
            SetOption(socket, SOL_SOCKET, SO_KEEPALIVE, on ? 1 : 0);
    }

    std::vector<std::string> OwnAddresses() override;

 private:
    WinsockSession winsock_;
};

std::vector<std::string> Win32Sockets::OwnAddresses() {
    std::vector<std::string> own;
    std::array<char, 256> name{};
    if (gethostname(name.data(), static_cast<int>(name.size()) - 1) != 0) return own;
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* first = nullptr;
    if (getaddrinfo(name.data(), nullptr, &hints, &first) != 0) return own;
    for (const addrinfo* entry = first; entry; entry = entry->ai_next)
        own.push_back(TextOf(AddressFrom(entry->ai_addr, entry->ai_addrlen)));
    freeaddrinfo(first);
    return own;
}

}  // namespace

std::shared_ptr<Network> MakeWin32Network(std::shared_ptr<EventLoop> loop) {
    return MakeTcpNetwork(std::make_shared<Win32Sockets>(), std::move(loop));
}

}  // namespace kq
