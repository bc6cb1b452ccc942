// Private-profile (INI) files with the platform calls' own meaning: sections and keys in any case, outer
// blanks and one pair of quotation marks around a value dropped, every read and write straight from and to
// the file.
#pragma once

#include <string>

namespace kq {

class ProfileFile {
 public:
    virtual ~ProfileFile() = default;
    // At most size - 1 characters of the key's value; of `default_value`, trailing blanks dropped, when file,
    // section or key is missing.
    virtual std::string Read(const std::string& section, const std::string& key,
                             const std::string& default_value, std::size_t size,
                             const std::string& path) const = 0;
    // False when the file could not be written; the file is then as it was.
    virtual bool Write(const std::string& section, const std::string& key, const std::string& value,
                       const std::string& path) = 0;
};

}  // namespace kq
