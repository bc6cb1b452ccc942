// One settings file in the private-profile format, located below one of the user's folders.
//
// There is no open handle and no cache: every read and write is one call of the platform.
#pragma once

#include <string>

#include <kqappsession/Platform.h>

namespace kq {

class IniFile {
 public:
    // The folder argument of SetLocation is a complete path.
    static constexpr int kNoSpecialFolder = 255;
    // A value is read through a buffer of this many characters, the last one for the terminator.
    static constexpr std::size_t kBufferSize = 1024;

    explicit IniFile(PlatformPtr platform) : platform_(std::move(platform)) {}

    // Sets the file's path and creates the folders on it. With a special folder and an empty
    // `custom_or_partial_folder` the path is unchanged before the file name is appended.
    void SetLocation(int folder_type, const std::string& custom_or_partial_folder,
                     const std::string& file_name);
    const std::string& Path() const { return path_; }

    // The value of a key; `default_value` when the key is missing or its value is empty. An empty section is
    // "Default". Never raises.
    std::string Value(const std::string& prop_name, const std::string& section,
                      const std::string& default_value) const;
    // `default_value` is ignored. A failed write raises nothing; see Kept.
    void SetValue(const std::string& prop_name, const std::string& section, const std::string& default_value,
                  const std::string& value);
    // Whether the last SetValue reached the file.
    bool Kept() const { return kept_; }

 private:
    void CreateFolders() const;

    PlatformPtr platform_;
    std::string path_;
    bool kept_ = true;
};

}  // namespace kq
