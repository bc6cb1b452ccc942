// Control characters are escaped in all three places where Unicode has them (below a blank, DEL to U+009F,
// the line and paragraph separators): JSON asks for the first only, terminals obey the others.
#include "tools/JsonText.h"

#include "base/Utf.h"

namespace kq {
namespace {

std::string Escape(unsigned code) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        text += kDigits[(code >> shift) & 0xFU];
    return text;
}

// The control character that well-formed UTF-8 starts with, and its length; length 0 when it starts with
// another.
struct Control {
    unsigned code = 0;
    std::size_t length = 0;
};

Control ControlAt(std::string_view text) {
    const auto byte = [&](std::size_t i) -> unsigned {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    if (byte(0) < 0x20 || byte(0) == 0x7F) return {byte(0), 1};
    if (byte(0) == 0xC2 && byte(1) < 0xA0) return {byte(1), 2};
    if (byte(0) == 0xE2 && byte(1) == 0x80 && (byte(2) == 0xA8 || byte(2) == 0xA9)) {
        return {0x2000U + (byte(2) & 0x3FU), 3};
    }
    return {};
}

std::string Escaped(std::string_view text, bool marks) {
    const std::string repaired = RepairUtf8(text);
    std::string result;
    for (std::string_view rest = repaired; !rest.empty();) {
        const Control control = ControlAt(rest);
        if (control.length > 0) {
            result += Escape(control.code);
            rest.remove_prefix(control.length);
            continue;
        }
        if (marks && (rest.front() == '"' || rest.front() == '\\')) result += '\\';
        result += rest.front();
        rest.remove_prefix(1);
    }
    return result;
}

}  // namespace

std::string JsonString(std::string_view text) {
    return '"' + Escaped(text, true) + '"';
}

std::string OneLine(std::string_view text) {
    return Escaped(text, false);
}

JsonObject& JsonObject::Add(std::string_view name, std::string_view value) {
    return AddValue(name, JsonString(value));
}

JsonObject& JsonObject::Add(std::string_view name, std::int64_t value) {
    return AddValue(name, std::to_string(value));
}

JsonObject& JsonObject::Add(std::string_view name, const std::vector<std::string>& values) {
    std::string list;
    for (const auto& value : values)
        list += (list.empty() ? "" : ",") + JsonString(value);
    return AddValue(name, "[" + list + "]");
}

JsonObject& JsonObject::Add(std::string_view name, const JsonObject& value) {
    return AddValue(name, value.Text());
}

JsonObject& JsonObject::AddValue(std::string_view name, std::string_view json) {
    if (!members_.empty()) members_ += ',';
    members_ += JsonString(name);
    members_ += ':';
    members_ += json;
    return *this;
}

}  // namespace kq
