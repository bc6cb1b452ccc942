// Numeric addresses and error numbers between this system and the library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <sys/socket.h>

namespace kq {

struct PosixAddress {
    sockaddr_storage storage{};
    socklen_t length = 0;

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }
    sockaddr* Get() { return reinterpret_cast<sockaddr*>(&storage); }
    int Family() const { return storage.ss_family; }
    // "192.0.2.1" or "2001:db8::1"; an IPv4 address inside an IPv6 one comes out as IPv4.
    std::string Text() const;
    int Port() const;
};

// Nothing when the text is no numeric address. A scope ("fe80::1%eth0") is understood.
std::optional<PosixAddress> ParseAddress(const std::string& text, int port);

PosixAddress LocalAddressOf(int socket);
PosixAddress RemoteAddressOf(int socket);

// Winsock's number for an errno value.
std::int32_t WinsockNumber(int error);

// A non-blocking TCP socket that no started program inherits; -1 with errno set.
int NewSocket(int family);

}  // namespace kq
