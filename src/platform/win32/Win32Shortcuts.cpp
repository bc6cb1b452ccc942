// The shell makes a shortcut as a draft beside its final path. If that fails, an existing file is unchanged.
#include <memory>

#include "platform/Folders.h"
#include "platform/Shortcuts.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using Owned = std::unique_ptr<Interface, Releaser>;

// The host may have chosen another kind of apartment; then the shell's objects work in that one.
class Apartment {
 public:
    Apartment() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() {
        if (entered_) CoUninitialize();
    }

 private:
    bool entered_;
};

std::wstring TargetOf(const Shortcut& shortcut) {
    std::wstring folder = ToWide(shortcut.folder);
    if (!folder.empty() && folder.back() != L'\\') folder += L'\\';
    return folder + ToWide(shortcut.program);
}

bool Save(const Shortcut& shortcut, const std::wstring& path) {
    void* object = nullptr;
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object)))
        return false;
    const Owned<IShellLinkW> link(static_cast<IShellLinkW*>(object));
    if (FAILED(link->SetPath(TargetOf(shortcut).c_str()))) return false;
    if (FAILED(link->SetWorkingDirectory(ToWide(shortcut.folder).c_str()))) return false;
    if (FAILED(link->SetArguments(ToWide(shortcut.arguments).c_str()))) return false;
    if (FAILED(link->SetDescription(ToWide(shortcut.description).c_str()))) return false;
    if (FAILED(link->QueryInterface(IID_IPersistFile, &object))) return false;
    const Owned<IPersistFile> file(static_cast<IPersistFile*>(object));
    return SUCCEEDED(file->Save(path.c_str(), TRUE));
}

class Win32Shortcuts final : public Shortcuts {
 public:
    explicit Win32Shortcuts(std::shared_ptr<Folders> folders) : folders_(std::move(folders)) {}

    std::optional<std::string> DesktopFolder() const override {
        return folders_->SpecialFolder(CSIDL_DESKTOPDIRECTORY);
    }

    std::string Extension() const override { return "lnk"; }

    bool Create(const std::string& path, const Shortcut& shortcut) override {
        if (path.empty() || shortcut.program.empty()) return false;
        for (const std::string& text :
             {path, shortcut.folder, shortcut.program, shortcut.arguments, shortcut.description}) {
            if (HoldsNul(text)) return false;
        }
        const std::wstring place = ToWide(path);
        const std::wstring draft = place + L'.' + std::to_wstring(GetCurrentProcessId()) + L".lnk";
        const Apartment apartment;
        if (Save(shortcut, draft) &&
            MoveFileExW(draft.c_str(), place.c_str(), MOVEFILE_REPLACE_EXISTING) != 0)
            return true;
        DeleteFileW(draft.c_str());
        return false;
    }

 private:
    const std::shared_ptr<Folders> folders_;
};

}  // namespace

std::shared_ptr<Shortcuts> MakeWin32Shortcuts(std::shared_ptr<Folders> folders) {
    return std::make_shared<Win32Shortcuts>(std::move(folders));
}

}  // namespace kq
