// The tree, built by pugixml from a text that the scan has accepted.
//
// The builder neither recurses nor frees recursively, so its cost is bounded by the scan's limits alone.
#include <new>

#include <pugixml.hpp>

#include "libs/xmltext/Scan.h"
#include "libs/xmltext/XMLText.h"

namespace kq::xmltext {

namespace {

// Blank texts are kept; the first text of an element is kept in the element itself, which halves the nodes.
constexpr unsigned kParse = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol |
                            pugi::parse_wconv_attribute | pugi::parse_ws_pcdata | pugi::parse_embed_pcdata;

pugi::xml_node Of(void* node) {
    return pugi::xml_node(static_cast<pugi::xml_node_struct*>(node));
}

void* ElementFrom(pugi::xml_node node) {
    while (node && node.type() != pugi::node_element)
        node = node.next_sibling();
    return node.internal_object();
}

}  // namespace

struct Document::Tree {
    pugi::xml_document document;
};

Document::Document(std::string_view text, const Limits& limits, const Refusal& refusal)
    : tree_(std::make_unique<Tree>()) {
    Scan(text, limits, refusal);
    const auto result = tree_->document.load_buffer(text.data(), text.size(), kParse, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
    if (!result) refusal.Raise("it cannot be read", static_cast<std::size_t>(result.offset));
}

Document::~Document() = default;

Node Document::Root() const {
    return Node(ElementFrom(tree_->document.first_child()));
}

std::string_view Node::Name() const {
    return Of(node_).name();
}

std::optional<std::string_view> Node::Attribute(std::string_view name) const {
    for (const auto attribute : Of(node_).attributes()) {
        if (name == attribute.name()) return attribute.value();
    }
    return std::nullopt;
}

std::vector<std::pair<std::string_view, std::string_view>> Node::Attributes() const {
    std::vector<std::pair<std::string_view, std::string_view>> all;
    for (const auto attribute : Of(node_).attributes())
        all.emplace_back(attribute.name(), attribute.value());
    return all;
}

std::string Node::Text() const {
    std::string text = Of(node_).value();
    for (const auto piece : Of(node_).children()) {
        if (piece.type() != pugi::node_element) text += piece.value();
    }
    return text;
}

Node Node::FirstChild() const {
    return Node(ElementFrom(Of(node_).first_child()));
}

Node Node::Next() const {
    return Node(ElementFrom(Of(node_).next_sibling()));
}

// The builder reports the position of the name, which is one past the "<".
std::size_t Node::Offset() const {
    const auto name = Of(node_).offset_debug();
    return name > 0 ? static_cast<std::size_t>(name) - 1 : 0;
}

}  // namespace kq::xmltext
