// The version resource of an executable file, as the platform's version interface hands it out.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kq {

// What is needed of one file's version block. Values are looked up by sub-block path, such as
// "\StringFileInfo\040904B0\FileVersion", letters in any case.
class VersionBlock {
 public:
    virtual ~VersionBlock() = default;
    // The bytes of "\VarFileInfo\Translation" (4 bytes an entry: language, code page); empty when missing.
    virtual std::vector<std::uint8_t> Translation() const = 0;
    // The whole text value without its terminator; nothing when the block has no such value.
    virtual std::optional<std::string> Text(const std::string& sub_block) const = 0;
};

class VersionResource {
 public:
    virtual ~VersionResource() = default;
    // Null when the file is missing, is not an executable or has no version resource.
    virtual std::unique_ptr<VersionBlock> Load(const std::string& path) const = 0;
};

}  // namespace kq
