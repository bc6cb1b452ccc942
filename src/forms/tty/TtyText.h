// Texts as a terminal may show them. Any text may come from a server.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kq {

// Nothing that could steer the terminal, or turn the direction of reading, is left: "?" stands for each such
// character, a blank for a tab, U+FFFD for what is no UTF-8. Line ends stay.
std::string Harmless(std::string_view text);
// The same with a blank for each line end.
std::string HarmlessLine(std::string_view text);
std::string WithoutColon(std::string_view text);
// Whether a user may have meant it as the text of a box: UTF-8 without control characters.
bool IsPlainLine(std::string_view text);

// Lines of at most `width` characters (0: any number), broken at blanks; those that begin within a paragraph
// are indented. A word that is longer than a line is left to the terminal.
std::string Wrapped(std::string_view text, std::size_t width, std::size_t indent = 0);

}  // namespace kq
