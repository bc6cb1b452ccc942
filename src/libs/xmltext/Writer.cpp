// Texts are written so that they are read back byte for byte. A reader would turn a carriage return into a
// line feed, so it is written as a reference; so are tabs and line ends in attributes.
#include "libs/xmltext/XMLText.h"

namespace kq::xmltext {

namespace {

std::string_view Escaped(char c, bool in_attribute) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '\r':
            return "&#13;";
        case '"':
            return in_attribute ? "&quot;" : "";
        case '\t':
            return in_attribute ? "&#9;" : "";
        case '\n':
            return in_attribute ? "&#10;" : "";
        default:
            return "";
    }
}

void AppendEscaped(std::string& out, std::string_view text, bool in_attribute) {
    for (const char c : text) {
        if (const auto escaped = Escaped(c, in_attribute); !escaped.empty()) {
            out += escaped;
        } else {
            out += c;
        }
    }
}

}  // namespace

void Writer::EndTag() {
    if (in_tag_) text_ += '>';
    in_tag_ = false;
}

Writer& Writer::Open(std::string_view name) {
    EndTag();
    text_ += '<';
    open_.push_back({text_.size(), name.size()});
    text_ += name;
    in_tag_ = true;
    return *this;
}

Writer& Writer::Attribute(std::string_view name, std::string_view value) {
    text_ += ' ';
    text_ += name;
    text_ += "=\"";
    AppendEscaped(text_, value, true);
    text_ += '"';
    return *this;
}

Writer& Writer::Text(std::string_view text) {
    if (text.empty()) return *this;
    EndTag();
    AppendEscaped(text_, text, false);
    return *this;
}

Writer& Writer::Close() {
    const auto name = open_.back();
    open_.pop_back();
    if (in_tag_) {
        text_ += "/>";
        in_tag_ = false;
        return *this;
    }
    text_ += "</";
    text_.append(text_, name.offset, name.size);
    text_ += '>';
    return *this;
}

}  // namespace kq::xmltext
