// Where a settings file is put and what reading and writing it means, on a machine with drives and one
// without.
#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "util/IniFile.h"

namespace kq {
namespace {

constexpr int kDocuments = 5;

struct IniFileOnDrives : testing::Test {
    IniFileOnDrives() {
        machine.folders->separator = '\\';
        machine.folders->special = {{kDocuments, "C:\\Users\\ann\\Documents"}};
    }
    bool HasFolder(const std::string& path) const { return machine.folders->folders.count(path) != 0; }

    FakePlatform machine;
    IniFile ini{machine.platform};
};

TEST_F(IniFileOnDrives, IsPutBelowTheSpecialFolder) {
    ini.SetLocation(kDocuments, "HLXApps", "AppSess_Demo.ini");
    EXPECT_EQ(ini.Path(), "C:\\Users\\ann\\Documents\\HLXApps\\AppSess_Demo.ini");
}

TEST_F(IniFileOnDrives, CreatesTheFolderOfTheFile) {
    ini.SetLocation(kDocuments, "HLXApps", "AppSess_Demo.ini");
    EXPECT_TRUE(HasFolder("C:\\Users\\ann\\Documents\\HLXApps"));
}

TEST_F(IniFileOnDrives, CreatesEveryFolderOnTheWay) {
    ini.SetLocation(kDocuments, "HLXApps\\Demo", "a.ini");
    EXPECT_TRUE(HasFolder("C:\\Users\\ann\\Documents\\HLXApps"));
    EXPECT_TRUE(HasFolder("C:\\Users\\ann\\Documents\\HLXApps\\Demo"));
}

TEST_F(IniFileOnDrives, TriesEachFolderOfThePathOnceFromTheDriveDown) {
    ini.SetLocation(IniFile::kNoSpecialFolder, "C:\\Data\\x", "a.ini");
    EXPECT_EQ(machine.folders->create_calls, (std::vector<std::string>{"C:", "C:\\Data", "C:\\Data\\x"}));
}

TEST_F(IniFileOnDrives, DoesNotCreateTheFileBeforeTheFirstWrite) {
    ini.SetLocation(kDocuments, "HLXApps", "a.ini");
    EXPECT_TRUE(machine.profile_file->files.empty());
    ini.SetValue("Port", "", "", "7000");
    EXPECT_EQ(machine.profile_file->files.count(ini.Path()), 1U);
}

TEST_F(IniFileOnDrives, TakesACompleteFolderAsGiven) {
    ini.SetLocation(IniFile::kNoSpecialFolder, "C:\\Data", "a.ini");
    EXPECT_EQ(ini.Path(), "C:\\Data\\a.ini");
}

TEST_F(IniFileOnDrives, AddsNoSecondSeparatorBehindACompleteFolder) {
    ini.SetLocation(IniFile::kNoSpecialFolder, "C:\\Data\\", "a.ini");
    EXPECT_EQ(ini.Path(), "C:\\Data\\a.ini");
}

TEST_F(IniFileOnDrives, PutsTheFileIntoTheRootWithoutAnyFolder) {
    ini.SetLocation(IniFile::kNoSpecialFolder, "", "a.ini");
    EXPECT_EQ(ini.Path(), "\\a.ini");
}

TEST_F(IniFileOnDrives, NeverUsesTheSpecialFolderAlone) {
    ini.SetLocation(kDocuments, "", "a.ini");
    EXPECT_EQ(ini.Path(), "\\a.ini");
}

TEST_F(IniFileOnDrives, KeepsItsPathWhenLocatedAgainWithoutAFolder) {
    ini.SetLocation(kDocuments, "HLXApps", "a.ini");
    ini.SetLocation(kDocuments, "", "b.ini");
    EXPECT_EQ(ini.Path(), "C:\\Users\\ann\\Documents\\HLXApps\\a.ini\\b.ini");
}

TEST_F(IniFileOnDrives, JoinsAFolderThatBeginsWithASeparatorWithoutAnother) {
    ini.SetLocation(kDocuments, "\\HLXApps", "a.ini");
    EXPECT_EQ(ini.Path(), "C:\\Users\\ann\\Documents\\HLXApps\\a.ini");
}

TEST_F(IniFileOnDrives, AddsNoSecondSeparatorBehindAPartialFolder) {
    ini.SetLocation(kDocuments, "HLXApps\\", "a.ini");
    EXPECT_EQ(ini.Path(), "C:\\Users\\ann\\Documents\\HLXApps\\a.ini");
}

TEST_F(IniFileOnDrives, BeginsWithASeparatorWhenTheSpecialFolderIsUnknown) {
    ini.SetLocation(77, "HLXApps", "a.ini");
    EXPECT_EQ(ini.Path(), "\\HLXApps\\a.ini");
}

TEST_F(IniFileOnDrives, IgnoresFoldersThatCannotBeCreated) {
    EXPECT_NO_THROW(ini.SetLocation(IniFile::kNoSpecialFolder, "no\\such\\place", "a.ini"));
    EXPECT_EQ(ini.Path(), "no\\such\\place\\a.ini");
    EXPECT_TRUE(machine.folders->folders.empty());
}

struct IniFileBelowHome : testing::Test {
    IniFileBelowHome() {
        machine.folders->special = {{kDocuments, "/home/ann/.config"}};
        ini.SetLocation(kDocuments, "HLXApps", "a.ini");
    }
    FakePlatform machine;
    IniFile ini{machine.platform};
};

TEST_F(IniFileBelowHome, JoinsWithThePlatformsSeparator) {
    EXPECT_EQ(ini.Path(), "/home/ann/.config/HLXApps/a.ini");
    EXPECT_EQ(machine.folders->folders, std::set<std::string>{"/home/ann/.config/HLXApps"});
}

TEST_F(IniFileBelowHome, TreatsABackslashAsAnOrdinaryCharacter) {
    ini.SetLocation(IniFile::kNoSpecialFolder, "/data\\", "a.ini");
    EXPECT_EQ(ini.Path(), "/data\\/a.ini");
}

TEST_F(IniFileBelowHome, TriesTheEmptyNameBeforeARootedPath) {
    machine.folders->create_calls.clear();
    ini.SetLocation(IniFile::kNoSpecialFolder, "/data", "a.ini");
    EXPECT_EQ(machine.folders->create_calls, (std::vector<std::string>{"", "/data"}));
}

using IniFileValue = IniFileBelowHome;

TEST_F(IniFileValue, ComesBackAsItWasWritten) {
    ini.SetValue("Address", "Server", "", "login.example.org");
    EXPECT_EQ(ini.Value("Address", "Server", ""), "login.example.org");
}

TEST_F(IniFileValue, IsTheDefaultForAMissingKey) {
    EXPECT_EQ(ini.Value("TimeOut", "", "10000"), "10000");
}

TEST_F(IniFileValue, IsTheDefaultForAnEmptyValue) {
    ini.SetValue("TimeOut", "", "", "");
    EXPECT_EQ(ini.Value("TimeOut", "", "10000"), "10000");
}

TEST_F(IniFileValue, IsTheWholeDefaultWhenThePlatformCutsIt) {
    EXPECT_EQ(ini.Value("Gap", "", "   "), "   ");
}

TEST_F(IniFileValue, StandsInTheSectionDefaultWhenNoneIsNamed) {
    ini.SetValue("Port", "", "", "7000");
    EXPECT_EQ(ini.Value("Port", "Default", ""), "7000");
    ini.SetValue("Port", "Default", "", "7001");
    EXPECT_EQ(ini.Value("Port", "", ""), "7001");
}

TEST_F(IniFileValue, BelongsToItsSectionAlone) {
    ini.SetValue("Port", "One", "", "7000");
    EXPECT_EQ(ini.Value("Port", "Two", "none"), "none");
}

TEST_F(IniFileValue, IsWrittenWithoutRegardToTheDefault) {
    ini.SetValue("Port", "", "9", "7000");
    EXPECT_EQ(ini.Value("Port", "", ""), "7000");
}

TEST_F(IniFileValue, IsCutAfter1023Characters) {
    ini.SetValue("Long", "", "", std::string(2000, 'x'));
    EXPECT_EQ(ini.Value("Long", "", ""), std::string(1023, 'x'));
    ini.SetValue("Long", "", "", std::string(1023, 'y'));
    EXPECT_EQ(ini.Value("Long", "", ""), std::string(1023, 'y'));
}

TEST_F(IniFileValue, IsSilentlyNotKeptInAFileThatCannotBeWritten) {
    machine.profile_file->read_only = true;
    EXPECT_NO_THROW(ini.SetValue("Port", "", "", "7000"));
    EXPECT_EQ(ini.Value("Port", "", "0"), "0");
}

TEST_F(IniFileValue, IsReadFromTheFileEveryTime) {
    ini.SetValue("Port", "", "", "7000");
    machine.profile_file->files[ini.Path()]["DEFAULT"]["PORT"] = "7001";
    EXPECT_EQ(ini.Value("Port", "", ""), "7001");
}

}  // namespace
}  // namespace kq
