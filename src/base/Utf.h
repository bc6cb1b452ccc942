// UTF-8 checks and conversions. Texts inside the library are UTF-8; UTF-16 appears only at the automation
// boundary and in calls of the Windows port.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kq {

// True for well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool IsValidUtf8(std::string_view text);

// Ill-formed sequences become U+FFFD, one for each maximal ill-formed part.
std::string RepairUtf8(std::string_view text);

// The first `count` characters of a text, never ending inside one; an ill-formed part counts as one
// character.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

// A lone surrogate becomes U+FFFD. Ill-formed UTF-8 likewise.
std::string Utf16ToUtf8(std::u16string_view text);
std::u16string Utf8ToUtf16(std::string_view text);

}  // namespace kq
