// Desktop entries: their text, and their files.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "platform/Folders.h"
#include "platform/TemporaryFolder.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/XdgShortcuts.h"

namespace kq {
namespace {

// The value of a key in a desktop entry as it stands; "-" when the key is missing.
std::string ValueOf(const std::string& key, const std::string& entry) {
    const auto at = entry.find("\n" + key + "=");
    if (at == std::string::npos) return "-";
    const auto begin = at + key.size() + 2;
    return entry.substr(begin, entry.find('\n', begin) - begin);
}
std::string ExecOf(const std::string& program, const std::string& arguments) {
    return ValueOf("Exec", DesktopEntry("x", {"/opt/trader", program, arguments, ""}));
}

TEST(DesktopEntry, IsAnApplicationWithTheTextsGiven) {
    EXPECT_EQ(
        DesktopEntry("Trader", {"/opt/trader", "trader", "/Profile \"Main\"", "Runs it"}),
        "[Desktop Entry]\nType=Application\nTerminal=false\nName=Trader\nComment=Runs it\nPath=/opt/trader\n"
        "Exec=\"/opt/trader/trader\" \"/Profile\" \"Main\"\n");
}

TEST(DesktopEntry, JoinsFolderAndProgramWithOneSlash) {
    EXPECT_EQ(ValueOf("Exec", DesktopEntry("x", {"/opt/", "t", "", ""})), "\"/opt/t\"");
    EXPECT_EQ(ValueOf("Exec", DesktopEntry("x", {"", "t", "", ""})), "\"t\"");
}

TEST(DesktopEntry, KeepsAnArgumentInQuotationMarksTogether) {
    EXPECT_EQ(ExecOf("t", "/Profile \"North  Sales\" x"),
              "\"/opt/trader/t\" \"/Profile\" \"North  Sales\" \"x\"");
    EXPECT_EQ(ExecOf("t", " /Profile  \"\" "), "\"/opt/trader/t\" \"/Profile\" \"\"");
}

TEST(DesktopEntry, EscapesWhatAShellWouldSee) {
    EXPECT_EQ(ExecOf("a$b`c", "x\\y"), R"("/opt/trader/a\\$b\\`c" "x\\\\y")");
}

TEST(DesktopEntry, DoublesPercentSigns) {
    EXPECT_EQ(ExecOf("t", "100%f"), "\"/opt/trader/t\" \"100%%f\"");
}

TEST(DesktopEntry, CannotBeGivenASecondLineByItsTexts) {
    const std::string entry =
        DesktopEntry("a\nExec=evil", {"/opt", "t", "b\nExec=evil", "c\r\nExec=evil\td"});
    EXPECT_EQ(ValueOf("Name", entry), "a\\nExec=evil");
    EXPECT_EQ(ValueOf("Comment", entry), "c\\r\\nExec=evil\\td");
    EXPECT_EQ(ValueOf("Exec", entry), "\"/opt/t\" \"b\\nExec=evil\"");
}

TEST(DesktopEntry, KeepsABlankAtTheBeginning) {
    EXPECT_EQ(ValueOf("Name", DesktopEntry(" x y", {"/opt", "t", "", ""})), "\\sx y");
}

struct XdgShortcut : testing::Test {
    bool Makes(const std::string& path) { return shortcuts->Create(path, {"/opt", "t", "", ""}); }

    TemporaryFolder folder;
    std::shared_ptr<Shortcuts> shortcuts = MakeXdgShortcuts(MakeXdgFolders());
};

TEST_F(XdgShortcut, IsAnExecutableFileNamedWithoutItsEnding) {
    ASSERT_TRUE(Makes(folder.File("My Trader.desktop")));
    EXPECT_EQ(ValueOf("Name", folder.Get("My Trader.desktop")), "My Trader");
    struct stat attributes {};
    ASSERT_EQ(::stat(folder.File("My Trader.desktop").c_str(), &attributes), 0);
    EXPECT_EQ(attributes.st_mode & 07777U, 0755U);
}

TEST_F(XdgShortcut, ReplacesAFileAndLeavesNoOther) {
    folder.Put("x.desktop", "old");
    ASSERT_TRUE(Makes(folder.File("x.desktop")));
    EXPECT_EQ(ValueOf("Exec", folder.Get("x.desktop")), "\"/opt/t\"");
    const std::filesystem::directory_iterator files(folder.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(XdgShortcut, IsRefusedWhereItCannotBe) {
    EXPECT_FALSE(Makes(folder.File("missing/x.desktop")));
    EXPECT_FALSE(Makes(""));
    EXPECT_FALSE(Makes(folder.Path() + "/"));
    EXPECT_FALSE(Makes(folder.File(std::string("a\0b.desktop", 11))));
    EXPECT_FALSE(shortcuts->Create(folder.File("x.desktop"), {"/opt", "", "", ""}));
    EXPECT_FALSE(shortcuts->Create(folder.File("x.desktop"), {"/opt", std::string("t\0", 2), "", ""}));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(XdgShortcut, LeavesAFolderOfItsNameAlone) {
    std::filesystem::create_directories(folder.File("x.desktop/inside"));
    EXPECT_FALSE(Makes(folder.File("x.desktop")));
    const std::filesystem::directory_iterator files(folder.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(XdgShortcut, StandsOnTheUsersDesktop) {
    EXPECT_EQ(shortcuts->DesktopFolder(), MakeXdgFolders()->SpecialFolder(16));
    EXPECT_EQ(shortcuts->Extension(), "desktop");
}

}  // namespace
}  // namespace kq
