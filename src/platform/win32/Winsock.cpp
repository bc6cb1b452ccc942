// One way from text to sockaddr and back.
#include "platform/win32/Winsock.h"

#include <array>
#include <cstring>

#include "platform/win32/Win32Text.h"

namespace kq {

WinsockSession::WinsockSession() {
    WSADATA unused;
    started_ = WSAStartup(MAKEWORD(2, 2), &unused) == 0;
}

WinsockSession::~WinsockSession() {
    if (started_) WSACleanup();
}

std::string WinsockAddress::Text() const {
    WinsockAddress shown = *this;
    if (Family() == AF_INET6) {
        sockaddr_in6 six{};
        std::memcpy(&six, &storage, sizeof six);
        if (IN6_IS_ADDR_V4MAPPED(&six.sin6_addr)) {
            sockaddr_in four{};
            four.sin_family = AF_INET;
            std::memcpy(&four.sin_addr, six.sin6_addr.s6_addr + 12, 4);
            std::memcpy(&shown.storage, &four, sizeof four);
            shown.length = sizeof four;
        }
    }
    std::array<char, NI_MAXHOST> text{};
    const int failed = getnameinfo(shown.Get(), shown.length, text.data(), static_cast<DWORD>(text.size()),
                                   nullptr, 0, NI_NUMERICHOST);
    return failed ? std::string() : std::string(text.data());
}

int WinsockAddress::Port() const {
    if (Family() == AF_INET) return ntohs(reinterpret_cast<const sockaddr_in*>(&storage)->sin_port);
    if (Family() == AF_INET6) return ntohs(reinterpret_cast<const sockaddr_in6*>(&storage)->sin6_port);
    return 0;
}

std::optional<WinsockAddress> ParseAddress(const std::string& text, int port) {
    if (text.empty() || HoldsNul(text) || port < 0 || port > 65535) return std::nullopt;
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(text.c_str(), nullptr, &hints, &found) != 0) return std::nullopt;
    WinsockAddress address = AddressFrom(found->ai_addr, found->ai_addrlen);
    freeaddrinfo(found);
    const auto network_port = htons(static_cast<u_short>(port));
    if (address.Family() == AF_INET)
        reinterpret_cast<sockaddr_in*>(&address.storage)->sin_port = network_port;
    if (address.Family() == AF_INET6)
        reinterpret_cast<sockaddr_in6*>(&address.storage)->sin6_port = network_port;
    return address;
}

WinsockAddress AddressFrom(const sockaddr* address, std::size_t length) {
    WinsockAddress copy;
    if (length > sizeof copy.storage) return copy;
    copy.length = static_cast<int>(length);
    std::memcpy(&copy.storage, address, length);
    return copy;
}

WinsockAddress LocalAddressOf(SOCKET socket) {
    WinsockAddress address;
    address.length = sizeof address.storage;
    if (getsockname(socket, address.Get(), &address.length) != 0) return {};
    return address;
}

WinsockAddress RemoteAddressOf(SOCKET socket) {
    WinsockAddress address;
    address.length = sizeof address.storage;
    if (getpeername(socket, address.Get(), &address.length) != 0) return {};
    return address;
}

SOCKET NewSocket(int family) {
    const SOCKET made = socket(family, SOCK_STREAM, IPPROTO_TCP);
    if (made != INVALID_SOCKET) MakeOurs(made);
    return made;
}

void MakeOurs(SOCKET socket) {
    u_long on = 1;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &on);
    SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
}

// A system that lacks an option leaves a connection that works nevertheless.
void SetOption(SOCKET socket, int level, int option, int value) {
    setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace kq
