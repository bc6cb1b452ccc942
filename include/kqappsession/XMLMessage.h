// An AS message: a type, a second header value ("version"), a schema namespace, a destination and a tree of
// elements. The elements of the first level are the message's named fields.
//
// A message is a value: copying one copies everything. The client form is used between client programs and
// servers, the bus form between servers; docs/wire.md shows both with examples. All texts are UTF-8. An
// object belongs to one thread.
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
// names and keys of web data. A message's own data is in its elements.
struct XMLAttribute {
    std::string name;
    std::string value;
    bool operator==(const XMLAttribute&) const = default;
};

// One element: a name, attributes, and either a text or child elements.
class KQ_EXPORT XMLElement {
 public:
    XMLElement() = default;
    // Raises RuntimeError::InvalidProcedureCall if `name` is not a valid name of an XML element, or if XML
    // cannot carry `text`: ill-formed UTF-8, control characters other than tab, line feed and carriage
    // return, U+FFFE and U+FFFF.
    explicit XMLElement(std::string_view name, std::string_view text = {});

    const std::string& Name() const { return name_; }
    const std::string& Text() const { return text_; }
    void SetText(std::string_view text);  // removes the children; errors as above

    // In the order in which they were set.
    const std::vector<XMLAttribute>& Attributes() const { return attributes_; }
    // The attribute's value, empty if there is none.
    std::string Attribute(std::string_view name) const;
    // Sets or replaces an attribute. Raises RuntimeError::InvalidProcedureCall as above, and for more than 64
    // attributes.
    void SetAttribute(std::string_view name, std::string_view value);

    const std::vector<XMLElement>& Children() const { return children_; }
    std::vector<XMLElement>& Children() { return children_; }
    // Appends a child and returns it; removes the text. The reference is valid until the children change
    // again. Raises RuntimeError::InvalidProcedureCall as above, and for a child without a name.
    XMLElement& Add(std::string_view name, std::string_view text = {});
    XMLElement& Add(XMLElement child);

    // The first element at a path of names such as "Orders/Order", null if there is none.
    const XMLElement* Find(std::string_view path) const;
    XMLElement* Find(std::string_view path);
    // The text of the element at `path`, empty if there is none or it has children.
    std::string TextOf(std::string_view path) const;
    // Removes every child of that name. Returns how many there were.
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
    // Limits of a text that is loaded. Exceeding one raises an Error like any other text that is not a
    // message.
    struct Limits {
        std::size_t bytes = 16U << 20;     // of the whole text
        std::size_t depth = 32;            // of nesting, the root included; 256 at most
        std::size_t elements = 1'000'000;  // in the whole text
    };
    // Number of the error raised for a text that is not a message: not well-formed, over a limit, with a
    // DOCTYPE, or with another root element. Its source is "KQXMLMessageLib"; its description names what is
    // wrong and where.
    static constexpr std::int32_t kNotAMessage = static_cast<std::int32_t>(0x80040B01U);

    XMLMessage() = default;
    XMLMessage(std::string_view type, std::string_view version);

    // The header. Setting one raises RuntimeError::InvalidProcedureCall for what XML cannot carry; the type
    // must be a valid name of an XML element.
    const std::string& Type() const { return root_.Name(); }
    void SetType(std::string_view type);
    const std::string& Version() const { return version_; }
    void SetVersion(std::string_view version);
    const std::string& Schema() const { return schema_; }
    void SetSchema(std::string_view schema);
    const BusAddress& Destination() const { return destination_; }
    void SetDestination(BusAddress destination);

    // Named fields. A missing field reads as empty text. A nested element (with children, or with attributes
    // and no text but spaces) reads as the element's XML. Setting a field replaces the first one of that name
    // and removes others of the same name; a new one is appended. Errors as for XMLElement.
    bool HasField(std::string_view name) const;
    std::string Field(std::string_view name) const;
    void SetField(std::string_view name, std::string_view value);
    // A whole element as a field, with the element's name.
    void SetField(XMLElement element);
    // Another message as a field: a nested element with the message's type and version as attributes. The
    // field's text can be loaded by LoadXML. Schema and destination are not carried. Raises
    // RuntimeError::InvalidProcedureCall if `message` has no type.
    void SetMessageField(std::string_view name, const XMLMessage& message);
    // Nested XML as a field, given as text, such as the text form of a profile collection. The element is
    // renamed to the field's name; use the name that its loader expects as root. Raises
    // kNotAMessage if `xml` is not one well-formed element within the default limits.
    void SetXMLField(std::string_view name, std::string_view xml);
    // Removes every field of that name, if there is any.
    void RemoveField(std::string_view name);

    // The element tree. The root's name is the message's type. Attributes of the root are not part of the
    // message.
    const XMLElement& Root() const { return root_; }
    XMLElement& Root() { return root_; }

    // The client form. Loading replaces everything; on an error (kNotAMessage) nothing changes. It also
    // accepts a nested message as a whole text: a root of any name with the attributes "type" and "version".
    //
    // Writing raises RuntimeError::InvalidProcedureCall if the message has no type, its root has a text, an
    // element has no name or has both text and children, or elements are nested more than 256 deep.
    std::string ToXML() const;
    void LoadXML(std::string_view xml) { LoadXML(xml, Limits()); }
    void LoadXML(std::string_view xml, const Limits& limits);
    // The bus form, which also carries schema and destination. Errors as above.
    std::string ToBusXML() const;
    void LoadBusXML(std::string_view xml) { LoadBusXML(xml, Limits()); }
    void LoadBusXML(std::string_view xml, const Limits& limits);

    // The same type, version and elements as a bus message with that schema and without a destination; and
    // back, as a client message without schema and destination.
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
