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

const sockaddr* Raw(const SocketAddress& address) {
    return reinterpret_cast<const sockaddr*>(address.bytes.data());
}

int LengthOf(const SocketAddress& address) {
    return static_cast<int>(address.length);
}

SocketAddress AddressFrom(const sockaddr* address, std::size_t length) {
    static_assert(sizeof(sockaddr_storage) == sizeof(SocketAddress::bytes));
    SocketAddress copy;
    if (length > copy.bytes.size()) return copy;
    copy.length = static_cast<std::uint32_t>(length);
    std::memcpy(copy.bytes.data(), address, length);
    return copy;
}

int FamilyOf(const SocketAddress& address) {
    return Raw(address)->sa_family;
}

std::string TextOf(const SocketAddress& address) {
    std::array<char, NI_MAXHOST> text{};
    const int failed = getnameinfo(Raw(address), LengthOf(address), text.data(),
                                   static_cast<DWORD>(text.size()), nullptr, 0, NI_NUMERICHOST);
    return failed ? std::string() : std::string(text.data());
}

int PortOf(const SocketAddress& address) {
    const void* const bytes = address.bytes.data();
    if (FamilyOf(address) == AF_INET) return ntohs(static_cast<const sockaddr_in*>(bytes)->sin_port);
    if (FamilyOf(address) == AF_INET6) return ntohs(static_cast<const sockaddr_in6*>(bytes)->sin6_port);
    return 0;
}

std::optional<SocketAddress> ParseAddress(const std::string& text, int port) {
    if (text.empty() || HoldsNul(text) || port < 0 || port > 65535) return std::nullopt;
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(text.c_str(), nullptr, &hints, &found) != 0) return std::nullopt;
    SocketAddress address = AddressFrom(found->ai_addr, found->ai_addrlen);
    freeaddrinfo(found);
    const auto network_port = htons(static_cast<u_short>(port));
    void* const bytes = address.bytes.data();
    if (FamilyOf(address) == AF_INET) static_cast<sockaddr_in*>(bytes)->sin_port = network_port;
    if (FamilyOf(address) == AF_INET6) static_cast<sockaddr_in6*>(bytes)->sin6_port = network_port;
    return address;
}

SocketAddress LocalAddressOf(SOCKET socket) {
    sockaddr_storage storage{};
    int length = sizeof storage;
    auto* const raw = reinterpret_cast<sockaddr*>(&storage);
    return getsockname(socket, raw, &length) == 0 ? AddressFrom(raw, static_cast<std::size_t>(length))
                                                  : SocketAddress();
}

SocketAddress RemoteAddressOf(SOCKET socket) {
    sockaddr_storage storage{};
    int length = sizeof storage;
    auto* const raw = reinterpret_cast<sockaddr*>(&storage);
    return getpeername(socket, raw, &length) == 0 ? AddressFrom(raw, static_cast<std::size_t>(length))
                                                  : SocketAddress();
}

void MakeOurs(SOCKET socket) {
    u_long on = 1;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &on);
    SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
}

bool SetOption(SOCKET socket, int level, int option, int value) {
    return setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof value) == 0;
}

}  // namespace kq
