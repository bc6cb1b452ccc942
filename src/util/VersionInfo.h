// The version resource of an executable file: its translation table and its standard values by name.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <kqappsession/Platform.h>

namespace kq {

class VersionBlock;

// Every member but Initialize and Initialized raises an Error with number -1 and description "Not Inited"
// until a file with a version resource was read. A missing value is empty text. Indexes count from 1; the
// index is divided by 4, not multiplied, where the table is read, so callers use 1.
class VersionInfo {
 public:
    explicit VersionInfo(PlatformPtr platform);
    ~VersionInfo();

    void Initialize(const std::string& file_path);
    bool Initialized() const { return block_ != nullptr; }
    std::int32_t CodePageCount() const;
    std::int16_t Language(std::int32_t code_page_index) const;
    std::int16_t CodePage(std::int32_t code_page_index) const;

    std::string ProductName(std::int32_t index) const { return Value("ProductName", index); }
    std::string Comments(std::int32_t index) const { return Value("Comments", index); }
    std::string InternalName(std::int32_t index) const { return Value("InternalName", index); }
    std::string CompanyName(std::int32_t index) const { return Value("CompanyName", index); }
    std::string LegalCopyright(std::int32_t index) const { return Value("LegalCopyright", index); }
    std::string ProductVersion(std::int32_t index) const { return Value("ProductVersion", index); }
    std::string FileDescription(std::int32_t index) const { return Value("FileDescription", index); }
    std::string LegalTrademarks(std::int32_t index) const { return Value("LegalTrademarks", index); }
    std::string PrivateBuild(std::int32_t index) const { return Value("PrivateBuild", index); }
    // A version of exactly three parts is rebuilt from their numeric values: 5.02.3 becomes 5.2.3.
    std::string FileVersion(std::int32_t index) const;
    std::string OriginalFilename(std::int32_t index) const { return Value("OriginalFilename", index); }
    std::string SpecialBuild(std::int32_t index) const { return Value("SpecialBuild", index); }

 private:
    const VersionBlock& Block() const;
    std::int16_t Word(std::int32_t code_page_index, int offset) const;
    std::string Value(const char* name, std::int32_t code_page_index) const;

    PlatformPtr platform_;
    std::unique_ptr<VersionBlock> block_;
};

}  // namespace kq
