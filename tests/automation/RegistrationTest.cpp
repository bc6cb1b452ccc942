// What registration writes, and that nothing of it is left. The machine's own registration serves the script
// tests: one test enters it before them, another takes it out after them; the user's is tried in one go.
#include <set>
#include <string>
#include <windows.h>

#include <gtest/gtest.h>

namespace kq {
namespace {

constexpr wchar_t kClient[] = L"{711B0108-4429-4499-BC5B-741273784BD2}";

std::wstring Wide(const char* text) {
    return {text, text + std::char_traits<char>::length(text)};
}

// The names of all keys below Software\Classes, and the values that name the DLL, as lines.
void Collect(HKEY root, const std::wstring& path, std::set<std::wstring>& lines) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    lines.insert(path);
    wchar_t name[512];
    for (DWORD i = 0;; ++i) {
        DWORD size = 512;
        if (RegEnumKeyExW(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        Collect(root, path + L"\\" + name, lines);
    }
    RegCloseKey(key);
}

std::set<std::wstring> Keys(HKEY root) {
    std::set<std::wstring> lines;
    Collect(root, L"Software\\Classes", lines);
    return lines;
}

// Ours have our identifiers or our names in them.
std::set<std::wstring> OurKeys(HKEY root) {
    std::set<std::wstring> ours;
    for (const auto& key : Keys(root)) {
        const bool named =
            key.find(L"\\KQ") != std::wstring::npos && key.find(L"KQTest") == std::wstring::npos;
        if (named || key.find(L"4429-4499-BC5B-741273784BD2") != std::wstring::npos) ours.insert(key);
    }
    return ours;
}

std::wstring Value(HKEY root, const std::wstring& key, const wchar_t* name = nullptr) {
    wchar_t value[MAX_PATH] = L"";
    DWORD size = sizeof value;
    RegGetValueW(root, (L"Software\\Classes\\" + key).c_str(), name, RRF_RT_REG_SZ, nullptr, value, &size);
    return value;
}

struct Registration : testing::Test {
    ~Registration() override { FreeLibrary(dll); }
    HRESULT Call(const char* function) {
        return reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
            reinterpret_cast<void*>(GetProcAddress(dll, function)))();
    }
    HRESULT Install(BOOL install, const wchar_t* word) {
        return reinterpret_cast<HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR)>(
            reinterpret_cast<void*>(GetProcAddress(dll, "DllInstall")))(install, word);
    }
    std::wstring Path() {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(dll, path, MAX_PATH);
        return path;
    }
    void ExpectRegistered(HKEY root) {
        const std::wstring key = std::wstring(L"CLSID\\") + kClient;
        EXPECT_EQ(Value(root, key),
                  L"Helper class for performing the login procedure with the ZEB and application "
                  L"server.");
        EXPECT_EQ(Value(root, key + L"\\InprocServer32"), Path());
        EXPECT_EQ(Value(root, key + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
        EXPECT_EQ(Value(root, key + L"\\ProgID"), L"KQAppSessionLib.KQAppSessClient.1");
        EXPECT_EQ(Value(root, key + L"\\VersionIndependentProgID"), L"KQAppSessionLib.KQAppSessClient");
        EXPECT_EQ(Value(root, key + L"\\TypeLib"), L"{711B0100-4429-4499-BC5B-741273784BD2}");
        EXPECT_EQ(Value(root, L"KQAppSessionLib.KQAppSessClient\\CurVer"),
                  L"KQAppSessionLib.KQAppSessClient.1");
        EXPECT_EQ(Value(root, L"KQAppSessionLib.KQAppSessClient\\CLSID"), kClient);
        EXPECT_EQ(Value(root, L"KQAppSessionLib.KQAppSessClient.1\\CLSID"), kClient);
    }
    HMODULE dll = LoadLibraryW(Wide(KQ_DLL).c_str());
};
using MachineRegistrationBefore = Registration;
using MachineRegistrationAfter = Registration;

TEST_F(MachineRegistrationBefore, EntersEveryClassAndTypeLibrary) {
    ASSERT_EQ(Call("DllRegisterServer"), S_OK);
    ExpectRegistered(HKEY_LOCAL_MACHINE);
    for (int number = 1; number <= 7; ++number) {
        const std::wstring id =
            L"TypeLib\\{711B0" + std::to_wstring(number) + L"00-4429-4499-BC5B-741273784BD2}";
        EXPECT_EQ(Value(HKEY_LOCAL_MACHINE, id + L"\\1.0\\0\\win64"),
                  Path() + L"\\" + std::to_wstring(number));
    }
}

TEST_F(MachineRegistrationAfter, LeavesNothingBehind) {
    ASSERT_FALSE(OurKeys(HKEY_LOCAL_MACHINE).empty());
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(OurKeys(HKEY_LOCAL_MACHINE), std::set<std::wstring>());
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK);  // nothing to do any more
}

TEST_F(Registration, ForTheUserLeavesNothingBehindEither) {
    ASSERT_EQ(Install(TRUE, L"user"), S_OK);
    ExpectRegistered(HKEY_CURRENT_USER);
    EXPECT_EQ(Install(FALSE, L"user"), S_OK);
    EXPECT_EQ(OurKeys(HKEY_CURRENT_USER), std::set<std::wstring>());
}

TEST_F(Registration, KnowsNoOtherScope) {
    EXPECT_EQ(Install(TRUE, L"everyone"), E_INVALIDARG);
}

// A name that another program has taken over is not ours to remove.
TEST_F(Registration, LeavesNamesThatNowBelongToOthers) {
    const wchar_t other[] = L"{00000000-0000-0000-0000-00000000ABCD}";
    const wchar_t key[] = L"Software\\Classes\\KQTimerLib.Timer\\CLSID";
    ASSERT_EQ(Install(TRUE, L"user"), S_OK);
    RegSetKeyValueW(HKEY_CURRENT_USER, key, nullptr, REG_SZ, other, sizeof other);
    EXPECT_EQ(Install(FALSE, L"user"), S_OK);
    EXPECT_EQ(Value(HKEY_CURRENT_USER, L"KQTimerLib.Timer\\CLSID"), other);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Classes\\KQTimerLib.Timer");
}

}  // namespace
}  // namespace kq
