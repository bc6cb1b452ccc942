// The element tree. Names and texts are checked when they are set, so every tree can be written.
#include <algorithm>

#include <kqappsession/Error.h>
#include <kqappsession/XMLMessage.h>

#include "libs/xmltext/XMLText.h"

namespace kq {

XMLElement::XMLElement(std::string_view name, std::string_view text) {
    xmltext::CheckName(name);
    name_ = name;
    SetText(text);
}

void XMLElement::SetText(std::string_view text) {
    xmltext::CheckText(text, "The element " + name_);
    text_ = std::string(text);  // a copy first: `text` may be a part of this element
    children_.clear();
}

std::string XMLElement::Attribute(std::string_view name) const {
    const auto found = std::ranges::find(attributes_, name, &XMLAttribute::name);
    return found == attributes_.end() ? std::string() : found->value;
}

void XMLElement::SetAttribute(std::string_view name, std::string_view value) {
    xmltext::CheckName(name);
    xmltext::CheckText(value, "The attribute " + std::string(name));
    const auto found = std::ranges::find(attributes_, name, &XMLAttribute::name);
    if (found != attributes_.end()) {
        found->value = std::string(value);
        return;
    }
    if (attributes_.size() >= xmltext::kMostAttributes) {
        Raise(RuntimeError::InvalidProcedureCall, "The element " + name_ + " has too many attributes");
    }
    attributes_.push_back({std::string(name), std::string(value)});
}

XMLElement& XMLElement::Add(std::string_view name, std::string_view text) {
    return Add(XMLElement(name, text));
}

XMLElement& XMLElement::Add(XMLElement child) {
    if (child.name_.empty()) Raise(RuntimeError::InvalidProcedureCall, "An element has no name");
    children_.push_back(std::move(child));
    text_.clear();
    return children_.back();
}

// A path that ends nowhere below the first element of its first name is looked for below the others, too.
const XMLElement* XMLElement::Find(std::string_view path) const {
    const auto slash = path.find('/');
    const auto name = path.substr(0, slash);
    for (const auto& child : children_) {
        if (child.name_ != name || name.empty()) continue;
        if (slash == std::string_view::npos) return &child;
        if (const auto* found = child.Find(path.substr(slash + 1))) return found;
    }
    return nullptr;
}

XMLElement* XMLElement::Find(std::string_view path) {
    return const_cast<XMLElement*>(static_cast<const XMLElement*>(this)->Find(path));
}

std::string XMLElement::TextOf(std::string_view path) const {
    const auto* const found = Find(path);
    return found == nullptr ? std::string() : found->text_;
}

std::size_t XMLElement::Remove(std::string_view name) {
    const std::string removed(name);  // `name` may be the name of a child
    return std::erase_if(children_, [&](const XMLElement& child) { return child.name_ == removed; });
}

}  // namespace kq
