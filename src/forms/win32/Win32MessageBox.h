// Message boxes as the system draws them.
#pragma once

#include <string>

#include "forms/DialogHost.h"

namespace kq {

// A modal box without an owner; its loop serves the event loop. A box that cannot be shown, and one that is
// open when `withdrawn` is raised, is Unanswered.
BoxButton ShowWin32MessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                              Signal<>& withdrawn);

}  // namespace kq
