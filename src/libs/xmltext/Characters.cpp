// What names and texts may contain: XML 1.0's characters, and ASCII names.
#include <algorithm>

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "base/Utf.h"
#include "libs/xmltext/XMLText.h"

namespace kq::xmltext {

namespace {

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsNameCharacter(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
}

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

std::size_t LengthByLeadByte(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xE0) return 2;
    return lead < 0xF0 ? 3 : 4;
}

std::string CodePointName(unsigned code_point) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string name = "U+";
    for (const unsigned shift : {12U, 8U, 4U, 0U})
        name += digits[(code_point >> shift) & 0xFU];
    return name;
}

// The name of what stands at the start of `text`, which is ill-formed there. Surrogates are the likely case:
// a UTF-16 text that was cut in the middle of a pair.
std::string NameOfIllFormed(std::string_view text) {
    if (text.size() >= 3 && Byte(text[0]) == 0xED && Byte(text[1]) >= 0xA0 && Byte(text[1]) < 0xC0 &&
        (Byte(text[2]) & 0xC0) == 0x80) {
        return CodePointName(0xD000U + ((Byte(text[1]) & 0x3FU) << 6) + (Byte(text[2]) & 0x3FU));
    }
    return "an ill-formed UTF-8 sequence";
}

BadCharacter FirstIllFormed(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const auto length = LengthByLeadByte(Byte(text[at]));
        if (!IsValidUtf8(text.substr(at, length))) break;
        at += length;
    }
    return {at, NameOfIllFormed(text.substr(std::min(at, text.size())))};
}

}  // namespace

bool IsName(std::string_view name) {
    if (name.empty() || !(IsLetter(name[0]) || name[0] == '_')) return false;
    if (EqualsIgnoringCase(name.substr(0, 3), "xml")) return false;
    return std::ranges::all_of(name, IsNameCharacter);
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool IsCharacter(std::uint32_t code_point) {
    if (code_point < 0x20) return code_point == '\t' || code_point == '\n' || code_point == '\r';
    if (code_point >= 0xD800 && code_point <= 0xDFFF) return false;
    return code_point != 0xFFFE && code_point != 0xFFFF && code_point <= 0x10FFFF;
}

std::optional<BadCharacter> FindBadCharacter(std::string_view text) {
    if (!IsValidUtf8(text)) return FirstIllFormed(text);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = Byte(text[i]);
        if (byte < 0x20 && !IsCharacter(byte)) return BadCharacter{i, CodePointName(byte)};
        if (byte == 0xEF && Byte(text[i + 1]) == 0xBF && Byte(text[i + 2]) >= 0xBE) {
            return BadCharacter{i, CodePointName(0xFFC0U + (Byte(text[i + 2]) & 0x3FU))};
        }
    }
    return std::nullopt;
}

void CheckName(std::string_view name) {
    if (IsName(name)) return;
    constexpr std::size_t longest_shown = 80;
    auto shown = RepairUtf8(name.substr(0, longest_shown));
    std::ranges::replace_if(
        shown, [](char c) { return Byte(c) < 0x20; }, '?');
    Raise(RuntimeError::InvalidProcedureCall, '"' + shown + "\" cannot name an element or attribute");
}

void CheckText(std::string_view text, std::string_view what) {
    if (const auto bad = FindBadCharacter(text)) {
        Raise(RuntimeError::InvalidProcedureCall, std::string(what) + " holds " + bad->name +
                                                      ", which XML cannot carry (byte " +
                                                      std::to_string(bad->offset) + ")");
    }
}

void Refusal::Raise(std::string_view reason, std::size_t offset) const {
    std::string description(subject);
    description.append(": ").append(reason).append(" (byte ").append(std::to_string(offset)).append(")");
    throw Error(number, std::string(source), std::move(description));
}

}  // namespace kq::xmltext
