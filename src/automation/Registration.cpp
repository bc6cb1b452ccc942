#include "automation/Registration.h"

#include <oleauto.h>
#include <string>

#include "automation/CoclassTable.h"
#include "automation/Convert.h"
#include "automation/Guard.h"
#include "automation/Module.h"
#include "automation/TypeLibraries.h"

// In the system's library, but in no header of this tool chain.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID library, WORD major, WORD minor, LCID locale, SYSKIND system);
}

namespace kq::automation {
namespace {

constexpr wchar_t kVersion[] = L"1.0";

HKEY RootOf(Scope scope) {
    return scope == Scope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::wstring PathOf(const std::wstring& key) {
    return L"Software\\Classes\\" + key;
}

std::wstring TextOfId(REFGUID id) {
    wchar_t text[40];
    StringFromGUID2(id, text, 40);
    return text;
}

void CheckRegistry(LSTATUS status) {
    if (status != ERROR_SUCCESS) throw Failure(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

// An empty name is the key's own value.
void Write(Scope scope, const std::wstring& key, const std::wstring& name, const std::wstring& value) {
    HKEY handle = nullptr;
    CheckRegistry(RegCreateKeyExW(RootOf(scope), PathOf(key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                                  &handle, nullptr));
    const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    const LSTATUS status = RegSetValueExW(handle, name.empty() ? nullptr : name.c_str(), 0, REG_SZ,
                                          reinterpret_cast<const BYTE*>(value.c_str()), size);
    RegCloseKey(handle);
    CheckRegistry(status);
}

std::wstring Read(Scope scope, const std::wstring& key) {
    wchar_t value[64] = L"";
    DWORD size = sizeof(value);
    RegGetValueW(RootOf(scope), PathOf(key).c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value, &size);
    return value;
}

void Remove(Scope scope, const std::wstring& key) {
    const LSTATUS status = RegDeleteTreeW(RootOf(scope), PathOf(key).c_str());
    if (status != ERROR_FILE_NOT_FOUND) CheckRegistry(status);
}

Ptr<ITypeInfo> InfoOf(const CoclassEntry& entry) {
    auto info = TypeInfoOf(entry.id);
    if (!info) throw Failure(TYPE_E_ELEMENTNOTFOUND);
    return info;
}

std::wstring HelpOf(const CoclassEntry& entry) {
    BSTR text = nullptr;
    Check(InfoOf(entry)->GetDocumentation(MEMBERID_NIL, nullptr, &text, nullptr, nullptr));
    const std::wstring help = text ? text : entry.PlainProgId().c_str();
    SysFreeString(text);
    return help;
}

class LibraryAttributes {
 public:
    explicit LibraryAttributes(Ptr<ITypeLib> library) : library_(std::move(library)) {
        Check(library_->GetLibAttr(&attributes_));
    }
    LibraryAttributes(const LibraryAttributes&) = delete;
    LibraryAttributes& operator=(const LibraryAttributes&) = delete;
    ~LibraryAttributes() { library_->ReleaseTLibAttr(attributes_); }
    const TLIBATTR* operator->() const { return attributes_; }

 private:
    Ptr<ITypeLib> library_;
    TLIBATTR* attributes_ = nullptr;
};

// The path is given with the number: the system's own way of registering while loading drops it.
void RegisterLibrary(Scope scope, int number) {
    const auto library = LoadTypeLibrary(number);
    std::wstring path = TypeLibraryPath(number);
    Check(scope == Scope::Machine ? RegisterTypeLib(library.Get(), path.data(), nullptr)
                                  : RegisterTypeLibForUser(library.Get(), path.data(), nullptr));
}

void UnregisterLibrary(Scope scope, int number) {
    const LibraryAttributes of(LoadTypeLibrary(number));
    const HRESULT result =
        scope == Scope::Machine
            ? UnRegisterTypeLib(of->guid, of->wMajorVerNum, of->wMinorVerNum, of->lcid, of->syskind)
            : UnRegisterTypeLibForUser(of->guid, of->wMajorVerNum, of->wMinorVerNum, of->lcid, of->syskind);
    const bool absent =
        result == TYPE_E_REGISTRYACCESS || result == E_INVALIDARG;  // some systems say the latter
    if (!absent) Check(result);
}

void RegisterCoclass(Scope scope, const CoclassEntry& entry) {
    const std::wstring id = TextOfId(entry.id);
    const std::wstring help = HelpOf(entry);
    const std::wstring key = L"CLSID\\" + id;
    Write(scope, key, L"", help);
    Write(scope, key + L"\\InprocServer32", L"", ThisModulePath());
    Write(scope, key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    Write(scope, key + L"\\ProgID", L"", entry.ProgId());
    Write(scope, key + L"\\VersionIndependentProgID", L"", entry.PlainProgId());
    Write(scope, key + L"\\TypeLib", L"",
          TextOfId(LibraryAttributes(LoadTypeLibrary(entry.type_library))->guid));
    Write(scope, key + L"\\Version", L"", kVersion);
    Write(scope, key + L"\\Programmable", L"", L"");
    Write(scope, entry.ProgId(), L"", help);
    Write(scope, entry.ProgId() + L"\\CLSID", L"", id);
    Write(scope, entry.PlainProgId(), L"", help);
    Write(scope, entry.PlainProgId() + L"\\CLSID", L"", id);
    Write(scope, entry.PlainProgId() + L"\\CurVer", L"", entry.ProgId());
}

void UnregisterCoclass(Scope scope, const CoclassEntry& entry) {
    const std::wstring id = TextOfId(entry.id);
    for (const std::wstring& name : {entry.PlainProgId(), entry.ProgId()}) {
        if (Read(scope, name + L"\\CLSID") == id) Remove(scope, name);
    }
    Remove(scope, L"CLSID\\" + id);
}

}  // namespace

HRESULT Register(Scope scope) noexcept {
    const HRESULT result = Guard(IID_NULL, [&] {
        for (int number = 1; number <= kTypeLibraries; ++number)
            RegisterLibrary(scope, number);
        for (const auto& entry : Coclasses())
            RegisterCoclass(scope, entry);
    });
    if (FAILED(result)) Unregister(scope);
    return result;
}

HRESULT Unregister(Scope scope) noexcept {
    HRESULT first_failure = S_OK;
    const auto step = [&](auto&& body) {  // what cannot be taken out keeps nothing else in
        const HRESULT result = Guard(IID_NULL, body);
        if (FAILED(result) && SUCCEEDED(first_failure)) first_failure = result;
    };
    for (const auto& entry : Coclasses())
        step([&] { UnregisterCoclass(scope, entry); });
    for (int number = kTypeLibraries; number >= 1; --number)
        step([&] { UnregisterLibrary(scope, number); });
    return first_failure;
}

}  // namespace kq::automation
