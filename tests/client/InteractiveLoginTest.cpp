// The logins with a user at the dialogs: every question, and where each answer leads.
#include "client/InteractiveFixture.h"
#include "support/StrayErrors.h"

namespace kq {
namespace {

using InteractiveLoginTest = InteractiveFixture;

// --- the good way

TEST_F(InteractiveLoginTest, LogsInWithWhatTheUserTypes) {
    LogsIn();
    EXPECT_TRUE(Login());
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("LoginID"), "ann");
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("Password"), "secret word");
    EXPECT_EQ(client->AppServerAddress(), FakeZeb::kAddress);
}

TEST_F(InteractiveLoginTest, KeepsTheAnswersInItsOwnSettingsThoughTheHostOpensOthersMeanwhile) {
    XMLMessage other("SessionInfo", "1");
    other.SetField("AppID", "Other");
    user.Expect("frmLogin", [&](FakeUser& at) {
        client->SetSystemLoginState(other.ToXML(), std::monostate(), std::make_shared<Profiles>(), "", "", 0,
                                    5000);
        at.Types("txtLoginID", "ann");
        at.Types("txtPassword", "secret word");
        at.Clicks("cmdOK");
    });
    EXPECT_TRUE(Login());
    EXPECT_EQ(Settings().Setting("LoginID", ""), "ann");
    EXPECT_EQ(Settings("Other").Setting("LoginID", "none"), "none");
}

TEST_F(InteractiveLoginTest, RemembersTheLoginIdAndThePreferences) {
    user.Expect("frmLogin", [](FakeUser& at) {
        at.Types("txtLoginID", "ann");
        at.Types("txtPassword", "secret word");
        at.Clicks("cmdShowHide");
        at.Clicks("cmdOK");
    });
    Login();
    EXPECT_EQ(Settings().Setting("LoginID", ""), "ann");
    EXPECT_EQ(Settings().Setting("ShowDetails", ""), "True");
    EXPECT_EQ(Settings().Setting("AskForProfile", ""), "False");
    user.Expect("frmLogin", [](FakeUser& at) {
        EXPECT_EQ(at.Sees("txtLoginID"), "ann");
        EXPECT_TRUE(at.CanSee("txtNewPassword"));
        at.Clicks("cmdCancel");
    });
    Login();
}

TEST_F(InteractiveLoginTest, CancellingTheLoginDialogEndsWithoutAWord) {
    Cancels("frmLogin");
    EXPECT_FALSE(Login());
    EXPECT_EQ(zeb.Accepted(), 0);
    EXPECT_EQ(Settings().Setting("LoginID", "none"), "none");
}

TEST_F(InteractiveLoginTest, AsksForTheServerWhenNoneIsStored) {
    StoreServer("", "");
    user.Expect("frmServer", [](FakeUser& at) {
        EXPECT_EQ(at.Sees("txtTimeOut"), "10");
        at.Types("txtAddress", FakeZeb::kAddress);
        at.Types("txtPort", "7710");
        at.Clicks("cmdOK");
    });
    LogsIn();
    EXPECT_TRUE(Login());
    EXPECT_EQ(Settings().Setting("Address", ""), FakeZeb::kAddress);
    EXPECT_EQ(Settings().Setting("TimeOut", ""), "10000");
    EXPECT_EQ(Settings().Setting("UseASServerForLogin", ""), "1");
}

TEST_F(InteractiveLoginTest, AsksForTheServerWhenOnlyThePortIsMissing) {
    StoreServer(FakeZeb::kAddress, "0");
    Cancels("frmServer");
    EXPECT_FALSE(Login());
}

TEST_F(InteractiveLoginTest, TheLoginDialogShowsAndKeepsTheServersSettings) {
    user.Expect("frmServer", [](FakeUser& at) {
        EXPECT_EQ(at.Sees("txtTimeOut"), "0");  // none is stored yet
        at.Clears("txtTimeOut");
        at.Types("txtTimeOut", "3");
        at.Clicks("cmdOK");
    });
    user.Expect("frmLogin", [](FakeUser& at) {
        at.Clicks("cmdShowHide");
        at.Clicks("cmdChangeServer");
        at.Clicks("cmdCancel");
    });
    Login();
    EXPECT_EQ(Settings().Setting("TimeOut", ""), "3000");
}

