// What the sockets of this port share: Winsock's life and addresses.
#pragma once

#include <optional>
#include <string>

#include "platform/net/SocketCalls.h"
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

const sockaddr* Raw(const SocketAddress& address);
int LengthOf(const SocketAddress& address);
SocketAddress AddressFrom(const sockaddr* address, std::size_t length);
int FamilyOf(const SocketAddress& address);
std::string TextOf(const SocketAddress& address);
int PortOf(const SocketAddress& address);

// Nothing when the text is not a numeric address or the port not one.
std::optional<SocketAddress> ParseAddress(const std::string& text, int port);
SocketAddress LocalAddressOf(SOCKET socket);   // of length 0 when it has none
SocketAddress RemoteAddressOf(SOCKET socket);  // as well

// Makes a socket non-blocking and keeps started programs from inheriting it.
void MakeOurs(SOCKET socket);

bool SetOption(SOCKET socket, int level, int option, int value);

}  // namespace kq
