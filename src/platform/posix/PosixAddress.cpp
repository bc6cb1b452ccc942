// A table from errno to Winsock numbers, and the conversion between texts and sockaddr.
#include "platform/posix/PosixAddress.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>

namespace kq {
namespace {

struct Pair {
    int posix;
    std::int32_t winsock;
};

constexpr Pair kErrors[] = {
    {EINTR, 10004},           {EBADF, 10038},        {EACCES, 10013},       {EPERM, 10013},
    {EFAULT, 10014},          {EINVAL, 10022},       {EMFILE, 10024},       {ENFILE, 10024},
    {EAGAIN, 10035},          {EINPROGRESS, 10036},  {EALREADY, 10037},     {ENOTSOCK, 10038},
    {EDESTADDRREQ, 10039},    {EMSGSIZE, 10040},     {EPROTOTYPE, 10041},   {ENOPROTOOPT, 10042},
    {EPROTONOSUPPORT, 10043}, {EOPNOTSUPP, 10045},   {EAFNOSUPPORT, 10047}, {EADDRINUSE, 10048},
    {EADDRNOTAVAIL, 10049},   {ENETDOWN, 10050},     {ENETUNREACH, 10051},  {ENETRESET, 10052},
    {ECONNABORTED, 10053},    {ECONNRESET, 10054},   {EPIPE, 10054},        {ENOBUFS, 10055},
    {ENOMEM, 10055},          {EISCONN, 10056},      {ENOTCONN, 10057},     {ESHUTDOWN, 10058},
    {ETIMEDOUT, 10060},       {ECONNREFUSED, 10061}, {EHOSTDOWN, 10064},    {EHOSTUNREACH, 10065},
};

}  // namespace

const sockaddr* Raw(const SocketAddress& address) {
    return reinterpret_cast<const sockaddr*>(address.bytes.data());
}

SocketAddress AddressFrom(const sockaddr* address, socklen_t length) {
    static_assert(sizeof(sockaddr_storage) == sizeof(SocketAddress::bytes));
    SocketAddress copy;
    if (length > copy.bytes.size()) return copy;
    copy.length = length;
    std::memcpy(copy.bytes.data(), address, length);
    return copy;
}

int FamilyOf(const SocketAddress& address) {
    return Raw(address)->sa_family;
}

std::string TextOf(const SocketAddress& address) {
    std::array<char, NI_MAXHOST> text{};
    const int failed =
        getnameinfo(Raw(address), address.length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
    return failed ? std::string() : std::string(text.data());
}

int PortOf(const SocketAddress& address) {
    const void* const bytes = address.bytes.data();
    if (FamilyOf(address) == AF_INET) return ntohs(static_cast<const sockaddr_in*>(bytes)->sin_port);
    if (FamilyOf(address) == AF_INET6) return ntohs(static_cast<const sockaddr_in6*>(bytes)->sin6_port);
    return 0;
}

std::optional<SocketAddress> ParseAddress(const std::string& text, int port) {
    if (text.empty() || text.find('\0') != std::string::npos || port < 0 || port > 65535) return std::nullopt;
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(text.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) return std::nullopt;
    const SocketAddress address = AddressFrom(found->ai_addr, found->ai_addrlen);
    freeaddrinfo(found);
    return address;
}

std::int32_t WinsockNumber(int error) {
    for (const auto& pair : kErrors) {
        if (pair.posix == error) return pair.winsock;
    }
    return 10050;  // the network is down: something below it does not work as it should
}

}  // namespace kq
