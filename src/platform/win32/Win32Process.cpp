// The computer's name, the running program's path, and starting others.
#include <algorithm>
#include <array>
#include <string_view>

#include "platform/Process.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

class Win32Process final : public Process {
 public:
    // Cut to the length that the call reports; when it fails, what it left in the buffer.
    std::string ComputerName() const override {
        std::array<char, MAX_COMPUTERNAME_LENGTH + 1> buffer{};
        DWORD size = static_cast<DWORD>(buffer.size());
        if (GetComputerNameA(buffer.data(), &size) != 0) return FromAnsi({buffer.data(), size});
        return FromAnsi({buffer.data(), static_cast<std::size_t>(
                                            std::find(buffer.begin(), buffer.end(), '\0') - buffer.begin())});
    }

    std::string ExecutablePath() const override {
        std::wstring path(MAX_PATH, L'\0');
        for (;;) {
            const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
            if (length == 0) return {};
            if (length < path.size()) return FromWide(std::wstring_view(path).substr(0, length));
            path.resize(2 * path.size());
        }
    }

    // By the shell's call, the one that asks the user when the program wants more rights.
    std::string Start(const std::string& path) override {
        if (path.empty() || HoldsNul(path)) return SystemErrorText(ERROR_INVALID_NAME);
        const std::wstring file = ToWide(path);
        SHELLEXECUTEINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
        info.lpFile = file.c_str();
        info.nShow = SW_SHOWNORMAL;
        return ShellExecuteExW(&info) != 0 ? std::string() : SystemErrorText(GetLastError());
    }
};

}  // namespace

std::shared_ptr<Process> MakeWin32Process() {
    return std::make_shared<Win32Process>();
}

}  // namespace kq
