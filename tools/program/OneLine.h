// Texts of others on the lines that a program writes: in logs, events, reports and error lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kq {

// The text on one line, without anything that a terminal obeys, that is invisible, or that changes the order
// in which its neighbours are shown. Each such character becomes \u and its UTF-16 code in four hexadecimal
// digits, as in JSON; ill-formed UTF-8 becomes U+FFFD. Backslashes stay as they are. A text that is on one
// line already comes back unchanged.
std::string OneLine(std::string_view text);

// The same for a text of any length that a stranger made up: its first 64 characters. One that was cut ends
// with U+2026 (three dots).
std::string ShortLine(std::string_view text);

// "127.0.0.1:7700", "[::1]:7700"
std::string AddressAndPort(std::string_view address, std::int32_t port);

}  // namespace kq
