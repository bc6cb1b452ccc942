// Files that start a program with arguments, as the desktop shows them.
#pragma once

#include <optional>
#include <string>

namespace kq {

struct Shortcut {
    std::string folder;     // where the program is; it is started there
    std::string program;    // its file name in that folder
    std::string arguments;  // one line, separated by spaces; quotation marks keep parts together
    std::string description;
};

class Shortcuts {
 public:
    virtual ~Shortcuts() = default;
    // The user's desktop; nothing if there is not one.
    virtual std::optional<std::string> DesktopFolder() const = 0;
    // How the file of a shortcut ends, without the point: "lnk".
    virtual std::string Extension() const = 0;
    // Creates or replaces the file. False when that is not possible; the file is then unchanged.
    virtual bool Create(const std::string& path, const Shortcut& shortcut) = 0;
};

}  // namespace kq
