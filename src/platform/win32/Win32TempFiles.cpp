// Temporary files by the system's calls. A program is created so that only its owner, the system and the
// administrators can access it, wherever the temporary folder is.
#include <algorithm>
#include <array>
#include <memory>
#include <type_traits>

#include "base/Utf.h"
#include "platform/TempFiles.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

constexpr std::size_t kPrefixLength = 3;
constexpr std::size_t kPathSize = 260;
constexpr std::size_t kMostAtOnce = 1 << 20;

struct LocalDeleter {
    void operator()(void* memory) const { LocalFree(memory); }
};
struct HandleDeleter {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Descriptor = std::unique_ptr<void, LocalDeleter>;
using Handle = std::unique_ptr<std::remove_pointer_t<HANDLE>, HandleDeleter>;

FileResult Failure(DWORD error) {
    return {static_cast<std::int32_t>(error), SystemErrorText(error)};
}

// The user of this process as it stands in a security descriptor's text; empty when the system does not tell.
std::wstring UserInDescriptor() {
    HANDLE opened = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened) == 0) return {};
    const Handle token(opened);
    alignas(TOKEN_USER) std::array<char, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> user{};
    DWORD size = 0;
    if (GetTokenInformation(opened, TokenUser, user.data(), static_cast<DWORD>(user.size()), &size) == 0)
        return {};
    wchar_t* text = nullptr;
    if (ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid, &text) == 0) return {};
    const Descriptor freed(text);
    return text;
}

Descriptor RightsOfTheOwner() {
    const std::wstring user = UserInDescriptor();
    if (user.empty()) return nullptr;
    const std::wstring text = L"D:P(A;;FA;;;" + user + L")(A;;FA;;;SY)(A;;FA;;;BA)";
    void* descriptor = nullptr;
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor,
                                                             nullptr) == 0)
        return nullptr;
    return Descriptor(descriptor);
}

// 0, or why not.
DWORD WriteAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto size = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
        if (WriteFile(file, bytes.data(), size, &count, nullptr) == 0) return GetLastError();
        bytes.remove_prefix(count);
    }
    return 0;
}

class Win32TempFiles final : public TempFiles {
 public:
    FileResult CreateUnique(std::string_view prefix, std::string& path) override {
        std::array<char, kPathSize> folder{};
        const DWORD length = GetTempPathA(static_cast<DWORD>(folder.size()), folder.data());
        if (length == 0) return Failure(GetLastError());
        if (length >= folder.size()) return Failure(ERROR_BUFFER_OVERFLOW);
        std::array<char, kPathSize> name{};
        const std::string start = ToAnsi(FirstCharacters(prefix, kPrefixLength));
        if (GetTempFileNameA(folder.data(), start.c_str(), 0, name.data()) == 0)
            return Failure(GetLastError());
        path = FromAnsi(name.data());
        return {};
    }

    FileResult WriteNewProgram(const std::string& path, std::string_view bytes) override {
        if (HoldsNul(path)) return Failure(ERROR_INVALID_NAME);
        const Descriptor rights = RightsOfTheOwner();
        if (!rights) return Failure(GetLastError());
        SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), rights.get(), FALSE};
        const std::wstring name = ToWide(path);
        const HANDLE created = CreateFileW(name.c_str(), GENERIC_WRITE, 0, &attributes, CREATE_NEW,
                                           FILE_ATTRIBUTE_NORMAL, nullptr);
        if (created == INVALID_HANDLE_VALUE) return Failure(GetLastError());
        Handle file(created);
        const DWORD error = WriteAll(created, bytes);
        file.reset();
        if (error == 0) return {};
        DeleteFileW(name.c_str());
        return Failure(error);
    }
};

}  // namespace

std::shared_ptr<TempFiles> MakeWin32TempFiles() {
    return std::make_shared<Win32TempFiles>();
}

}  // namespace kq
