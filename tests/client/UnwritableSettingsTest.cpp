// A settings file that cannot be written, with a user at the dialogs.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class UnwritableSettingsTest : public InteractiveFixture {
 protected:
    void NothingIsStored() {
        StoreServer("", "");
        machine.profile_file->read_only = true;
    }
    void GivesTheServer() {
        user.Expect("frmServer", [](FakeUser& at) {
            at.Types("txtAddress", FakeZeb::kAddress);
            at.Types("txtPort", "7710");
            at.Clicks("cmdOK");
        });
    }
    void IsWarned() { IsAsked(kWarning, BoxButton::OK); }

    static constexpr const char* kWarning =
        "The settings could not be saved in /home/user/Documents/HLXApps/AppSess_Demo.ini.  They will have "
        "to "
        "be entered again next time.";
};

TEST_F(UnwritableSettingsTest, LogInWithTheServerThatTheUserGave) {
    NothingIsStored();
    GivesTheServer();
    IsWarned();
    LogsIn();
    EXPECT_TRUE(Login());
    ExpectQuestions();
    EXPECT_EQ(user.LastBox().style, BoxStyle::Warning);
    EXPECT_EQ(client->AppServerAddress(), FakeZeb::kAddress);
}

TEST_F(UnwritableSettingsTest, AreAskedForAndWarnedOfOnceInALogin) {
    NothingIsStored();
    GivesTheServer();
    IsWarned();
    LogsIn();
    zeb.Once(FakeZeb::kLogin, zeb.Silence());
    IsAsked("Did not receive a reply from the login server.  Would you like to try again?", BoxButton::Yes);
    LogsIn();
    EXPECT_TRUE(Login());
    ExpectQuestions();
}

TEST_F(UnwritableSettingsTest, AreWarnedOfOnceThoughTheUserChangesThemTwice) {
    NothingIsStored();
    GivesTheServer();
    IsWarned();
    GivesTheServer();
    user.Expect("frmLogin", [](FakeUser& at) {
        at.Clicks("cmdShowHide");
        at.Clicks("cmdChangeServer");
        at.Clicks("cmdCancel");
    });
    EXPECT_FALSE(Login());
    ExpectQuestions();
}

TEST_F(UnwritableSettingsTest, CountWhenTheyAreChangedInTheLoginDialog) {
    machine.profile_file->read_only = true;
    user.Expect("frmServer", [](FakeUser& at) {
        at.Clears("txtTimeOut");
        at.Types("txtTimeOut", "3");
        at.Clicks("cmdOK");
    });
    user.Expect("frmLogin", [](FakeUser& at) {
        at.Types("txtLoginID", "ann");
        at.Types("txtPassword", "secret word");
        at.Clicks("cmdShowHide");
        at.Clicks("cmdChangeServer");
        at.Clicks("cmdOK");
    });
    IsWarned();
    zeb.Once(FakeZeb::kValidate, zeb.Silence());
    IsAsked("Did not receive a validation reply from the login server.  Would you like to try again?",
            BoxButton::No);
    EXPECT_EQ(TimeOf([this] { EXPECT_FALSE(Login()); }), Milliseconds(3250));
    ExpectQuestions();
}

TEST_F(UnwritableSettingsTest, DoNotWarnAUserWhoOnlyLogsIn) {
    machine.profile_file->read_only = true;
    LogsIn();
    EXPECT_TRUE(Login());
    ExpectQuestions();
}

TEST_F(UnwritableSettingsTest, AreNotWarnedOfAnyLongerWhenTheClientIsTerminated) {
    NothingIsStored();
    GivesTheServer();
    user.Answer(BoxButton::OK, [this] { client->TerminateClient(); });
    EXPECT_EQ(ErrorOf([this] { Login(); }).Number(), static_cast<std::int32_t>(NetError::Interrupted));
    EXPECT_EQ(user.Withdrawn(), 1U);
}

TEST_F(UnwritableSettingsTest, AreWarnedOfInTheUsersLanguage) {
    UserReads(11'274);
    NothingIsStored();
    GivesTheServer();
    IsAsked(
        "No se pudo guardar la configuración en /home/user/Documents/HLXApps/AppSess_Demo.ini.  La próxima "
        "vez "
        "será necesario ingresarla de nuevo.",
        BoxButton::OK);
    Cancels("frmLogin");
    EXPECT_FALSE(Login());
    ExpectQuestions();
}

TEST_F(UnwritableSettingsTest, AreWarnedOfWhenTheConfigurationIsChanged) {
    LogsIn();
    ASSERT_TRUE(Login());
    machine.profile_file->read_only = true;
    GivesTheServer();
    IsWarned();
    EXPECT_TRUE(client->ChangeConfiguration());
    ExpectQuestions();
}

}  // namespace
}  // namespace kq
