// Files in the user's temporary folder.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kq {

struct FileResult {
    std::int32_t error = 0;   // the system's number; 0: done
    std::string description;  // the system's description, without a full stop
};

class TempFiles {
 public:
    virtual ~TempFiles() = default;
    // Creates an empty file with a new name: the prefix (its first three characters), hexadecimal digits,
    // ".tmp". `path` is its full path.
    virtual FileResult CreateUnique(std::string_view prefix, std::string& path) = 0;
    // Writes a program into a file that must not exist yet and that only its owner can access. After a
    // failure what was written of it is deleted.
    virtual FileResult WriteNewProgram(const std::string& path, std::string_view bytes) = 0;
};

}  // namespace kq
