// The logins with a user at the dialogs: every question, and where each answer leads.
#include "client/LoginFixture.h"

namespace kq {
namespace {

class InteractiveLoginTest : public LoginFixture {
 protected:
    InteractiveLoginTest() : LoginFixture(FakePlatform::Face::WithDialogs), user(*machine.dialogs) {
        StoreServer(FakeZeb::kAddress, "7710");
        login.LoginID = "";  // the dialogs ask for everything
        login.Password = Secret();
        login.Address = "";
        login.Port = 0;
        login.TimeOut = 0;
    }
    ~InteractiveLoginTest() override {
        EXPECT_EQ(user.ScriptsLeft(), 0U);
        EXPECT_EQ(user.AnswersLeft(), 0U);
        EXPECT_EQ(user.OpenWindows(), 0U);
    }

    void StoreServer(const std::string& address, const std::string& port) {
        Settings().SetSetting("Address", address);
        Settings().SetSetting("Port", port);
    }
    bool Login() { return client->SystemLogin(true, login); }

    // What the user does at the next login dialog.
    void LogsIn(const std::string& new_password = {}) {
        user.Expect("frmLogin", [new_password](FakeUser& at) {
            at.Types("txtLoginID", "ann");
            at.Types("txtPassword", "secret word");
            if (!new_password.empty()) {
                at.Clicks("cmdShowHide");
                at.Types("txtNewPassword", new_password);
            }
            at.Clicks("cmdOK");
        });
    }
    void Cancels(const std::string& form) {
        user.Expect(form, [](FakeUser& at) { at.Clicks("cmdCancel"); });
    }
    // The next question is the text, and is answered so; the wait window is gone while it is asked.
    void IsAsked(const std::string& text, BoxButton answer) {
        questions_.push_back(text);
        user.Answer(answer, [this] { EXPECT_FALSE(WaitIsShown()); });
    }
    bool WaitIsShown() {
        try {
            return user.Window("frmWait").IsOpen();
        } catch (const FakeFailure&) {
            return false;
        }
    }
    void ExpectQuestions() {
        std::vector<std::string> asked;
        for (const auto& box : user.Boxes()) {
            asked.push_back(box.text);
            EXPECT_EQ(box.caption, "Login Procedure");
        }
        EXPECT_EQ(asked, questions_);
    }
    // A failed login whose question is answered with No ends as failed, without an error.
    void ExpectGivenUpAt(const std::string& question) {
        LogsIn();
        IsAsked(question, BoxButton::No);
        EXPECT_FALSE(Login());
        ExpectQuestions();
        EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    }
    // Yes leads back to the login dialog, where the user gives up.
    void ExpectAgainAfter(const std::string& question) {
        LogsIn();
        IsAsked(question, BoxButton::Yes);
        Cancels("frmLogin");
        EXPECT_FALSE(Login());
        ExpectQuestions();
    }

    FakeDialogHost& user;
    std::vector<std::string> questions_;
};

// --- the good way

TEST_F(InteractiveLoginTest, LogsInWithWhatTheUserTypes) {
    LogsIn();
    EXPECT_TRUE(Login());
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("LoginID"), "ann");
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("Password"), "secret word");
    EXPECT_EQ(client->AppServerAddress(), FakeZeb::kAddress);
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

TEST_F(InteractiveLoginTest, APortBeyondAllNumbersAsksAsAnUnexpectedError) {
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWith("Port", "99999999999")));
    ExpectGivenUpAt("An error occurred while logging in:  Overflow.  Would you like to try again?");
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

// --- download

class InteractiveDownloadTest : public InteractiveLoginTest {
 protected:
    // The login server has a new client for this one.
    void Offers(XMLMessage validation = FakeZeb::Validation()) {
        validation.SetField("ClientAvailable", "True");
        zeb.Once(FakeZeb::kValidate, zeb.Answer(validation));
    }
    // It serves no client of this version any more, or has no servers for it.
    void OffersToAClientThatIsTooOld() {
        XMLMessage validation = FakeZeb::Validation();
        validation.SetVersion("2");
        Offers(validation);
    }
    void OffersWithoutServers() { Offers(FakeZeb::ValidationWith("InterfaceAvailable", "False")); }

