// What is escaped: the control characters of Unicode, and those format characters that act on other
// characters or are invisible. Visible format characters, such as Arabic number signs, are kept.
#include "tools/program/OneLine.h"

#include <algorithm>
#include <array>

#include "base/Utf.h"

namespace kq {
namespace {

constexpr std::size_t kMostCharacters = 64;

struct Range {
    char32_t first;
    char32_t last;
};

constexpr std::array kHidden = {
    Range{0x0, 0x1F},        Range{0x7F, 0x9F},        // controls
    Range{0xAD, 0xAD},                                 // soft hyphen
    Range{0x61C, 0x61C},                               // Arabic letter mark
    Range{0x180E, 0x180E},                             // Mongolian vowel separator
    Range{0x200B, 0x200F},                             // zero width, marks of direction
    Range{0x2028, 0x202E},                             // separators of lines and paragraphs, embeddings
    Range{0x2060, 0x206F},                             // joiners, isolates, shaping
    Range{0xFEFF, 0xFEFF},                             // byte order mark
    Range{0xFFF9, 0xFFFB},                             // annotations
    Range{0x1BCA0, 0x1BCA3}, Range{0x1D173, 0x1D17A},  // shorthand, musical notes
    Range{0xE0000, 0xE0FFF},                           // tags
};

constexpr bool IsPlain(char c) {
    return c >= 0x20 && c < 0x7F;
}

bool IsHidden(char32_t code) {
    return std::any_of(kHidden.begin(), kHidden.end(),
                       [code](const Range& range) { return code >= range.first && code <= range.last; });
}

struct Character {
    char32_t code = 0;
    std::size_t length = 0;
};

// Of a text that is not empty and well-formed.
Character FirstOf(std::string_view text) {
    const auto byte = [text](std::size_t i) -> char32_t { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80) return {byte(0), 1};
    const std::size_t length = byte(0) < 0xE0 ? 2 : byte(0) < 0xF0 ? 3 : 4;
    char32_t code = byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i)
        code = code << 6 | (byte(i) & 0x3F);
    return {code, length};
}

void AppendEscaped(char32_t unit, std::string& line) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    line += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        line += kDigits[unit >> shift & 0xFU];
}

}  // namespace

std::string OneLine(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), IsPlain)) return std::string(text);
    const std::string repaired = RepairUtf8(text);
    std::string line;
    line.reserve(repaired.size());
    for (std::string_view rest = repaired; !rest.empty();) {
        const Character character = FirstOf(rest);
        if (!IsHidden(character.code)) {
            line += rest.substr(0, character.length);
        } else if (character.code < 0x10000) {
            AppendEscaped(character.code, line);
        } else {
            AppendEscaped(0xD800 + ((character.code - 0x10000) >> 10), line);
            AppendEscaped(0xDC00 + (character.code & 0x3FF), line);
        }
        rest.remove_prefix(character.length);
    }
    return line;
}

std::string ShortLine(std::string_view text) {
    const std::string_view beginning = FirstCharacters(text, kMostCharacters);
    return OneLine(beginning) + (beginning.size() < text.size() ? "\u2026" : "");
}

std::string AddressAndPort(std::string_view address, std::int32_t port) {
    const bool brackets = address.find(':') != std::string_view::npos && address.front() != '[';
    std::string text(address);
    if (brackets) text = "[" + text + "]";
    return text + ":" + std::to_string(port);
}

}  // namespace kq
