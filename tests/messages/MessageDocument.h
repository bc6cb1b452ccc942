// docs/messages.md as the list makes it.
#pragma once

#include <string>

namespace kq {

std::string MessageDocument();

}  // namespace kq
