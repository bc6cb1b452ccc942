// The folders and files of a user.
#pragma once

#include <optional>
#include <string>
#include <string_view>

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
    // Adds the text to the end of a file and creates the file when it is missing, but no folder. False when
    // the text could not be written or the path names something else than a file; never raises.
    virtual bool AppendToFile(const std::string& path, std::string_view text) = 0;
};

}  // namespace kq
