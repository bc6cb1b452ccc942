// UTF-8 and UTF-16. One decoder takes a text apart; ill-formed parts come out as U+FFFD, each as long as it
// could still have been the beginning of a character.
#include "base/Utf.h"

#include <cstdint>

namespace kq {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Decoded {
    char32_t character = kReplacement;
    std::size_t length = 1;
    bool valid = false;
};

bool IsBetween(unsigned char byte, unsigned low, unsigned high) {
    return byte >= low && byte <= high;
}

// The character or the maximal ill-formed part at the front of a text that is not empty.
Decoded DecodeFront(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};

    std::size_t length = 0;
    // The second byte's range is what rules out overlong forms, surrogates and characters above U+10FFFF.
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (IsBetween(lead, 0xC2, 0xDF)) {
        length = 2;
    } else if (IsBetween(lead, 0xE0, 0xEF)) {
        length = 3;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (IsBetween(lead, 0xF0, 0xF4)) {
        length = 4;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return {};
    }
    char32_t character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= text.size() || !IsBetween(byte(i), low, high)) return {kReplacement, i, false};
        character = (character << 6) | (byte(i) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {character, length, true};
}

void AppendUtf8(std::string& out, char32_t c) {
    const auto put = [&](char32_t byte) {
        out.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
    };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

}  // namespace

bool IsValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const Decoded decoded = DecodeFront(text);
        if (!decoded.valid) return false;
        text.remove_prefix(decoded.length);
    }
    return true;
}

std::string RepairUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Decoded decoded = DecodeFront(text);
        AppendUtf8(out, decoded.character);
        text.remove_prefix(decoded.length);
    }
    return out;
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; count > 0 && end < text.size(); --count)
        end += DecodeFront(text.substr(end)).length;
    return text.substr(0, end);
}

// Makes room once, so that a secret is in one place only.
std::string Utf16ToUtf8(std::u16string_view text) {
    std::string out;
    std::size_t size = 0;
    for (const char16_t unit : text)
        size += unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
    out.reserve(size);
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c <= 0xDFFF) {
            const bool pair =
                c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
            c = pair ? 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00U) : kReplacement;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::u16string Utf8ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Decoded decoded = DecodeFront(text);
        if (decoded.character < 0x10000) {
            out.push_back(static_cast<char16_t>(decoded.character));
        } else {
            const char32_t rest = decoded.character - 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (rest >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (rest & 0x3FF)));
        }
        text.remove_prefix(decoded.length);
    }
    return out;
}

}  // namespace kq