// --- every question

TEST_F(InteractiveLoginTest, AsksAgainWhenItCannotConnect) {
    zeb.StopListening();
    ExpectAgainAfter("Could not connect to login server.  Would you like to try again?");
}

TEST_F(InteractiveLoginTest, EndsWhenItCannotConnectAndTheUserGivesUp) {
    zeb.StopListening();
    ExpectGivenUpAt("Could not connect to login server.  Would you like to try again?");
}

TEST_F(InteractiveLoginTest, AsksWhenNoValidationReplyComes) {
    zeb.Once(FakeZeb::kValidate, zeb.Drop());
    ExpectGivenUpAt(
        "Did not receive a validation reply from the login server.  Would you like to try again?");
}

TEST_F(InteractiveLoginTest, AsksWhenTheValidationFails) {
    zeb.Once(FakeZeb::kValidate, zeb.Text("hello"));
    ExpectAgainAfter("Validation failed: An unknown response was received  Would you like to try again?");
}

TEST_F(InteractiveLoginTest, SaysThatTheClientIsTooOld) {
    XMLMessage reply = FakeZeb::Validation();
    reply.SetVersion("2");
    zeb.Once(FakeZeb::kValidate, zeb.Answer(reply));
    LogsIn();
    IsAsked("The login server does not support this client.  A new client version is required.",
            BoxButton::OK);
    EXPECT_FALSE(Login());
    ExpectQuestions();
    EXPECT_EQ(user.LastBox().style, BoxStyle::Information);
}

TEST_F(InteractiveLoginTest, SaysThatThereAreNoServers) {
    zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("InterfaceAvailable", "False")));
    LogsIn();
    IsAsked("No servers available for this client.", BoxButton::OK);
    EXPECT_FALSE(Login());
    ExpectQuestions();
}

TEST_F(InteractiveLoginTest, ADeclinedNewClientLetsTheLoginGoOn) {
    zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("ClientAvailable", "True")));
    LogsIn();
    IsAsked("A new client version is now available.  Would you like to upgrade?", BoxButton::No);
    EXPECT_TRUE(Login());
    ExpectQuestions();
}

TEST_F(InteractiveLoginTest, ALoginRequestThatCannotBeSentHasNoReply) {
    zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("ClientAvailable", "True")));
    LogsIn();
    questions_.push_back("A new client version is now available.  Would you like to upgrade?");
    user.Answer(BoxButton::No, [this] {
        zeb.DropAll();
        machine.loop->RunReady();
    });
    IsAsked("Did not receive a reply from the login server.  Would you like to try again?", BoxButton::No);
    EXPECT_LT(TimeOf([this] { EXPECT_FALSE(Login()); }), Milliseconds(300));
    ExpectQuestions();
}

TEST_F(InteractiveLoginTest, ALowerCaseTrueOffersNoNewClient) {
    zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("ClientAvailable", "true")));
    LogsIn();
    EXPECT_TRUE(Login());
}

TEST_F(InteractiveLoginTest, AsksWhenNoLoginReplyComes) {
    zeb.Once(FakeZeb::kLogin, zeb.Drop());
    ExpectGivenUpAt("Did not receive a reply from the login server.  Would you like to try again?");
}

TEST_F(InteractiveLoginTest, Code7721ShowsTheTextOfTheUnknownUser) {
    zeb.RefusesLogin("7721", "Who are you?", "ZEBError-132");
    ExpectAgainAfter("Login failed: Unknown User/Password.  Would you like to try again?");
}

TEST_F(InteractiveLoginTest, Code7790ShowsTheTextOfTooManyUsersInTheValidationsQuestion) {
    zeb.RefusesLogin("7790", "", "ann");
    ExpectGivenUpAt(
        "Validation failed: Too many concurrent sessions for user ann.  Please close any unneeded sessions.  "
        "Would you like to try again?");
}

