// Texts for calls of the system and from them. Texts inside the library are UTF-8; the calls use UTF-16 or
// the machine's ANSI code page.
#pragma once

#include <string>
#include <string_view>

namespace kq {

std::wstring ToWide(std::string_view text);
std::string FromWide(std::wstring_view text);

// What the code page lacks becomes its substitute character.
std::string ToAnsi(std::string_view text);
std::string FromAnsi(std::string_view text);

// A text with a NUL inside would be cut short by the system without notice.
inline bool HoldsNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

}  // namespace kq
