// Shortcuts as desktop entries: text files that desktops show as programs.
#pragma once

#include <string>

#include "platform/Shortcuts.h"

namespace kq {

// The text of the desktop entry, called `name` on the desktop.
std::string DesktopEntry(const std::string& name, const Shortcut& shortcut);

}  // namespace kq