TEST_F(InteractiveLoginTest, AMissingTranslationTableAsks) {
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithout("TranslationTable")));
    ExpectGivenUpAt(
        "The translation table was not found in the response from the Login Server.  Would you like to "
        "attempt to "
        "login again?");
}

TEST_F(InteractiveLoginTest, AMissingSessionRecordAsks) {
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithout("SessionInfo")));
    ExpectGivenUpAt(
        "Session information was not returned properly by the login.  Would you like to try again?");
}

TEST_F(InteractiveLoginTest, AnUnexpectedErrorAsksWithItsDescription) {
    Settings().SetSetting("UseASServerForLogin", "yes");
    IsAsked("An error occurred while logging in:  Type mismatch.  Would you like to try again?",
            BoxButton::No);
    EXPECT_FALSE(Login());
    ExpectQuestions();
}

// --- passwords

TEST_F(InteractiveLoginTest, Code7722AsksForANewPasswordAndLogsInWithIt) {
    zeb.RefusesLogin("7722");
    LogsIn();
    user.Expect("frmPassword", [](FakeUser& at) {
        at.Types("txtOldPassword", "secret word");
        at.Types("txtNewPassword", "better word");
        at.Types("txtConfirmPassword", "better word");
        at.Clicks("cmdOK");
    });
    EXPECT_TRUE(Login());
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("NewPassword"), "better word");
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("Password"), "secret word");
}

TEST_F(InteractiveLoginTest, CancellingThePasswordDialogEndsTheLoginWithoutAnError) {
    zeb.RefusesLogin("7722");
    LogsIn();
    Cancels("frmPassword");
    EXPECT_FALSE(Login());
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(InteractiveLoginTest, ANewPasswordTypedAtTheLoginTravelsWithIt) {
    LogsIn("better word");
    Login();
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("NewPassword"), "better word");
}

TEST_F(InteractiveLoginTest, AnExpiringPasswordMayBeKept) {
    XMLMessage reply = FakeZeb::LoginWith("ErrorNumber", "7724");
    reply.SetField("DaysToExpirePassword", "5");
    zeb.Once(FakeZeb::kLogin, zeb.Answer(reply));
    LogsIn();
    IsAsked("Your password expires in 5 days, do you want to change it now?", BoxButton::No);
    EXPECT_TRUE(Login());
    ExpectQuestions();
}

TEST_F(InteractiveLoginTest, AnExpiredPasswordMustBeChanged) {
    XMLMessage reply = FakeZeb::LoginWith("ErrorNumber", "7724");
    reply.SetField("DaysToExpirePassword", "0");
    zeb.Once(FakeZeb::kLogin, zeb.Answer(reply));
    LogsIn();
    Cancels("frmPassword");
    EXPECT_FALSE(Login());
}

// --- profiles

TEST_F(InteractiveLoginTest, AsksForTheProfileWhenTheUserWantsToBeAsked) {
    Settings().SetSetting("AskForProfile", "True");
    LogsIn();
    user.Expect("frmProfiles", [](FakeUser& at) {
        at.Selects("lvProfiles", "Second");
        at.Clicks("cmdChoose");
    });
    EXPECT_TRUE(Login());
    EXPECT_EQ(client->CurrentProfile()->Name(), "Second");
    EXPECT_EQ(std::ranges::count(zeb.HeardTypes(), FakeZeb::kUpload), 1);  // another choice than the last one
}

struct Trader : AppObject {
    std::optional<std::string> Property(std::string_view name) const override {
        if (name == "ProductName") return "Trader";
        if (name == "Path") return "C:\\Programs";
        if (name == "EXEName") return "trader.exe";
        return std::nullopt;
    }
};

