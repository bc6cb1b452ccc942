// Both directions walk the tree recursively; the depth limit of reading and writing bounds the recursion.
#include "libs/xmlmessage/XMLForms.h"

#include <kqappsession/Error.h>

#include "base/Utf.h"

namespace kq {

namespace {

void CheckName(const xmltext::Node& node) {
    if (xmltext::IsName(node.Name())) return;
    kNoMessage.Raise("<" + RepairUtf8(node.Name().substr(0, 80)) + "> cannot be the name of a field",
                     node.Offset());
}

}  // namespace

void ReadChildren(const xmltext::Node& node, XMLElement& element) {
    if (!xmltext::IsBlank(node.Text())) {
        kNoMessage.Raise("<" + std::string(node.Name()) + "> has a text beside its elements", node.Offset());
    }
    for (auto child = node.FirstChild(); child; child = child.Next())
        element.Add(ReadElement(child));
}

XMLElement ReadElement(const xmltext::Node& node) {
    CheckName(node);
    XMLElement element(node.Name());
    for (const auto& [name, value] : node.Attributes()) {
        if (xmltext::IsName(name)) element.SetAttribute(name, value);
    }
    if (node.FirstChild()) {
        ReadChildren(node, element);
    } else {
        element.SetText(node.Text());
    }
    return element;
}

void WriteElement(xmltext::Writer& writer, const XMLElement& element) {
    if (element.Name().empty()) Raise(RuntimeError::InvalidProcedureCall, "An element has no name");
    if (!element.Children().empty() && !element.Text().empty()) {
        Raise(RuntimeError::InvalidProcedureCall,
              "The element " + element.Name() + " has both a text and children");
    }
    if (writer.Depth() >= xmltext::kDeepest) {
        Raise(RuntimeError::InvalidProcedureCall, "The elements are nested too deeply to be written");
    }
    writer.Open(element.Name());
    for (const auto& [name, value] : element.Attributes())
        writer.Attribute(name, value);
    writer.Text(element.Text());
    for (const auto& child : element.Children())
        WriteElement(writer, child);
    writer.Close();
}

// A profile collection without profiles and a nested message without fields have only attributes, and must be
// readable as XML all the same.
bool IsNested(const XMLElement& element) {
    if (!element.Children().empty()) return true;
    return !element.Attributes().empty() && xmltext::IsBlank(element.Text());
}

}  // namespace kq
