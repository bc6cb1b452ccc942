// What the port tells about the machine and its user: folders, names, programs, shares, boxes.
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "forms/win32/Win32MessageBox.h"
#include "platform/Clock.h"
#include "platform/FileShare.h"
#include "platform/Folders.h"
#include "platform/Machine.h"
#include "platform/Patience.h"
#include "platform/Process.h"
#include "platform/StringTable.h"
#include "platform/TemporaryFolder.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

TEST(AnsiTexts, KeepWhatTheCodePageHas) {
    EXPECT_EQ(ToAnsi("a\xC3\xA4"), "a\xE4");
    EXPECT_EQ(FromAnsi("a\xE4"), "a\xC3\xA4");
    EXPECT_EQ(ToAnsi("\xE4\xB8\xAD"), "?");
    EXPECT_EQ(ToAnsi(""), "");
    EXPECT_EQ(FromAnsi(""), "");
}

TEST(WideTexts, KeepEveryCharacter) {
    EXPECT_EQ(ToWide("\xF0\x9F\x98\x80"), L"\xD83D\xDE00");
    EXPECT_EQ(FromWide(L"\xD83D\xDE00\x4E2D"), "\xF0\x9F\x98\x80\xE4\xB8\xAD");
}

class Win32Folder : public testing::Test {
 protected:
    TemporaryFolder place_;
    std::shared_ptr<Folders> folders_ = MakeWin32Folders();
};

TEST_F(Win32Folder, OfTheDocumentsIsThereAndHasNoSeparatorAtItsEnd) {
    const auto documents = folders_->SpecialFolder(5);
    ASSERT_TRUE(documents);
    EXPECT_TRUE(folders_->FileExists(*documents));
    EXPECT_NE(documents->back(), '\\');
    EXPECT_EQ(documents->substr(1, 2), ":\\");
}

TEST_F(Win32Folder, IsNothingForNumbersThatMeanNone) {
    EXPECT_EQ(folders_->SpecialFolder(255), std::nullopt);
    EXPECT_EQ(folders_->SpecialFolder(-1), std::nullopt);
}

TEST_F(Win32Folder, IsCreatedOnceAndOnlyInAFolderThatIsThere) {
    EXPECT_TRUE(folders_->CreateFolder(place_.Path() + "\\new"));
    EXPECT_FALSE(folders_->CreateFolder(place_.Path() + "\\new"));
    EXPECT_FALSE(folders_->CreateFolder(place_.Path() + "\\missing\\new"));
    EXPECT_FALSE(folders_->CreateFolder(""));
    EXPECT_FALSE(folders_->CreateFolder("C:"));
}

TEST_F(Win32Folder, ListsItsFilesAsExistingUntilTheyAreDeleted) {
    const auto path = place_.Put("file", "x");
    EXPECT_TRUE(folders_->FileExists(path));
    EXPECT_FALSE(folders_->FileExists(path + std::string("\0x", 2)));
    EXPECT_TRUE(folders_->DeleteFile(path));
    EXPECT_FALSE(folders_->DeleteFile(path));
    EXPECT_FALSE(folders_->FileExists(path));
}

TEST_F(Win32Folder, HoldsAFileThatIsCreatedAndGrows) {
    EXPECT_TRUE(folders_->AppendToFile(place_.Path() + "\\log", "one\n"));
    EXPECT_TRUE(folders_->AppendToFile(place_.Path() + "\\log", "two\n"));
    EXPECT_EQ(place_.Get("log"), "one\ntwo\n");
}

TEST_F(Win32Folder, RefusesToAddToWhatIsNotAFile) {
    for (const auto& path : {place_.Path(), place_.Path() + "\\missing\\log", std::string("NUL"),
                             std::string(), std::string("a\0b", 3)})
        EXPECT_FALSE(folders_->AppendToFile(path, "x")) << path;
}

TEST(Win32Process, KnowsItsProgramAndAShortName) {
    const auto process = MakeWin32Process();
    EXPECT_TRUE(process->ExecutablePath().ends_with("\\test_platform_win32.exe"));
    EXPECT_FALSE(process->ComputerName().empty());
    EXPECT_LE(process->ComputerName().size(), 15U);
}

TEST(Win32Process, StartsAProgramAndDoesNotWaitForIt) {
    const TemporaryFolder folder;
    const std::string program = folder.Path() + "\\program.exe";
    std::filesystem::copy_file(KQ_PROGRAM, program);
    EXPECT_EQ(MakeWin32Process()->Start(program), "");
    const auto loop = MakeWin32EventLoop();
    std::function<void()> tick = [&] { loop->StartTimer(Milliseconds(5), tick); };
    tick();
    EXPECT_TRUE(Await(*loop, [&] { return std::filesystem::exists(program + ".ran"); }));
}