TEST_F(InteractiveLoginTest, AShortcutMadeAtTheLoginStartsTheApplication) {
    Settings().SetSetting("AskForProfile", "True");
    login.AppObj = std::make_shared<Trader>();
    LogsIn();
    user.Expect("frmProfiles", [](FakeUser& at) {
        at.Selects("lvProfiles", "Second");
        at.Clicks("cmdShortcut");
        at.Clicks("cmdCancel");
    });
    user.AnswerPath("/home/user/Desktop/Second.lnk");
    EXPECT_FALSE(Login());
    const Shortcut& made = machine.shortcuts->made.at("/home/user/Desktop/Second.lnk");
    EXPECT_EQ(made.folder, "C:\\Programs");
    EXPECT_EQ(made.program, "trader.exe");
    EXPECT_EQ(made.arguments, "/Profile \"Second\"");
    EXPECT_EQ(made.description, "This runs the Trader application using the Second profile.");
}

TEST_F(InteractiveLoginTest, CancellingTheProfilesDialogEndsTheLogin) {
    Settings().SetSetting("AskForProfile", "True");
    LogsIn();
    Cancels("frmProfiles");
    EXPECT_FALSE(Login());
}

// --- server login included

TEST_F(InteractiveLoginTest, LoginDoesBoth) {
    LogsIn();
    EXPECT_TRUE(client->Login("Demo", "1.0", nullptr));
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
}

TEST_F(InteractiveLoginTest, LoginStartsAnewWhenTheUserWantsAnotherLogin) {
    app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration("7", "Not here")));
    LogsIn();
    IsAsked("Registration failed:  Not here.  Would you like to login again?", BoxButton::Yes);
    LogsIn();
    EXPECT_TRUE(client->Login("Demo", "1.0", nullptr));
}

TEST_F(InteractiveLoginTest, LoginEndsWhenTheUserGivesUp) {
    Cancels("frmLogin");
    EXPECT_FALSE(client->Login("Demo", "1.0", nullptr));
}

// --- profiles that are uploaded

// A login that finds one profile, which is not the last used: the choice is uploaded.
class InteractiveUploadTest : public InteractiveFixture {
 protected:
    InteractiveUploadTest() {
        Profiles one;
        one.Add(std::make_shared<Profile>("A"));
        zeb.Once(FakeZeb::kLogin, [this, one = FakeZeb::LoginWithProfiles(one)](auto& link, const auto&) {
            before_answer();
            link.Send(one);
        });
        LogsIn();
        user.Expect("frmProfiles", [](FakeUser& at) {
            at.Selects("lvProfiles", "A");
            at.Clicks("cmdChoose");
        });
    }
    std::function<void()> before_answer = [] {};
    StrayErrors stray;
};

TEST_F(InteractiveUploadTest, NoAfterAnUploadThatCannotConnectLetsTheLoginGoOn) {
    before_answer = [this] { zeb.StopListening(); };
    IsAsked("Could not connect to login server.  Would you like to try again?", BoxButton::No);
    EXPECT_TRUE(Login());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_THAT(stray.Numbers(), IsEmpty());
}

TEST_F(InteractiveUploadTest, AnUnexpectedErrorOfTheUploadIsReportedAndLetsTheLoginGoOn) {
    zeb.Once(FakeZeb::kUpload, zeb.Silence());
    EXPECT_TRUE(Login());
    ExpectQuestions();
    EXPECT_EQ(client->CurrentProfile()->Name(), "A");
    EXPECT_THAT(stray.Numbers(), ElementsAre(static_cast<std::int32_t>(NetError::TimedOut)));
}

TEST_F(InteractiveLoginTest, AnUploadThatCannotConnectAsksUntilTheUserGivesUp) {
    LogsIn();
    Login();
    zeb.StopListening();
    const std::string question = "Could not connect to login server.  Would you like to try again?";
    IsAsked(question, BoxButton::Yes);
    IsAsked(question, BoxButton::Yes);
    IsAsked(question, BoxButton::No);
    std::string address = FakeZeb::kAddress;
    std::int32_t port = 7710;
    std::int32_t time_out = 1000;
    EXPECT_FALSE(client->UpdateProfilesEx(true, address, port, time_out));
    ExpectQuestions();
}

}  // namespace
}  // namespace kq
