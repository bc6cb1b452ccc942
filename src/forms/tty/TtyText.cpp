#include "forms/tty/TtyText.h"

#include <algorithm>

#include "base/Utf.h"

namespace kq {
namespace {

// The code point that begins here, of well-formed UTF-8, and its length.
char32_t CodePointAt(std::string_view text, std::size_t at, std::size_t& length) {
    const auto first = static_cast<unsigned char>(text[at]);
    length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t point = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i)
        point = (point << 6U) | (static_cast<unsigned char>(text[at + i]) & 0x3FU);
    return point;
}

bool IsControl(char32_t point) {
    return point < 0x20 || (point >= 0x7F && point < 0xA0);
}

// Other line ends, and the marks that reorder what is read.
bool Misleads(char32_t point) {
    return point == 0x2028 || point == 0x2029 || point == 0x061C || point == 0x200E || point == 0x200F ||
           (point >= 0x202A && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
}

std::string Cleaned(std::string_view text, char line_end) {
    const std::string sound = RepairUtf8(text);
    std::string shown;
    std::size_t length = 0;
    for (std::size_t i = 0; i < sound.size(); i += length) {
        const char32_t point = CodePointAt(sound, i, length);
        const bool carriage = point == '\r' && i + 1 < sound.size() && sound[i + 1] == '\n';
        if (carriage) continue;
        if (point == '\n') {
            shown += line_end;
        } else if (point == '\t') {
            shown += ' ';
        } else if (IsControl(point) || Misleads(point)) {
            shown += '?';
        } else {
            shown.append(sound, i, length);
        }
    }
    return shown;
}

std::size_t CharactersOf(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

// One paragraph. Blanks at a break go; all others stay, at the end too.
void Wrap(std::string_view paragraph, std::size_t width, std::size_t indent, std::string& lines) {
    std::size_t column = 0;
    bool begun = false;  // the line has a word
    while (!paragraph.empty()) {
        const std::size_t blanks = std::min(paragraph.find_first_not_of(' '), paragraph.size());
        const std::size_t end = std::min(paragraph.find(' ', blanks), paragraph.size());
        const std::string_view word = paragraph.substr(blanks, end - blanks);
        const std::size_t length = CharactersOf(word);
        if (begun && column + blanks + length > width && !word.empty()) {
            lines += '\n';
            lines.append(indent, ' ').append(word);
            column = indent + length;
        } else {
            lines.append(paragraph.substr(0, end));
            column += blanks + length;
        }
        begun = true;
        paragraph.remove_prefix(end);
    }
}

}  // namespace

std::string Harmless(std::string_view text) {
    return Cleaned(text, '\n');
}

std::string HarmlessLine(std::string_view text) {
    return Cleaned(text, ' ');
}

std::string WithoutColon(std::string_view text) {
    while (text.ends_with(':') || text.ends_with(' '))
        text.remove_suffix(1);
    return std::string(text);
}

bool IsPlainLine(std::string_view text) {
    if (!IsValidUtf8(text)) return false;
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); i += length) {
        if (IsControl(CodePointAt(text, i, length))) return false;
    }
    return true;
}

std::string Wrapped(std::string_view text, std::size_t width, std::size_t indent) {
    if (width <= indent) return std::string(text);
    std::string lines;
    for (;;) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        Wrap(text.substr(0, end), width, indent, lines);
        if (end == text.size()) return lines;
        lines += '\n';
        text.remove_prefix(end + 1);
    }
}

}  // namespace kq
