// Shares by the system's own command, net.exe.
//
// The command is started by its full path, so that no net.exe lying elsewhere is taken for it, and without a
// shell. Its command line is cut into arguments by the usual rules: quotation marks keep an argument
// together, and a backslash before one must be doubled to stay a backslash.
#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/FileShare.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

bool IsHarmless(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return c == '"' || code < 0x20 || code == 0x7F;
    });
}

std::string Quoted(const std::string& text) {
    const std::size_t end = text.find_last_not_of('\\');
    const std::size_t backslashes = text.size() - (end == std::string::npos ? 0 : end + 1);
    return '"' + text + std::string(backslashes, '\\') + '"';
}

// A space would end the argument, and what follows would be read as a switch.
std::string NameArgument(const std::string& name) {
    return name.find(' ') == std::string::npos ? name : Quoted(name);
}

void RunNet(const std::string& command_line) {
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
    const std::wstring program = folder + L"\\net.exe";
    std::wstring command = ToWide(command_line);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                       nullptr, &startup, &process) == 0)
        return;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

class Win32FileShare final : public FileShare {
 public:
    explicit Win32FileShare(CommandRunner run) : run_(run ? std::move(run) : CommandRunner(&RunNet)) {}

    bool CanList(const std::string& unc_path) const override {
        if (unc_path.empty() || HoldsNul(unc_path)) return false;
        std::wstring pattern = ToWide(unc_path);
        if (pattern.back() != L'\\') pattern += L'\\';
        WIN32_FIND_DATAW entry;
        const HANDLE listing = FindFirstFileW((pattern + L"*").c_str(), &entry);
        if (listing == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;  // an empty one
        FindClose(listing);
        return true;
    }

    void Share(const std::string& name, const std::string& folder) override {
        if (name.empty() || name.front() == '/' || !IsHarmless(name)) return;
        if (folder.empty() || !IsHarmless(folder)) return;
        run_("net.exe share " + NameArgument(name) + "=" + Quoted(folder) + " /YES");
    }

 private:
    CommandRunner run_;
};

}  // namespace

std::shared_ptr<FileShare> MakeWin32FileShare(CommandRunner run) {
    return std::make_shared<Win32FileShare>(std::move(run));
}

}  // namespace kq
