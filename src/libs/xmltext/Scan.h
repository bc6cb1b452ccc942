// Checks every text before a tree is made of it.
#pragma once

#include <string_view>

#include "libs/xmltext/XMLText.h"

namespace kq::xmltext {

// Raises `refusal` with the offset of the first fault if the text is not well-formed or over a limit. Uses
// memory for the names of the open elements only.
void Scan(std::string_view text, const Limits& limits, const Refusal& refusal);

}  // namespace kq::xmltext
