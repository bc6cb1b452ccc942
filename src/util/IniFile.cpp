// The path of the settings file, and reading and writing its values.
//
// The path is composed from texts alone, and every folder on it is created without checking whether it
// exists. If any step fails, the only effect is that values are not stored.
#include "util/IniFile.h"

#include "platform/Folders.h"
#include "platform/Machine.h"
#include "platform/ProfileFile.h"

namespace kq {
namespace {

std::string SectionOf(const std::string& section) {
    return section.empty() ? "Default" : section;
}

}  // namespace

void IniFile::SetLocation(int folder_type, const std::string& custom_or_partial_folder,
                          const std::string& file_name) {
    const char separator = platform_->Parts().folders->Separator();
    if (folder_type == kNoSpecialFolder) {
        path_ = custom_or_partial_folder;
    } else if (!custom_or_partial_folder.empty()) {
        path_ = platform_->Parts().folders->SpecialFolder(folder_type).value_or("");
        if (custom_or_partial_folder.front() != separator) path_ += separator;
        path_ += custom_or_partial_folder;
    }
    if (path_.empty() || path_.back() != separator) path_ += separator;
    path_ += file_name;
    CreateFolders();
}

// The names tried include a drive such as "C:" and the empty name; the platform refuses them.
void IniFile::CreateFolders() const {
    const char separator = platform_->Parts().folders->Separator();
    for (auto at = path_.find(separator); at != std::string::npos; at = path_.find(separator, at + 1))
        platform_->Parts().folders->CreateFolder(path_.substr(0, at));
}

std::string IniFile::Value(const std::string& prop_name, const std::string& section,
                           const std::string& default_value) const {
    std::string value = platform_->Parts().profile_file->Read(SectionOf(section), prop_name, default_value,
                                                              kBufferSize, path_);
    return value.empty() ? default_value : value;
}

void IniFile::SetValue(const std::string& prop_name, const std::string& section,
                       const std::string& /*default_value*/, const std::string& value) {
    kept_ = platform_->Parts().profile_file->Write(SectionOf(section), prop_name, value, path_);
}

}  // namespace kq
