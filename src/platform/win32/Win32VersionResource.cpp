// Version resources by the system's calls. The ANSI calls convert texts inside the block, in a part of it
// that is sized for this, so reading a block also writes to it.
#include <utility>

#include "base/Convert.h"
#include "platform/VersionResource.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

class Win32VersionBlock final : public VersionBlock {
 public:
    explicit Win32VersionBlock(std::vector<std::uint8_t> block) : block_(std::move(block)) {}

    std::vector<std::uint8_t> Translation() const override {
        const auto value = Query("\\VarFileInfo\\Translation");
        return {value.begin(), value.end()};
    }

    std::optional<std::string> Text(const std::string& sub_block) const override {
        constexpr std::string_view kTexts = "\\StringFileInfo\\";
        if (HoldsNul(sub_block)) return std::nullopt;
        if (!EqualsIgnoringCase(std::string_view(sub_block).substr(0, kTexts.size()), kTexts))
            return std::nullopt;
        const auto value = Query(sub_block);
        if (!value.data()) return std::nullopt;
        return FromAnsi(value.substr(0, value.find('\0')));
    }

 private:
    // Without data when there is no such value.
    std::string_view Query(const std::string& sub_block) const {
        void* value = nullptr;
        UINT length = 0;
        if (VerQueryValueA(block_.data(), ToAnsi(sub_block).c_str(), &value, &length) == 0 || !value)
            return {};
        return {static_cast<const char*>(value), length};
    }

    mutable std::vector<std::uint8_t> block_;
};

class Win32VersionResource final : public VersionResource {
 public:
    std::unique_ptr<VersionBlock> Load(const std::string& path) const override {
        if (path.empty() || HoldsNul(path)) return nullptr;
        const std::string file = ToAnsi(path);
        DWORD unused = 0;
        const DWORD size = GetFileVersionInfoSizeA(file.c_str(), &unused);
        if (size == 0) return nullptr;
        std::vector<std::uint8_t> block(size);
        if (GetFileVersionInfoA(file.c_str(), 0, size, block.data()) == 0) return nullptr;
        return std::make_unique<Win32VersionBlock>(std::move(block));
    }
};

}  // namespace

std::shared_ptr<VersionResource> MakeWin32VersionResource() {
    return std::make_shared<Win32VersionResource>();
}

}  // namespace kq