    // The next download succeeds, or fails and the user does so about it.
    void Downloads() {
        zeb.Once(kDownload, zeb.Raw("installer"));
        user.Expect("frmDownload", [](FakeUser&) {});
    }
    void FailsToDownload(BoxButton try_again) {
        zeb.Once(kDownload, zeb.Answer(FakeZeb::Refusal("ASDownloadClientResponse", "5", "No client", "")));
        user.Expect("frmDownload", [](FakeUser&) {});
        IsAsked("An error occurred while downloading: No client.  Would you like to try to login again?",
                try_again);
    }
    // The login ends in favour of the new client, which runs.
    void ExpectTakenOver() {
        EXPECT_FALSE(Login());
        ExpectQuestions();
        ASSERT_EQ(machine.process->started.size(), 1U);
        EXPECT_EQ(Settings().Setting("LastDownloadedClient", ""), machine.process->started.front());
    }
    void ExpectEnded() {
        EXPECT_FALSE(Login());
        ExpectQuestions();
        EXPECT_THAT(machine.process->started, IsEmpty());
        EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    }

    static constexpr const char* kDownload = "ASDownloadClientRequest";
    static constexpr const char* kNewClient =
        "A new client version is now available.  Would you like to upgrade?";
    static constexpr const char* kTooOld =
        "The login server does not support this client.  A new client version is required.  Download new "
        "client now?";
    static constexpr const char* kNoServers =
        "No servers available for this client.  Would you like to download a new client?";
};

TEST_F(InteractiveDownloadTest, ADownloadedClientIsStartedAndTakesOver) {
    Offers();
    LogsIn();
    IsAsked(kNewClient, BoxButton::Yes);
    Downloads();
    ExpectTakenOver();
}

TEST_F(InteractiveDownloadTest, ADownloadThatFailsAndIsGivenUpIsOfferedAgain) {
    Offers();
    LogsIn();
    IsAsked(kNewClient, BoxButton::Yes);
    FailsToDownload(BoxButton::No);
    IsAsked(kNewClient, BoxButton::No);
    EXPECT_TRUE(Login());
    ExpectQuestions();
}

TEST_F(InteractiveDownloadTest, YesAfterADownloadThatFailedLeadsBackToTheLoginDialog) {
    Offers();
    LogsIn();
    IsAsked(kNewClient, BoxButton::Yes);
    FailsToDownload(BoxButton::Yes);
    LogsIn();
    EXPECT_TRUE(Login());
    ExpectQuestions();
    EXPECT_EQ(zeb.Accepted(), 2);
}

TEST_F(InteractiveDownloadTest, AClientThatIsTooOldIsReplacedWhenTheUserAgrees) {
    OffersToAClientThatIsTooOld();
    LogsIn();
    IsAsked(kNewClient, BoxButton::No);
    IsAsked(kTooOld, BoxButton::Yes);
    Downloads();
    ExpectTakenOver();
}

TEST_F(InteractiveDownloadTest, AClientThatIsTooOldEndsWhenTheUserDeclinesTheNewOne) {
    OffersToAClientThatIsTooOld();
    LogsIn();
    IsAsked(kNewClient, BoxButton::No);
    IsAsked(kTooOld, BoxButton::No);
    ExpectEnded();
    EXPECT_EQ(std::ranges::count(zeb.HeardTypes(), kDownload), 0);
}

TEST_F(InteractiveDownloadTest, AClientThatIsTooOldIsOfferedTheSameAfterADownloadGivenUp) {
    OffersToAClientThatIsTooOld();
    LogsIn();
    IsAsked(kNewClient, BoxButton::No);
    IsAsked(kTooOld, BoxButton::Yes);
    FailsToDownload(BoxButton::No);
    IsAsked(kTooOld, BoxButton::No);
    ExpectEnded();
}

TEST_F(InteractiveDownloadTest, AClientWithoutServersIsReplacedWhenTheUserAgrees) {
    OffersWithoutServers();
    LogsIn();
    IsAsked(kNewClient, BoxButton::No);
    IsAsked(kNoServers, BoxButton::Yes);
    Downloads();
    ExpectTakenOver();
}

TEST_F(InteractiveDownloadTest, AClientWithoutServersEndsWhenTheUserDeclinesTheNewOne) {
    OffersWithoutServers();
    LogsIn();
    IsAsked(kNewClient, BoxButton::No);
    IsAsked(kNoServers, BoxButton::No);
    ExpectEnded();
    EXPECT_EQ(std::ranges::count(zeb.HeardTypes(), kDownload), 0);
}

