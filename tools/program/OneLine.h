// Texts of others in the lines that a program writes: logs, events, reports and error lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kq {

// The text on one line, without characters that control a terminal, are invisible, or change the order in
// which other characters are shown. Each of these becomes \u and its UTF-16 code in four hexadecimal digits,
// as in JSON; ill-formed UTF-8 becomes U+FFFD. Backslashes are unchanged. A text that is already on one line
// is returned unchanged.
std::string OneLine(std::string_view text);

// The same for a text of any length from a stranger: its first 64 characters. U+2026 (three dots) marks the
// cut.
std::string ShortLine(std::string_view text);

// "127.0.0.1:7700", "[::1]:7700"
std::string AddressAndPort(std::string_view address, std::int32_t port);

}  // namespace kq
