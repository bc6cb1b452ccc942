// One pass over the text, tag by tag, that checks XML 1.0's syntax without the DOCTYPE.
//
// The tree builder behind it is more lenient: it accepts stray ampersands, text outside the root, duplicate
// attributes and references to forbidden characters. So this pass decides what is accepted.
#include "libs/xmltext/Scan.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "base/Convert.h"
#include "base/Utf.h"

namespace kq::xmltext {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool StartsName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || (c & 0x80) != 0;
}

bool ContinuesName(char c) {
    return StartsName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// An element's name for a description, cut when it is long.
std::string Bracketed(std::string_view name) {
    return '<' + RepairUtf8(name.substr(0, 80)) + '>';
}

class Scanner {
 public:
    Scanner(std::string_view text, const Limits& limits, const Refusal& refusal)
        : text_(text), limits_(limits), refusal_(refusal) {}

    void Run();

 private:
    struct NameAndValue {
        std::string_view name;
        std::string_view value;  // as it stands in the text
    };

    [[noreturn]] void Refuse(std::string_view reason) const { refusal_.Raise(reason, at_); }
    bool More() const { return at_ < text_.size(); }
    bool At(std::string_view token) const { return text_.substr(at_).starts_with(token); }
    bool AtBlank() const { return More() && IsBlank(text_.substr(at_, 1)); }
    bool Take(std::string_view token);
    bool SkipBlanks();
    std::string_view TakeUntil(std::string_view end, std::string_view reason);

    void CheckWhole() const;
    void Declaration();
    void Markup();
    void Comment();
    void CharacterDataSection();
    void Instruction();
    void StartTag();
    void EndTag();
    void CharacterData();
    std::string_view Name();
    void Attributes();
    std::string_view QuotedValue();
    void Reference();
    bool IsReference(std::string_view body) const;

    std::string_view text_;
    Limits limits_;
    const Refusal& refusal_;
    std::size_t at_ = 0;
    std::size_t elements_ = 0;
    std::vector<std::string_view> open_;
    std::vector<NameAndValue> attributes_;  // of the tag that was read last
};

void Scanner::Run() {
    CheckWhole();
    Take(kByteOrderMark);
    if (At("<?xml") && text_.size() > at_ + 5 && IsBlank(text_.substr(at_ + 5, 1))) Declaration();
    while (More()) {
        if (text_[at_] == '<') {
            Markup();
        } else {
            CharacterData();
        }
    }
    if (!open_.empty()) Refuse(Bracketed(open_.back()) + " is not closed");
    if (elements_ == 0) Refuse("there is no element");
}

void Scanner::CheckWhole() const {
    if (text_.size() > limits_.bytes) {
        refusal_.Raise("it is longer than " + std::to_string(limits_.bytes) + " bytes", limits_.bytes);
    }
    if (const auto bad = FindBadCharacter(text_)) {
        refusal_.Raise("it holds " + bad->name, bad->offset);
    }
}

bool Scanner::Take(std::string_view token) {
    if (!At(token)) return false;
    at_ += token.size();
    return true;
}

bool Scanner::SkipBlanks() {
    const auto start = at_;
    while (AtBlank())
        ++at_;
    return at_ != start;
}

// Moves past `end` and returns what stands before it; the refusal is told for where the search began.
std::string_view Scanner::TakeUntil(std::string_view end, std::string_view reason) {
    const auto found = text_.find(end, at_);
    if (found == std::string_view::npos) Refuse(reason);
    const auto taken = text_.substr(at_, found - at_);
    at_ = found + end.size();
    return taken;
}

void Scanner::Declaration() {
    const auto start = at_;
    Take("<?xml");
    Attributes();
    if (!Take("?>")) Refuse("the XML declaration is not closed");
    bool has_version = false;
    for (const auto& [name, value] : attributes_) {
        if (name == "version" && value == "1.0") {
            has_version = true;
        } else if (name == "encoding" && !EqualsIgnoringCase(value, "UTF-8")) {
            refusal_.Raise("its encoding is not UTF-8", start);
        } else if (name != "encoding" && name != "standalone") {
            refusal_.Raise("the XML declaration is not one of XML 1.0", start);
        }
    }
    if (!has_version) refusal_.Raise("the XML declaration has no version", start);
}

void Scanner::Markup() {
    if (At("<!--")) return Comment();
    if (At("<![CDATA[")) return CharacterDataSection();
    if (At("<!DOCTYPE")) Refuse("it has a DOCTYPE");
    if (At("<!")) Refuse("this markup is unknown");
    if (At("<?")) return Instruction();
    if (At("</")) return EndTag();
    StartTag();
}

void Scanner::Comment() {
    Take("<!--");
    TakeUntil("--", "the comment is not closed");
    if (!Take(">")) Refuse("a comment holds \"--\"");
}

void Scanner::CharacterDataSection() {
    if (open_.empty()) Refuse("there is text outside the root element");
    Take("<![CDATA[");
    TakeUntil("]]>", "the CDATA section is not closed");
}

void Scanner::Instruction() {
    Take("<?");
    if (EqualsIgnoringCase(Name(), "xml")) Refuse("the XML declaration is not at the start");
    if (!At("?>") && !AtBlank()) Refuse("the name of a processing instruction is ill-formed");
    TakeUntil("?>", "the processing instruction is not closed");
}

void Scanner::StartTag() {
    const auto start = at_;
    if (open_.empty() && elements_ > 0) Refuse("there is a second root element");
    if (open_.size() >= std::min(limits_.depth, kDeepest)) {
        Refuse("elements are nested deeper than " + std::to_string(std::min(limits_.depth, kDeepest)));
    }
    if (elements_ >= limits_.elements) {
        Refuse("it has more than " + std::to_string(limits_.elements) + " elements");
    }
    Take("<");
    const auto name = Name();
    Attributes();
    ++elements_;
    if (Take("/>")) return;
    if (!Take(">")) refusal_.Raise("the tag is not closed", start);
    open_.push_back(name);
}

void Scanner::EndTag() {
    const auto start = at_;
    Take("</");
    const auto name = Name();
    SkipBlanks();
    if (!Take(">")) refusal_.Raise("the tag is not closed", start);
    if (open_.empty()) refusal_.Raise("an end tag closes no element", start);
    if (name != open_.back()) {
        refusal_.Raise("the end tag does not close " + Bracketed(open_.back()), start);
    }
    open_.pop_back();
}

void Scanner::CharacterData() {
    while (More() && text_[at_] != '<') {
        if (open_.empty() && !AtBlank()) Refuse("there is text outside the root element");
        if (text_[at_] == '&') {
            Reference();
        } else if (At("]]>")) {
            Refuse("a text holds \"]]>\"");
        } else {
            ++at_;
        }
    }
}

std::string_view Scanner::Name() {
    const auto start = at_;
    if (!More() || !StartsName(text_[at_])) Refuse("a name is missing or ill-formed");
    while (More() && ContinuesName(text_[at_]))
        ++at_;
    return text_.substr(start, at_ - start);
}

void Scanner::Attributes() {
    attributes_.clear();
    for (;;) {
        const bool apart = SkipBlanks();
        if (!More() || At(">") || At("/>") || At("?>")) return;
        if (!apart) Refuse("a blank is missing before an attribute");
        if (attributes_.size() >= kMostAttributes) {
            Refuse("an element has more than " + std::to_string(kMostAttributes) + " attributes");
        }
        const auto start = at_;
        const auto name = Name();
        if (std::ranges::find(attributes_, name, &NameAndValue::name) != attributes_.end()) {
            refusal_.Raise("duplicate attribute", start);
        }
        SkipBlanks();
        if (!Take("=")) Refuse("an attribute has no value");
        SkipBlanks();
        attributes_.push_back({name, QuotedValue()});
    }
}

std::string_view Scanner::QuotedValue() {
    if (!At("\"") && !At("'")) Refuse("an attribute's value is not quoted");
    const char quote = text_[at_++];
    const auto start = at_;
    while (More() && text_[at_] != quote) {
        if (text_[at_] == '<') Refuse("an attribute's value holds \"<\"");
        if (text_[at_] == '&') {
            Reference();
        } else {
            ++at_;
        }
    }
    if (!More()) refusal_.Raise("an attribute's value is not closed", start);
    const auto value = text_.substr(start, at_ - start);
    ++at_;
    return value;
}

void Scanner::Reference() {
    const auto end = text_.find(';', at_);
    if (end == std::string_view::npos || !IsReference(text_.substr(at_ + 1, end - at_ - 1))) {
        Refuse("an ampersand starts no known reference");
    }
    at_ = end + 1;
}

bool Scanner::IsReference(std::string_view body) const {
    if (!body.starts_with('#')) {
        return body == "lt" || body == "gt" || body == "amp" || body == "quot" || body == "apos";
    }
    const bool hexadecimal = body.starts_with("#x");
    const auto digits = body.substr(hexadecimal ? 2 : 1);
    std::uint32_t code_point = 0;
    const auto* const last = digits.data() + digits.size();
    const auto [stop, fault] = std::from_chars(digits.data(), last, code_point, hexadecimal ? 16 : 10);
    return fault == std::errc() && stop == last && IsCharacter(code_point);
}

}  // namespace

void Scan(std::string_view text, const Limits& limits, const Refusal& refusal) {
    Scanner(text, limits, refusal).Run();
}

}  // namespace kq::xmltext
