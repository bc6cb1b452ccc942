// What the sockets of this port share: Winsock's life, addresses, and making sockets.
#pragma once

#include <optional>
#include <string>

#include "platform/win32/Win32Api.h"

namespace kq {

// Winsock counts its users: it works while anybody holds one of these.
class WinsockSession {
 public:
    WinsockSession();
    WinsockSession(const WinsockSession&) = delete;
    WinsockSession& operator=(const WinsockSession&) = delete;
    ~WinsockSession();
    bool Started() const { return started_; }

 private:
    bool started_;
};

struct WinsockAddress {
    sockaddr_storage storage{};
    int length = 0;

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }
    sockaddr* Get() { return reinterpret_cast<sockaddr*>(&storage); }
    int Family() const { return storage.ss_family; }
    // "192.0.2.1" or "2001:db8::1"; an IPv4 address inside an IPv6 one comes out as IPv4.
    std::string Text() const;
    int Port() const;
};

// Nothing when the text is no numeric address or the port none.
std::optional<WinsockAddress> ParseAddress(const std::string& text, int port);
WinsockAddress AddressFrom(const sockaddr* address, std::size_t length);
WinsockAddress LocalAddressOf(SOCKET socket);
WinsockAddress RemoteAddressOf(SOCKET socket);

// A non-blocking TCP socket that no started program inherits; INVALID_SOCKET with the last error set.
SOCKET NewSocket(int family);
void MakeOurs(SOCKET socket);  // the same for an accepted one

void SetOption(SOCKET socket, int level, int option, int value);

}  // namespace kq
