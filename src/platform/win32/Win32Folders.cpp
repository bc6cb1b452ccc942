// The user's folders, and the few things that are done to files, by the system's ANSI calls.
#include <array>

#include "platform/Folders.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

class Win32Folders final : public Folders {
 public:
    // The folder of the current user (token 0) as it is now (flags 0).
    std::optional<std::string> SpecialFolder(int csidl) const override {
        std::array<char, MAX_PATH + 1> path{};
        if (SHGetFolderPathA(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path.data()) != S_OK)
            return std::nullopt;
        std::string folder = FromAnsi(path.data());
        while (!folder.empty() && folder.back() == Separator())
            folder.pop_back();
        return folder;
    }

    char Separator() const override { return '\\'; }

    bool CreateFolder(const std::string& path) override {
        return !HoldsNul(path) && CreateDirectoryA(ToAnsi(path).c_str(), nullptr) != 0;
    }

    bool FileExists(const std::string& path) const override {
        return !HoldsNul(path) && GetFileAttributesA(ToAnsi(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    bool DeleteFile(const std::string& path) override {
        return !HoldsNul(path) && DeleteFileA(ToAnsi(path).c_str()) != 0;
    }

    // Other programs may read and add to it meanwhile.
    bool AppendToFile(const std::string& path, std::string_view text) override {
        if (HoldsNul(path)) return false;
        HANDLE file = CreateFileA(ToAnsi(path).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return false;
        const auto size = static_cast<DWORD>(text.size());
        DWORD written = 0;
        const bool added = GetFileType(file) == FILE_TYPE_DISK &&
                           WriteFile(file, text.data(), size, &written, nullptr) != 0 && written == size;
        return CloseHandle(file) != 0 && added;
    }
};

}  // namespace

std::shared_ptr<Folders> MakeWin32Folders() {
    return std::make_shared<Win32Folders>();
}

}  // namespace kq
