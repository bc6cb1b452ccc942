// An AS message: a type, a second header value ("version"), a schema namespace, a destination and a tree of
// elements whose first level are the message's named fields.
//
// A message is a value: copying one copies everything. The client form travels between client programs and
// servers, the bus form between servers; docs/wire.md shows both with examples. All texts are UTF-8.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/Export.h>

namespace kq {

// An attribute of an element. Attributes carry what a nested text form needs: a nested message's header, the
// names and keys of web data. What a message says itself stands in elements.
struct XMLAttribute {
    std::string name;
    std::string value;
    bool operator==(const XMLAttribute&) const = default;
};

// One element: a name, attributes, and either a text or child elements (an element that has children has no
// text of its own).
class KQ_EXPORT XMLElement {
 public:
    XMLElement() = default;
    // Raises RuntimeError::InvalidProcedureCall when `name` cannot name an XML element, or `text` holds what
    // XML cannot carry: ill-formed UTF-8, control characters other than tab, line feed and carriage return,
    // U+FFFE and U+FFFF.
    explicit XMLElement(std::string_view name, std::string_view text = {});

    const std::string& Name() const { return name_; }
    const std::string& Text() const { return text_; }
    void SetText(std::string_view text);  // drops the children; errors as above

    // In the order in which they were set.
    const std::vector<XMLAttribute>& Attributes() const { return attributes_; }
    // The attribute's value, empty when there is none.
    std::string Attribute(std::string_view name) const;
    // Sets or replaces an attribute. Errors as above; also with more than 64 attributes.
    void SetAttribute(std::string_view name, std::string_view value);

    const std::vector<XMLElement>& Children() const { return children_; }
    std::vector<XMLElement>& Children() { return children_; }
    // Appends a child and returns it; drops the text. The reference holds until the next change of the
    // children.
    XMLElement& Add(std::string_view name, std::string_view text = {});
    XMLElement& Add(XMLElement child);

    // The first element at a path of names such as "Orders/Order", null when there is none.
    const XMLElement* Find(std::string_view path) const;
    XMLElement* Find(std::string_view path);
    // The text of the element at `path`, empty when there is none or it has children.
    std::string TextOf(std::string_view path) const;
    // Removes every child of that name; returns how many there were.
    std::size_t Remove(std::string_view name);

    bool operator==(const XMLElement&) const = default;

 private:
    std::string name_;
    std::string text_;
    std::vector<XMLAttribute> attributes_;
    std::vector<XMLElement> children_;
};

// Where a bus message goes: a type and a subtype, such as ("AS", "Broadcast"). The component "ZEB" is the
// type "ZEB" with an empty subtype.
struct BusAddress {
    std::string type;
    std::string subtype;
    bool Empty() const { return type.empty() && subtype.empty(); }
    bool operator==(const BusAddress&) const = default;
    auto operator<=>(const BusAddress&) const = default;  // NOLINT(modernize-use-nullptr): it holds none
};

class KQ_EXPORT XMLMessage {
 public:
    // What a text may hold at most before it is refused; a text over a limit raises an Error like any other
    // text that is no message.
    struct Limits {
        std::size_t bytes = 16U << 20;     // of the whole text
        std::size_t depth = 32;            // elements inside one another, the root included; 256 at most
        std::size_t elements = 1'000'000;  // in the whole text
    };
    // Number of the Error that a text raises which is no message: not well-formed, over a limit, with a
    // DOCTYPE, or with another root. Its source is "KQXMLMessageLib", its description names what is wrong and
    // where.
    static constexpr std::int32_t kNotAMessage = static_cast<std::int32_t>(0x80040B01U);

    XMLMessage() = default;
    XMLMessage(std::string_view type, std::string_view version);

    const std::string& Type() const { return root_.Name(); }
    void SetType(std::string_view type);  // errors of XMLElement names
    const std::string& Version() const { return version_; }
    void SetVersion(std::string_view version);
    const std::string& Schema() const { return schema_; }
    void SetSchema(std::string_view schema);
    const BusAddress& Destination() const { return destination_; }
    void SetDestination(BusAddress destination);

    // Named fields. An absent field reads as empty text. A field that is a nested element (it has children,
    // or attributes and no text but blanks) reads as that element's XML. Setting replaces the first field of
    // the name and removes others of the same name, else appends. Errors as XMLElement's.
    bool HasField(std::string_view name) const;
    std::string Field(std::string_view name) const;
    void SetField(std::string_view name, std::string_view value);
    // A whole element as a field, in place of every field of its name.
    void SetField(XMLElement element);
    // Another message as a field: a nested element that carries the message's type and version as attributes,
    // so that the field's text is itself a message's text. Schema and destination are not carried. Raises
    // RuntimeError::InvalidProcedureCall when `message` has no type.
    void SetMessageField(std::string_view name, const XMLMessage& message);
    // A field's nested XML given as text, e.g. the text form of a profile collection. The element takes the
    // field's name, so what a loader with a root of its own is to read again goes under that root's name.
    // Raises kNotAMessage when `xml` is not one well-formed element within the default limits.
    void SetXMLField(std::string_view name, std::string_view xml);
    void RemoveField(std::string_view name);

    // The element tree; the root's name is the message's type. Attributes of the root are not part of the
    // message.
    const XMLElement& Root() const { return root_; }
    XMLElement& Root() { return root_; }

    // The client form. Loading replaces everything; on an error the message is as it was. It also reads a
    // nested message that stands alone: a root of any name with the attributes "type" and "version". Writing
    // raises RuntimeError::InvalidProcedureCall when the message has no type, its root has a text, an element
    // has no name or both text and children, or elements are nested deeper than 256.
    std::string ToXML() const;
    void LoadXML(std::string_view xml) { LoadXML(xml, Limits()); }
    void LoadXML(std::string_view xml, const Limits& limits);
    // The bus form, which also carries schema and destination.
    std::string ToBusXML() const;
    void LoadBusXML(std::string_view xml) { LoadBusXML(xml, Limits()); }
    void LoadBusXML(std::string_view xml, const Limits& limits);

    // The same type, version and elements as a bus message of that schema, without destination; and back, as
    // a client message without schema and destination.
    XMLMessage ToBusMessage(std::string_view schema) const;
    XMLMessage ToClientMessage() const;

    bool operator==(const XMLMessage&) const = default;

 private:
    std::string version_;
    std::string schema_;
    BusAddress destination_;
    XMLElement root_;
};

}  // namespace kq