TEST_F(InteractiveDownloadTest, AClientWithoutServersIsOfferedTheSameAfterADownloadGivenUp) {
    OffersWithoutServers();
    LogsIn();
    IsAsked(kNewClient, BoxButton::No);
    IsAsked(kNoServers, BoxButton::Yes);
    FailsToDownload(BoxButton::No);
    IsAsked(kNoServers, BoxButton::No);
    ExpectEnded();
}

// --- the server login

class InteractiveServerLoginTest : public InteractiveLoginTest {
 protected:
    void SetUp() override {
        LogsIn();
        ASSERT_TRUE(Login());
    }
    bool Register() { return client->ServerLogin(true); }
    static constexpr const char* kNoConnect =
        "Could not connect to the application server.  Click Yes to try again, No to perform another login, "
        "or Cancel "
        "to quit.";
    static constexpr const char* kNoReply =
        "Could not register with the application server.  Click Yes to try again, No to perform another "
        "login, or "
        "Cancel to quit.";
};

TEST_F(InteractiveServerLoginTest, ShowsTheWaitWindowWhileItRegisters) {
    std::string caption;
    app.Once(FakeAppServer::kRegister, [&](ScriptedPeer::Link& link, const XMLMessage&) {
        caption = user.Window("frmWait").SeesCaption();
        link.Send(FakeAppServer::Registration());
    });
    EXPECT_TRUE(Register());
    EXPECT_EQ(caption, "Registering...");
}

TEST_F(InteractiveServerLoginTest, NoAtAnUnreachableServerWantsANewLogin) {
    app.StopListening();
    IsAsked(kNoConnect, BoxButton::No);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    EXPECT_FALSE(client->SessionInfo()->IsInitialized());
    EXPECT_EQ(client->Profiles(), nullptr);
}

TEST_F(InteractiveServerLoginTest, CancelAtAnUnreachableServerKeepsTheSystemLogin) {
    app.StopListening();
    IsAsked(kNoConnect, BoxButton::Yes);
    IsAsked(kNoConnect, BoxButton::Cancel);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(InteractiveServerLoginTest, YesAfterASilenceRegistersAgainOnTheSameConnection) {
    app.Once(FakeAppServer::kRegister, app.Silence());
    IsAsked(kNoReply, BoxButton::Yes);
    EXPECT_TRUE(Register());
    EXPECT_EQ(app.Accepted(), 1);
}

TEST_F(InteractiveServerLoginTest, YesAfterALostConnectionWantsANewLogin) {
    app.Once(FakeAppServer::kRegister, app.Drop());
    IsAsked(kNoReply, BoxButton::Yes);
    EXPECT_FALSE(Register());
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(InteractiveServerLoginTest, NoAtARefusalKeepsTheSystemLogin) {
    app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration("7", "Not here")));
    IsAsked("Registration failed:  Not here.  Would you like to login again?", BoxButton::No);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

// --- both in one

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

// --- the configuration

TEST_F(InteractiveLoginTest, ChangeConfigurationBeforeAnyLoginNeedsASession) {
    EXPECT_EQ(ErrorOf([this] { client->ChangeConfiguration(); }).Number(), kqaserrLoginSessionRequired);
}

TEST_F(InteractiveLoginTest, ChangeConfigurationShowsAndKeepsTheSettings) {
    LogsIn();
    Login();
    user.Expect("frmServer", [](FakeUser& at) {
        EXPECT_EQ(at.Sees("txtTimeOut"), "10");
        EXPECT_TRUE(at.SeesTicked("chkUseASServerforLogin"));
        at.Unticks("chkUseASServerforLogin");
        at.Clicks("cmdOK");
    });
    EXPECT_TRUE(client->ChangeConfiguration());
    EXPECT_EQ(Settings().Setting("UseASServerForLogin", ""), "0");
}

TEST_F(InteractiveLoginTest, ACancelledConfigurationWritesNothing) {
    LogsIn();
    Login();
    const int writes = machine.profile_file->write_count;
    Cancels("frmServer");
    EXPECT_FALSE(client->ChangeConfiguration());
    EXPECT_EQ(machine.profile_file->write_count, writes);
}

TEST_F(InteractiveLoginTest, AMalformedStoredFlagReachesTheCallerOfChangeConfiguration) {
    LogsIn();
    Login();
    Settings().SetSetting("UseASServerForLogin", "yes");
    EXPECT_EQ(ErrorOf([this] { client->ChangeConfiguration(); }).Number(),
              NumberOf(RuntimeError::TypeMismatch));
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
