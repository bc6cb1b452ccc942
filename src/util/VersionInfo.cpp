// Reads a version block by language and code page.
//
// The offset of a translation entry is (index - 1) / 4, rounded half to even, not times 4: index 1 is the
// first entry, higher ones read at the same position or a few bytes behind it, never at a later entry. Bytes
// outside the table read as 0.
#include "util/VersionInfo.h"

#include <charconv>
#include <limits>

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "platform/Machine.h"
#include "platform/VersionResource.h"

namespace kq {
namespace {

constexpr double kEntrySize = 4;
constexpr int kCodePageOffset = 2;

std::string FourHexDigits(std::int16_t value) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto bits = static_cast<std::uint16_t>(value);
    std::string text;
    for (int shift = 12; shift >= 0; shift -= 4)
        text += kDigits[(bits >> shift) & 0xF];
    return text;
}

std::string NumberText(double value) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15).ptr;
    return std::string(buffer, end);
}

}  // namespace

VersionInfo::VersionInfo(PlatformPtr platform) : platform_(std::move(platform)) {}
VersionInfo::~VersionInfo() = default;

// A file without a version resource changes nothing, so what an earlier file gave stays.
void VersionInfo::Initialize(const std::string& file_path) {
    if (auto block = platform_->Parts().version_resource->Load(file_path)) block_ = std::move(block);
}

const VersionBlock& VersionInfo::Block() const {
    if (!block_) throw Error(-1, "", "Not Inited");
    return *block_;
}

std::int32_t VersionInfo::CodePageCount() const {
    return RoundToLong(static_cast<double>(Block().Translation().size()) / kEntrySize);
}

std::int16_t VersionInfo::Language(std::int32_t code_page_index) const {
    return Word(code_page_index, 0);
}

std::int16_t VersionInfo::CodePage(std::int32_t code_page_index) const {
    return Word(code_page_index, kCodePageOffset);
}

std::int16_t VersionInfo::Word(std::int32_t code_page_index, int offset) const {
    const auto table = Block().Translation();
    if (code_page_index == std::numeric_limits<std::int32_t>::min()) Raise(RuntimeError::Overflow);
    const std::int64_t at = RoundToLong((code_page_index - 1) / kEntrySize + offset);
    const auto byte = [&](std::int64_t i) -> unsigned {
        return i < 0 || i >= static_cast<std::int64_t>(table.size()) ? 0U
                                                                     : table[static_cast<std::size_t>(i)];
    };
    return static_cast<std::int16_t>(byte(at) | byte(at + 1) << 8);
}

std::string VersionInfo::Value(const char* name, std::int32_t code_page_index) const {
    if (Block().Translation().empty()) return {};
    const std::string translation =
        FourHexDigits(Language(code_page_index)) + FourHexDigits(CodePage(code_page_index));
    return Block().Text("\\StringFileInfo\\" + translation + "\\" + name).value_or("");
}

std::string VersionInfo::FileVersion(std::int32_t index) const {
    std::string version = Value("FileVersion", index);
    const auto parts = Split(version, '.');
    if (parts.size() != 3) return version;
    return NumberText(Val(parts[0])) + "." + NumberText(Val(parts[1])) + "." + NumberText(Val(parts[2]));
}

}  // namespace kq
