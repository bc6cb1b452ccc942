// IPv4 and IPv6 addresses; only the latter contain colons.
#include "zeb/requests/Addresses.h"

#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <sys/socket.h>

namespace kq::zeb {

std::optional<std::string> NumericAddress(const std::string& text) {
    if (text.find('\0') != std::string::npos) return std::nullopt;
    const bool brackets = text.size() > 2 && text.front() == '[' && text.back() == ']';
    const std::string address = brackets ? text.substr(1, text.size() - 2) : text;
    std::array<unsigned char, sizeof(in6_addr)> bytes{};
    std::array<char, INET6_ADDRSTRLEN> usual{};
    for (const int family : {AF_INET, AF_INET6}) {
        if (brackets && family == AF_INET) continue;
        if (inet_pton(family, address.c_str(), bytes.data()) != 1) continue;
        if (inet_ntop(family, bytes.data(), usual.data(), usual.size())) return usual.data();
    }
    return std::nullopt;
}

}  // namespace kq::zeb
