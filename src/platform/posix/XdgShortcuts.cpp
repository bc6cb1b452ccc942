// The command line of a desktop entry is escaped three times. Percent signs are doubled; inside the quotation
// marks of an argument, quotation marks and characters with a meaning for a shell are escaped; and
// backslashes and line ends are escaped again, as in every value of the file.
#include "platform/posix/XdgShortcuts.h"

#include <cstdio>
#include <random>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/Folders.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/WriteFile.h"

namespace kq {
namespace {

constexpr int kDesktopDirectory = 16;
constexpr std::string_view kExtension = "desktop";

// Any text as a value of the file.
std::string Escaped(std::string_view value) {
    std::string escaped;
    for (std::size_t i = 0; i < value.size(); ++i) {
        switch (value[i]) {
            case '\\':
                escaped += "\\\\";
                break;
            case '\n':
                escaped += "\\n";
                break;
            case '\r':
                escaped += "\\r";
                break;
            case '\t':
                escaped += "\\t";
                break;
            case ' ':
                escaped += i == 0 ? "\\s" : " ";
                break;
            default:
                escaped += value[i];
        }
    }
    return escaped;
}

// One argument of a command line, always in quotation marks.
std::string Quoted(std::string_view argument) {
    std::string quoted = "\"";
    for (const char character : argument) {
        if (character == '"' || character == '`' || character == '$' || character == '\\') quoted += '\\';
        if (character == '%') quoted += '%';
        quoted += character;
    }
    return quoted + '"';
}

// Blanks separate, quotation marks hold together.
std::vector<std::string> ArgumentsOf(std::string_view line) {
    std::vector<std::string> arguments;
    bool inside = false;
    bool begun = false;
    for (const char character : line) {
        if (character == ' ' && !inside) {
            begun = false;
            continue;
        }
        if (!std::exchange(begun, true)) arguments.emplace_back();
        if (character == '"')
            inside = !inside;
        else
            arguments.back() += character;
    }
    return arguments;
}

std::string TargetOf(const Shortcut& shortcut) {
    if (shortcut.folder.empty()) return shortcut.program;
    return shortcut.folder + (shortcut.folder.back() == '/' ? "" : "/") + shortcut.program;
}

std::string NameOf(const std::string& path) {
    std::string name = path.substr(path.rfind('/') + 1);
    const std::string ending = "." + std::string(kExtension);
    if (name.size() > ending.size() && name.ends_with(ending)) name.resize(name.size() - ending.size());
    return name;
}

class XdgShortcuts final : public Shortcuts {
 public:
    explicit XdgShortcuts(std::shared_ptr<Folders> folders) : folders_(std::move(folders)) {}

    std::optional<std::string> DesktopFolder() const override {
        return folders_->SpecialFolder(kDesktopDirectory);
    }

    std::string Extension() const override { return std::string(kExtension); }

    // Desktops start only entries that are marked as programs.
    bool Create(const std::string& path, const Shortcut& shortcut) override {
        if (path.empty() || path.back() == '/' || shortcut.program.empty()) return false;
        const std::string entry = DesktopEntry(NameOf(path), shortcut);
        if ((path + entry).find('\0') != std::string::npos) return false;
        const std::string draft = path + "." + std::to_string(std::random_device()()) + ".new";
        constexpr mode_t kProgram = 0755;
        if (WriteNewFile(draft, entry, kProgram).error != 0) return false;
        if (::rename(draft.c_str(), path.c_str()) == 0) return true;
        ::unlink(draft.c_str());
        return false;
    }

 private:
    const std::shared_ptr<Folders> folders_;
};

}  // namespace

std::string DesktopEntry(const std::string& name, const Shortcut& shortcut) {
    std::string command = Quoted(TargetOf(shortcut));
    for (const auto& argument : ArgumentsOf(shortcut.arguments))
        command += " " + Quoted(argument);
    std::string entry = "[Desktop Entry]\nType=Application\nTerminal=false\n";
    const auto add = [&entry](std::string_view key, std::string_view value) {
        if (!value.empty()) entry += std::string(key) + "=" + Escaped(value) + "\n";
    };
    add("Name", name);
    add("Comment", shortcut.description);
    add("Path", shortcut.folder);
    add("Exec", command);
    return entry;
}

std::shared_ptr<Shortcuts> MakeXdgShortcuts(std::shared_ptr<Folders> folders) {
    return std::make_shared<XdgShortcuts>(std::move(folders));
}

}  // namespace kq
