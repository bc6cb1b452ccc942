// Texts in a form that a terminal may show. Any text may come from a server.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kq {

// Without characters that could control the terminal or change the reading direction: each is replaced by
// "?", a tab by a space, ill-formed UTF-8 by U+FFFD. Line ends are kept.
std::string Harmless(std::string_view text);
// The same with a space for each line end.
std::string HarmlessLine(std::string_view text);
std::string WithoutColon(std::string_view text);
// Whether a user may have meant it as the text of a box: UTF-8 without control characters.
bool IsPlainLine(std::string_view text);

// Lines of at most `width` characters (0: any number), broken at blanks; those that begin within a paragraph
// are indented. A word that is longer than a line is left to the terminal.
std::string Wrapped(std::string_view text, std::size_t width, std::size_t indent = 0);

}  // namespace kq
