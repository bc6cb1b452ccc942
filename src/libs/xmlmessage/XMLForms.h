// Conversion between element trees and their XML.
#pragma once

#include <string_view>

#include <kqappsession/XMLMessage.h>

#include "libs/xmltext/XMLText.h"

namespace kq {

inline constexpr xmltext::Refusal kNoMessage{XMLMessage::kNotAMessage, "KQXMLMessageLib",
                                             "The text is not a message"};

// Appends the node's child elements to `element`. Refuses a text beside children, and names that an
// XMLElement cannot have; attributes with such names are left out.
void ReadChildren(const xmltext::Node& node, XMLElement& element);
XMLElement ReadElement(const xmltext::Node& node);

void WriteElement(xmltext::Writer& writer, const XMLElement& element);
// True when the element reads as its XML and not as its text.
bool IsNested(const XMLElement& element);

}  // namespace kq
