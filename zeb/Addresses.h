// Network addresses as they are read and shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kq::zeb {

// "192.0.2.1:7700", "[2001:db8::1]:7700".
std::string AddressAndPort(const std::string& address, std::int32_t port);
// The usual spelling of a numeric address, nothing for any other text: "192.0.2.1"; "2001:db8::1" also for
// "2001:DB8:0::1" and in brackets.
std::optional<std::string> NumericAddress(const std::string& text);

}  // namespace kq::zeb
