// The settings file of one application.
#include "client/LoginFixture.h"

namespace kq {
namespace {

class SessConfigTest : public LoginFixture {};

TEST_F(SessConfigTest, LiesInTheUsersDocuments) {
    Settings().SetSetting("Address", "a");
    EXPECT_THAT(machine.profile_file->files,
                ElementsAre(testing::Key("/home/user/Documents/HLXApps/AppSess_Demo.ini")));
}

TEST_F(SessConfigTest, ASeparatorInTheIdentifierDoesNotLeaveTheFolder) {
    Settings("a/../b\\c").SetSetting("Address", "a");
    EXPECT_THAT(machine.profile_file->files,
                ElementsAre(testing::Key("/home/user/Documents/HLXApps/AppSess_a_.._b_c.ini")));
}

TEST_F(SessConfigTest, NeverTellsItsIdentifier) {
    EXPECT_EQ(Settings().AppID(), "");
}

TEST_F(SessConfigTest, ReadsAMissingOrEmptyKeyAsTheDefault) {
    EXPECT_EQ(Settings().Setting("Port", "7"), "7");
    Settings().SetSetting("Port", "");
    EXPECT_EQ(Settings().Setting("Port", "7"), "7");
}

TEST_F(SessConfigTest, KeepsAllKeysInTheSectionDefault) {
    Settings().SetSetting("Port", "1");
    EXPECT_THAT(machine.profile_file->files.begin()->second, ElementsAre(testing::Key("DEFAULT")));
}

TEST_F(SessConfigTest, AWriteThatFailsIsSilent) {
    machine.profile_file->read_only = true;
    Settings().SetSetting("Port", "1");
    EXPECT_EQ(Settings().Setting("Port", "none"), "none");
}

TEST_F(SessConfigTest, CutsAValueToTheBuffersLength) {
    Settings().SetSetting("Address", std::string(2000, 'x'));
    EXPECT_EQ(Settings().Setting("Address", "").size(), 1023U);
}

}  // namespace
}  // namespace kq
