// Numeric addresses and error numbers between this system and the library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <sys/socket.h>

#include "platform/net/SocketCalls.h"

namespace kq {

const sockaddr* Raw(const SocketAddress& address);
SocketAddress AddressFrom(const sockaddr* address, socklen_t length);
int FamilyOf(const SocketAddress& address);
std::string TextOf(const SocketAddress& address);
int PortOf(const SocketAddress& address);

// Nothing when the text is not a numeric address. A scope ("fe80::1%eth0") is understood.
std::optional<SocketAddress> ParseAddress(const std::string& text, int port);

// Winsock's number for an errno value.
std::int32_t WinsockNumber(int error);

}  // namespace kq
