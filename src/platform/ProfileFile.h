// Private-profile (INI) files as the platform's calls treat them: sections and keys are case-insensitive, a
// value is read without outer spaces and without one pair of quotation marks, and every read and write uses
// the file directly.
#pragma once

#include <string>

namespace kq {

class ProfileFile {
 public:
    virtual ~ProfileFile() = default;
    // At most size - 1 characters of the key's value. If file, section or key is missing, of `default_value`
    // without trailing spaces.
    virtual std::string Read(const std::string& section, const std::string& key,
                             const std::string& default_value, std::size_t size,
                             const std::string& path) const = 0;
    // False when the file could not be written; it is then unchanged.
    virtual bool Write(const std::string& section, const std::string& key, const std::string& value,
                       const std::string& path) = 0;
};

}  // namespace kq
