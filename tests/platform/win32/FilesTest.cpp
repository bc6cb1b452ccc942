// Temporary files and shortcuts: made, never in the place of what is there.
#include <filesystem>

#include <gtest/gtest.h>

#include "platform/Folders.h"
#include "platform/Shortcuts.h"
#include "platform/TempFiles.h"
#include "platform/TemporaryFolder.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

TEST(SystemErrors, AreSentencesWithoutAFullStop) {
    EXPECT_EQ(SystemErrorText(ERROR_FILE_NOT_FOUND), "File not found");
    EXPECT_EQ(SystemErrorText(0x2FFFFFFF), "The system reports the error 805306367");
}

class TempFile : public testing::Test {
 protected:
    TemporaryFolder folder_;
    std::shared_ptr<TempFiles> files_ = MakeWin32TempFiles();
    std::string path_;
};

TEST_F(TempFile, IsCreatedEmptyWithThreeCharactersOfThePrefix) {
    ASSERT_EQ(files_->CreateUnique("HLXYZ", path_).error, 0);
    const std::filesystem::path made(path_);
    EXPECT_EQ(made.filename().string().substr(0, 3), "HLX");
    EXPECT_NE(made.filename().string()[3], 'Y');
    EXPECT_EQ(made.extension(), ".tmp");
    EXPECT_EQ(std::filesystem::file_size(made), 0U);
    std::filesystem::remove(made);
}

TEST_F(TempFile, HoldsTheWholeProgram) {
    const std::string bytes("MZ\0\n\xFF", 5);
    EXPECT_EQ(files_->WriteNewProgram(folder_.File("x.exe"), bytes).error, 0);
    EXPECT_EQ(folder_.Get("x.exe"), bytes);
}

TEST_F(TempFile, IsAProgramThatCanBeStarted) {
    const TemporaryFolder source;
    std::filesystem::copy_file(KQ_PROGRAM, source.File("program.exe"));
    ASSERT_EQ(files_->WriteNewProgram(folder_.File("x.exe"), source.Get("program.exe")).error, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    ASSERT_NE(CreateProcessW(ToWide(folder_.Path() + "\\x.exe").c_str(), nullptr, nullptr, nullptr, FALSE, 0,
                             nullptr, nullptr, &startup, &process),
              0);
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 20'000), WAIT_OBJECT_0);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    EXPECT_EQ(folder_.Get("x.exe.ran"), "ran");
}

TEST_F(TempFile, NeverReplacesAFile) {
    folder_.Put("x.exe", "mine");
    const FileResult result = files_->WriteNewProgram(folder_.File("x.exe"), "MZ");
    EXPECT_EQ(result.error, ERROR_FILE_EXISTS);
    EXPECT_FALSE(result.description.empty());
    EXPECT_EQ(folder_.Get("x.exe"), "mine");
}

TEST_F(TempFile, IsRefusedWithANameThatNoFileHas) {
    EXPECT_EQ(files_->WriteNewProgram(folder_.File(std::string("a\0b", 3)), "MZ").error, ERROR_INVALID_NAME);
    EXPECT_EQ(files_->WriteNewProgram(folder_.File("missing/x.exe"), "MZ").error, ERROR_PATH_NOT_FOUND);
}

class ShellShortcut : public testing::Test {
 protected:
    ShellShortcut() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~ShellShortcut() override { CoUninitialize(); }

    bool Makes(const std::string& name) {
        return shortcuts_->Create(folder_.Path() + "\\" + name,
                                  {"C:\\Acme", "trader.exe", "/Profile \"a b\"", "Runs it."});
    }
    // A text of the shortcut as the shell reads it.
    template <class Getter>
    std::string Text(const std::string& name, Getter getter) {
        IShellLinkW* link = nullptr;
        IPersistFile* file = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                   reinterpret_cast<void**>(&link)),
                  S_OK);
        EXPECT_EQ(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file)), S_OK);
        EXPECT_EQ(file->Load(ToWide(folder_.Path() + "\\" + name).c_str(), STGM_READ), S_OK);
        wchar_t text[1024] = L"";
        EXPECT_EQ(getter(*link, text, 1024), S_OK);
        file->Release();
        link->Release();
        return FromWide(text);
    }

    TemporaryFolder folder_;
    std::shared_ptr<Folders> folders_ = MakeWin32Folders();
    std::shared_ptr<Shortcuts> shortcuts_ = MakeWin32Shortcuts(folders_);
};

TEST_F(ShellShortcut, StartsTheProgramInItsFolderWithItsArguments) {
    ASSERT_TRUE(Makes("x.lnk"));
    EXPECT_EQ(Text("x.lnk", [](auto& l, auto* t, int n) { return l.GetPath(t, n, nullptr, SLGP_RAWPATH); }),
              "C:\\Acme\\trader.exe");
    EXPECT_EQ(Text("x.lnk", [](auto& l, auto* t, int n) { return l.GetWorkingDirectory(t, n); }), "C:\\Acme");
    EXPECT_EQ(Text("x.lnk", [](auto& l, auto* t, int n) { return l.GetArguments(t, n); }),
              "/Profile \"a b\"");
    EXPECT_EQ(Text("x.lnk", [](auto& l, auto* t, int n) { return l.GetDescription(t, n); }), "Runs it.");
}

TEST_F(ShellShortcut, ReplacesAFileAndLeavesNoOther) {
    folder_.Put("x.lnk", "old");
    ASSERT_TRUE(Makes("x.lnk"));
    EXPECT_NE(folder_.Get("x.lnk"), "old");
    const std::filesystem::directory_iterator files(folder_.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(ShellShortcut, IsRefusedWhereItCannotBe) {
    EXPECT_FALSE(Makes("missing\\x.lnk"));
    EXPECT_FALSE(shortcuts_->Create("", {"C:\\Acme", "trader.exe", "", ""}));
    EXPECT_FALSE(shortcuts_->Create(folder_.Path() + "\\x.lnk", {"C:\\Acme", "", "", ""}));
    EXPECT_FALSE(Makes(std::string("a\0b.lnk", 7)));
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
}

TEST_F(ShellShortcut, LeavesAFolderOfItsNameAlone) {
    std::filesystem::create_directories(folder_.File("x.lnk/inside"));
    EXPECT_FALSE(Makes("x.lnk"));
    const std::filesystem::directory_iterator files(folder_.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(ShellShortcut, StandsOnTheUsersDesktop) {
    EXPECT_EQ(shortcuts_->DesktopFolder(), folders_->SpecialFolder(16));
    EXPECT_EQ(shortcuts_->Extension(), "lnk");
}

}  // namespace
}  // namespace kq
