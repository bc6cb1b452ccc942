// Message boxes as the system draws them.
#pragma once

#include <string>

#include "platform/DialogHost.h"

namespace kq {

// A modal box without an owner; its loop serves the event loop. A box that cannot be shown is answered by the
// button that asks for nothing: Cancel, else No, else OK.
BoxButton ShowWin32MessageBox(const std::string& text, const std::string& caption, BoxStyle style);

}  // namespace kq
