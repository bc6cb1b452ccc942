// The folders of a user by the XDG base directories. What Windows keeps among the user's documents, mainly
// settings, is in the configuration folder here.
#include <array>
#include <cstdlib>
#include <fstream>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Convert.h"
#include "platform/Folders.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/WriteFile.h"

namespace kq {
namespace {

enum Csidl { kPersonal = 5, kDesktopDirectory = 16, kAppData = 26, kLocalAppData = 28 };

std::string WithoutTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// The value of an environment variable that holds an absolute path; relative ones do not count.
std::optional<std::string> PathFrom(const char* variable) {
    const char* const value = std::getenv(variable);
    if (!value || value[0] != '/') return std::nullopt;
    return WithoutTrailingSlash(value);
}

std::optional<std::string> Home() {
    if (auto home = PathFrom("HOME")) return home;
    std::array<char, 16384> buffer;
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return std::nullopt;
    if (!found->pw_dir || found->pw_dir[0] != '/') return std::nullopt;
    return WithoutTrailingSlash(found->pw_dir);
}

std::optional<std::string> BaseFolder(const char* variable, std::string_view below_home) {
    if (auto folder = PathFrom(variable)) return folder;
    auto home = Home();
    if (!home) return std::nullopt;
    return (*home == "/" ? std::string() : *home) + std::string(below_home);
}

// The user may have named the desktop's folder: a line XDG_DESKTOP_DIR="$HOME/..." or "/..." in
// user-dirs.dirs.
std::optional<std::string> Desktop() {
    const auto home = Home();
    if (!home) return std::nullopt;
    if (const auto config = BaseFolder("XDG_CONFIG_HOME", "/.config")) {
        std::ifstream file(*config + "/user-dirs.dirs");
        constexpr std::string_view kKey = "XDG_DESKTOP_DIR=\"";
        for (std::string line; std::getline(file, line);) {
            const std::string_view text = Trim(line);
            if (text.rfind(kKey, 0) != 0 || text.size() == kKey.size() || text.back() != '"') continue;
            const std::string_view value = text.substr(kKey.size(), text.size() - kKey.size() - 1);
            constexpr std::string_view kHome = "$HOME/";
            if (value.rfind(kHome, 0) == 0) {
                return WithoutTrailingSlash(*home + "/" + std::string(value.substr(kHome.size())));
            }
            if (value.rfind('/', 0) == 0) return WithoutTrailingSlash(std::string(value));
        }
    }
    return *home + "/Desktop";
}

bool IsUsable(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

class XdgFolders final : public Folders {
 public:
    std::optional<std::string> SpecialFolder(int csidl) const override {
        switch (csidl) {
            case kPersonal:
            case kAppData:
                return BaseFolder("XDG_CONFIG_HOME", "/.config");
            case kLocalAppData:
                return BaseFolder("XDG_DATA_HOME", "/.local/share");
            case kDesktopDirectory:
                return Desktop();
            default:
                return std::nullopt;
        }
    }

    char Separator() const override { return '/'; }

    bool CreateFolder(const std::string& path) override {
        constexpr mode_t kOwnerOnly = 0700;  // as the base directories ask for
        return IsUsable(path) && ::mkdir(path.c_str(), kOwnerOnly) == 0;
    }

    bool FileExists(const std::string& path) const override {
        struct stat attributes {};
        return IsUsable(path) && ::stat(path.c_str(), &attributes) == 0;
    }

    bool DeleteFile(const std::string& path) override {
        return IsUsable(path) && ::unlink(path.c_str()) == 0;
    }

    bool AppendToFile(const std::string& path, std::string_view text) override {
        return IsUsable(path) && AppendTo(path, text);
    }
};

}  // namespace

std::shared_ptr<Folders> MakeXdgFolders() {
    return std::make_shared<XdgFolders>();
}

}  // namespace kq
