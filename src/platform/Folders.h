// The folders and files of a user.
#pragma once

#include <optional>
#include <string>

namespace kq {

class Folders {
 public:
    virtual ~Folders() = default;
    // The folder of a CSIDL number (5: the user's documents; elsewhere the per-user configuration folder),
    // without a trailing separator; nothing when the platform knows no such folder.
    virtual std::optional<std::string> SpecialFolder(int csidl) const = 0;
    virtual char Separator() const = 0;
    // Creates one folder. False when it could not be created or exists already; never raises.
    virtual bool CreateFolder(const std::string& path) = 0;
    // Whether the path names an existing file (its attributes can be read).
    virtual bool FileExists(const std::string& path) const = 0;
    virtual bool DeleteFile(const std::string& path) = 0;
};

}  // namespace kq
