// Numeric network addresses in their usual spelling.
#pragma once

#include <optional>
#include <string>

namespace kq::zeb {

// The usual spelling of a numeric address, nothing for any other text: "192.0.2.1"; "2001:db8::1" also for
// "2001:DB8:0::1" and in brackets.
std::optional<std::string> NumericAddress(const std::string& text);

}  // namespace kq::zeb