TEST(Win32Process, TellsWhatCouldNotBeStarted) {
    const TemporaryFolder folder;
    EXPECT_NE(MakeWin32Process()->Start(folder.Path() + "\\missing.exe"), "");
    EXPECT_NE(MakeWin32Process()->Start(""), "");
    EXPECT_NE(MakeWin32Process()->Start(std::string("cmd.exe\0x", 9)), "");
}

class Share : public testing::Test {
 protected:
    std::vector<std::string> ran_;
    std::shared_ptr<FileShare> share_ =
        MakeWin32FileShare([this](const std::string& command_line) { ran_.push_back(command_line); });
};

TEST_F(Share, IsAskedForByTheSystemsCommand) {
    share_->Share("ClientInstall_7", "C:\\Program Files\\Acme");
    EXPECT_EQ(ran_,
              std::vector<std::string>{"net.exe share ClientInstall_7=\"C:\\Program Files\\Acme\" /YES"});
}

TEST_F(Share, KeepsABackslashAtTheEndOfTheFolderFromTheQuotationMark) {
    share_->Share("Root", "C:\\");
    EXPECT_EQ(ran_, std::vector<std::string>{"net.exe share Root=\"C:\\\\\" /YES"});
}

TEST_F(Share, IsOneArgumentThoughItsNameHoldsABlank) {
    share_->Share("a /GRANT:x", "C:\\a");
    EXPECT_EQ(ran_, std::vector<std::string>{"net.exe share \"a /GRANT:x\"=\"C:\\a\" /YES"});
}

TEST_F(Share, IsRefusedWithNamesThatAreNone) {
    for (const char* name : {"", "a\"b", "a\nb", "/DELETE"})
        share_->Share(name, "C:\\a");
    for (const char* folder : {"", "C:\\a\"b", "C:\\a\tb"})
        share_->Share("Clients", folder);
    EXPECT_TRUE(ran_.empty());
}

TEST_F(Share, IsThereWhenItCanBeListed) {
    EXPECT_TRUE(share_->CanList("C:\\windows\\"));
    EXPECT_FALSE(share_->CanList("C:\\missing\\"));
    EXPECT_FALSE(share_->CanList("\\\\" + MakeWin32Process()->ComputerName() + "\\NoSuchShare\\"));
    EXPECT_FALSE(share_->CanList(""));
}

TEST_F(Share, IsNoErrorWhenTheCommandFails) {
    EXPECT_NO_THROW(MakeWin32FileShare()->Share("Clients", "C:\\missing"));
}

// The tests run without a display, so no box can be shown.
TEST(MessageBoxes, ThatCannotBeShownAreAnsweredByTheHarmlessButton) {
    Signal<> withdrawn;
    const auto show = [&](BoxStyle style) {
        return ShowWin32MessageBox("Text", "KQAppSessionLib", style, withdrawn);
    };
    EXPECT_EQ(show(BoxStyle::YesNo), BoxButton::No);
    EXPECT_EQ(show(BoxStyle::YesNoCancel), BoxButton::Cancel);
    EXPECT_EQ(show(BoxStyle::Information), BoxButton::OK);
}

TEST(Win32Clock, CountsTheSecondsOfTheDay) {
    const double seconds = MakeWin32Clock()->SecondsSinceMidnight();
    EXPECT_GE(seconds, 0);
    EXPECT_LT(seconds, 86400);
}

TEST(Win32Platform, IsWholeButForTheDialogs) {
    const PlatformPtr platform = MakePlatform();
    EXPECT_TRUE(platform->Loop() && platform->Parts().clock && platform->Parts().network &&
                platform->Parts().resolver && platform->Parts().folders);
    EXPECT_TRUE(platform->Parts().profile_file && platform->Parts().locale && platform->Parts().strings &&
                platform->Parts().process);
    EXPECT_TRUE(platform->Parts().file_share && platform->Parts().version_resource &&
                platform->Parts().crypto);
    EXPECT_TRUE(platform->Parts().shortcuts && platform->Parts().temp_files);
    EXPECT_EQ(platform->Parts().dialogs, nullptr);
    EXPECT_TRUE(platform->Parts().strings->Load(101).has_value());
}

}  // namespace
}  // namespace kq
