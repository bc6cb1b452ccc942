// XML texts of the message and web data libraries: elements, attributes and texts in UTF-8, with limits that
// are checked before anything is built.
//
// A text is checked strictly first (well-formed, no DOCTYPE, within the limits); only then is a tree made of
// it, so a hostile text costs one pass over its bytes. Comments and processing instructions are skipped,
// CDATA is text. White space is kept, also in a text that has nothing else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kq::xmltext {

// Limits of a text.
struct Limits {
    std::size_t bytes = 16U << 20;     // of the whole text
    std::size_t depth = 32;            // levels of elements, the root included
    std::size_t elements = 1'000'000;  // in the whole text
};

// Levels of elements that no limit can exceed, for reading and writing: trees are walked recursively.
inline constexpr std::size_t kDeepest = 256;
// Attributes of one element.
inline constexpr std::size_t kMostAttributes = 64;

// How a library refuses a text: Error{number, source, "<subject>: <reason> (byte <offset>)"}.
struct Refusal {
    std::int32_t number;
    std::string_view source;
    std::string_view subject;  // "The text is not a message"

    [[noreturn]] void Raise(std::string_view reason, std::size_t offset) const;
};

// True for the names that elements and attributes may have here: ASCII letters, digits, "_", "-" and ".", a
// letter or "_" first; names that start with "xml" in any case are reserved by XML.
bool IsName(std::string_view name);
// True for an empty text and one of spaces, tabs and line ends only.
bool IsBlank(std::string_view text);
// True for the code points that XML 1.0 allows.
bool IsCharacter(std::uint32_t code_point);

// The first character of a text that XML cannot carry.
struct BadCharacter {
    std::size_t offset;
    std::string name;  // "U+0001", "U+D800" or "an ill-formed UTF-8 sequence"
};
std::optional<BadCharacter> FindBadCharacter(std::string_view text);

// Both raise RuntimeError::InvalidProcedureCall. `what` says whose name or text it is: "The field Password".
// The description names it and the code point, never the text.
void CheckName(std::string_view name);
void CheckText(std::string_view text, std::string_view what);

// One element of a Document, as a view that is valid as long as the document. Null after the last one.
class Node {
 public:
    Node() = default;
    explicit operator bool() const { return node_ != nullptr; }

    std::string_view Name() const;
    std::optional<std::string_view> Attribute(std::string_view name) const;
    std::vector<std::pair<std::string_view, std::string_view>> Attributes() const;
    // The element's own text in one piece, without that of its children.
    std::string Text() const;
    Node FirstChild() const;
    Node Next() const;           // the next element of the same parent
    std::size_t Offset() const;  // of the element's start tag in the text

 private:
    friend class Document;
    explicit Node(void* node) : node_(node) {}
    void* node_ = nullptr;
};

// A text that was accepted, as a tree.
class Document {
 public:
    // Raises `refusal` for a text that is not well-formed or over a limit.
    Document(std::string_view text, const Limits& limits, const Refusal& refusal);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    Node Root() const;

 private:
    struct Tree;
    std::unique_ptr<Tree> tree_;
};

// Writes one element and its contents: no declaration, no indentation, attributes in the order given, an
// empty element as <a/>. Names and texts must have passed the checks above. Texts and attributes are read
// back exactly, line ends included.
class Writer {
 public:
    Writer& Open(std::string_view name);
    Writer& Attribute(std::string_view name, std::string_view value);  // right after Open
    Writer& Text(std::string_view text);
    Writer& Close();
    // Elements that are open.
    std::size_t Depth() const { return open_.size(); }
    std::string Take() { return std::move(text_); }

 private:
    void EndTag();

    struct Piece {
        std::size_t offset;
        std::size_t size;
    };
    std::string text_;
    std::vector<Piece> open_;  // the names of the open elements, as they are in text_
    bool in_tag_ = false;
};

}  // namespace kq::xmltext
