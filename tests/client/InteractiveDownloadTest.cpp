// A new client that the login server offers: what each answer of the user leads to.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class InteractiveDownloadTest : public InteractiveFixture {
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

    // The next offer is taken and the installer comes.
    void TakesTheOffer() {
        Offers();
        LogsIn();
        IsAsked(kNewClient, BoxButton::Yes);
        Downloads();
    }
    void FailsToStart(BoxButton try_again) {
        machine.process->start_failure = "Permission denied";
        IsAsked(
            "An error occurred while logging in:  The new client /tmp/HLX0001.exe could not be started: "
            "Permission denied.  Would you like to try again?",
            try_again);
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

TEST_F(InteractiveDownloadTest, ADownloadedClientThatDoesNotStartIsAskedAboutWithTheReason) {
    TakesTheOffer();
    FailsToStart(BoxButton::No);
    ExpectEnded();
    EXPECT_EQ(machine.temp_files->files.at("/tmp/HLX0001.exe"), "installer");
    EXPECT_EQ(Settings().Setting("LastDownloadedClient", ""), "/tmp/HLX0001.exe");
}

TEST_F(InteractiveDownloadTest, YesAfterAClientThatDidNotStartLeadsBackToTheLoginDialog) {
    TakesTheOffer();
    FailsToStart(BoxButton::Yes);
    LogsIn();
    EXPECT_TRUE(Login());
    ExpectQuestions();
    EXPECT_EQ(Settings().Setting("LastDownloadedClient", ""), "/tmp/HLX0001.exe");
}

TEST_F(InteractiveDownloadTest, ASecondDownloadRemovesTheFirst) {
    machine.folders->files.insert("/tmp/HLX0001.exe");
    TakesTheOffer();
    FailsToStart(BoxButton::Yes);
    TakesTheOffer();
    IsAsked(
        "An error occurred while logging in:  The new client /tmp/HLX0002.exe could not be started: "
        "Permission denied.  Would you like to try again?",
        BoxButton::No);
    ExpectEnded();
    EXPECT_FALSE(machine.folders->FileExists("/tmp/HLX0001.exe"));
    EXPECT_EQ(Settings().Setting("LastDownloadedClient", ""), "/tmp/HLX0002.exe");
}

TEST_F(InteractiveDownloadTest, SaysInTheUsersLanguageWhatCouldNotBeStarted) {
    UserReads(1046);
    Offers();
    LogsIn();
    IsAsked("Uma nova versão do cliente está disponível.  Deseja atualizar?", BoxButton::Yes);
    Downloads();
    machine.process->start_failure = "x";
    IsAsked(
        "Ocorreu um erro ao fazer login:  Não foi possível iniciar o novo cliente /tmp/HLX0001.exe: x.  "
        "Deseja "
        "tentar novamente?",
        BoxButton::No);
    ExpectEnded();
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

}  // namespace
}  // namespace kq
