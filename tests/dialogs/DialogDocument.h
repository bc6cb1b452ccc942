// docs/dialogs.md as the forms' rows make it.
#pragma once

#include <string>

namespace kq {

std::string DialogDocument();

}  // namespace kq
