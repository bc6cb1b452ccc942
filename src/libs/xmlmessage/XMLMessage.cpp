// The message value: header, fields, and the client and bus forms of its text.
#include <algorithm>
#include <optional>

#include <kqappsession/Error.h>
#include <kqappsession/XMLMessage.h>

#include "libs/xmlmessage/XMLForms.h"

namespace kq {

namespace {

constexpr std::string_view kClientRoot = "ASMessage";
constexpr std::string_view kBusRoot = "ASBusMessage";

static_assert(XMLMessage::Limits().bytes == xmltext::Limits().bytes);
static_assert(XMLMessage::Limits().depth == xmltext::Limits().depth);
static_assert(XMLMessage::Limits().elements == xmltext::Limits().elements);

xmltext::Limits TextLimits(const XMLMessage::Limits& limits) {
    return {limits.bytes, limits.depth, limits.elements};
}

std::string AttributeOf(const xmltext::Node& node, std::string_view name) {
    return std::string(node.Attribute(name).value_or(std::string_view()));
}

// The root element of a message with the fields of `node`, named for its type.
XMLElement ReadRoot(const xmltext::Node& node) {
    const auto type = AttributeOf(node, "type");
    if (!xmltext::IsName(type)) kNoMessage.Raise("its type is missing or not a name", node.Offset());
    XMLElement root(type);
    ReadChildren(node, root);
    return root;
}

void CheckClientRoot(const xmltext::Node& node) {
    if (node.Name() == kClientRoot) return;
    const bool nested = node.Attribute("type").has_value() && node.Attribute("version").has_value();
    if (node.Name() == kBusRoot || !nested) {
        kNoMessage.Raise("its root element is neither <ASMessage> nor that of a nested message",
                         node.Offset());
    }
}

// Writes the root's tag, left open.
void OpenRoot(xmltext::Writer& writer, std::string_view name, const XMLMessage& message) {
    if (message.Type().empty()) Raise(RuntimeError::InvalidProcedureCall, "The message has no type");
    if (!message.Root().Text().empty()) {
        Raise(RuntimeError::InvalidProcedureCall, "The message has a text beside its fields");
    }
    writer.Open(name).Attribute("type", message.Type()).Attribute("version", message.Version());
}

std::string WriteFields(xmltext::Writer& writer, const XMLMessage& message) {
    for (const auto& field : message.Root().Children())
        WriteElement(writer, field);
    return writer.Close().Take();
}

XMLElement Renamed(std::string_view name, const XMLElement& element) {
    XMLElement renamed(name, element.Text());
    for (const auto& attribute : element.Attributes())
        renamed.SetAttribute(attribute.name, attribute.value);
    renamed.Children() = element.Children();
    return renamed;
}

}  // namespace

XMLMessage::XMLMessage(std::string_view type, std::string_view version) : root_(type) {
    SetVersion(version);
}

void XMLMessage::SetType(std::string_view type) {
    XMLElement renamed(type, root_.Text());
    renamed.Children() = std::move(root_.Children());
    root_ = std::move(renamed);
}

void XMLMessage::SetVersion(std::string_view version) {
    xmltext::CheckText(version, "The message's version");
    version_ = version;
}

void XMLMessage::SetSchema(std::string_view schema) {
    xmltext::CheckText(schema, "The message's schema");
    schema_ = schema;
}

void XMLMessage::SetDestination(BusAddress destination) {
    xmltext::CheckText(destination.type, "The message's destination");
    xmltext::CheckText(destination.subtype, "The message's destination");
    destination_ = std::move(destination);
}

bool XMLMessage::HasField(std::string_view name) const {
    return std::ranges::find(root_.Children(), name, &XMLElement::Name) != root_.Children().end();
}

std::string XMLMessage::Field(std::string_view name) const {
    const auto field = std::ranges::find(root_.Children(), name, &XMLElement::Name);
    if (field == root_.Children().end()) return {};
    if (!IsNested(*field)) return field->Text();
    xmltext::Writer writer;
    WriteElement(writer, *field);
    return writer.Take();
}

void XMLMessage::SetField(std::string_view name, std::string_view value) {
    SetField(XMLElement(name, value));
}

void XMLMessage::SetField(XMLElement element) {
    auto& fields = root_.Children();
    const auto first = std::ranges::find(fields, element.Name(), &XMLElement::Name);
    if (first == fields.end()) {
        root_.Add(std::move(element));
        return;
    }
    std::erase_if(
        fields, [&](const XMLElement& other) { return &other != &*first && other.Name() == element.Name(); });
    *std::ranges::find(fields, element.Name(), &XMLElement::Name) = std::move(element);
}

void XMLMessage::SetMessageField(std::string_view name, const XMLMessage& message) {
    if (message.Type().empty()) Raise(RuntimeError::InvalidProcedureCall, "The message has no type");
    XMLElement field(name, message.root_.Text());
    field.SetAttribute("type", message.Type());
    field.SetAttribute("version", message.Version());
    field.Children() = message.root_.Children();
    SetField(std::move(field));
}

void XMLMessage::SetXMLField(std::string_view name, std::string_view xml) {
    xmltext::CheckName(name);
    const xmltext::Document document(xml, xmltext::Limits(), kNoMessage);
    auto element = Renamed(name, ReadElement(document.Root()));
    // A message may leave its version out only under its own root's name.
    const auto root = document.Root();
    if (root.Name() == kClientRoot && !root.Attribute("version")) element.SetAttribute("version", "");
    SetField(std::move(element));
}

void XMLMessage::RemoveField(std::string_view name) {
    root_.Remove(name);
}

std::string XMLMessage::ToXML() const {
    xmltext::Writer writer;
    OpenRoot(writer, kClientRoot, *this);
    return WriteFields(writer, *this);
}

void XMLMessage::LoadXML(std::string_view xml, const Limits& limits) {
    const xmltext::Document document(xml, TextLimits(limits), kNoMessage);
    const auto node = document.Root();
    CheckClientRoot(node);
    XMLMessage loaded;
    loaded.root_ = ReadRoot(node);
    loaded.version_ = AttributeOf(node, "version");
    *this = std::move(loaded);
}

std::string XMLMessage::ToBusXML() const {
    xmltext::Writer writer;
    OpenRoot(writer, kBusRoot, *this);
    writer.Attribute("schema", schema_);
    if (!destination_.type.empty()) writer.Attribute("to", destination_.type);
    if (!destination_.subtype.empty()) writer.Attribute("subtype", destination_.subtype);
    return WriteFields(writer, *this);
}

void XMLMessage::LoadBusXML(std::string_view xml, const Limits& limits) {
    const xmltext::Document document(xml, TextLimits(limits), kNoMessage);
    const auto node = document.Root();
    if (node.Name() != kBusRoot) kNoMessage.Raise("its root element is not <ASBusMessage>", node.Offset());
    XMLMessage loaded;
    loaded.root_ = ReadRoot(node);
    loaded.version_ = AttributeOf(node, "version");
    loaded.schema_ = AttributeOf(node, "schema");
    loaded.destination_ = {AttributeOf(node, "to"), AttributeOf(node, "subtype")};
    *this = std::move(loaded);
}

XMLMessage XMLMessage::ToBusMessage(std::string_view schema) const {
    XMLMessage message = ToClientMessage();
    message.SetSchema(schema);
    return message;
}

XMLMessage XMLMessage::ToClientMessage() const {
    XMLMessage message;
    message.root_ = root_;
    message.version_ = version_;
    return message;
}

}  // namespace kq
