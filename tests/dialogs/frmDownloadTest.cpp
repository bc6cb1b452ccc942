// The download against a login server that a test scripts: what comes, what is saved, what the user is asked.
#include "dialogs/DialogsTesting.h"
#include "dialogs/frmDownload.h"
#include "support/FakeZeb.h"

namespace kq {
namespace {

constexpr auto kRequest = "ASDownloadClientRequest";

std::string Failed(const std::string& reason) {
    return "An error occurred while downloading: " + reason + ".  Would you like to try to login again?";
}

XMLMessage Refusal(const std::string& number, const std::string& description) {
    XMLMessage reply("ASDownloadClientResponse", "1");
    reply.SetField("ErrorNumber", number);
    reply.SetField("ErrorDesc", description);
    return reply;
}

struct Download : DialogScene {
    Download() {
        client->SetReceiveMode(ReceiveMode::Take);
        client->SetReceiveType(DataType::XML);
        client->Connect(FakeZeb::kAddress, FakeZeb::kPort, "", 0);
    }
    bool Runs(FakeDialogHost::Script script = {}) {
        host.Expect("frmDownload", std::move(script));
        return dialog.DownloadClient(client, path, try_again);
    }
    // Fails and asks the question with the reason.
    void FailsBecauseOf(const std::string& reason) {
        host.Answer(BoxButton::No);
        EXPECT_FALSE(Runs());
        BoxSaid(Failed(reason), "Login Procedure", BoxStyle::YesNo);
        EXPECT_EQ(path, "unchanged");
        EXPECT_EQ(machine.fakes.temp_files->files.count("/tmp/HLX0001.exe"), 0U);
    }

    FakeZeb zeb{machine.fakes};
    std::shared_ptr<APClient> client = APClient::Create(machine.platform);
    frmDownload dialog{machine.platform};
    std::string path = "unchanged";
    bool try_again = true;
};

TEST_F(Download, SavesTheInstallerAsAProgramInTheTemporaryFolder) {
    const std::string bytes("MZ\0\xFF\x01", 5);
    zeb.On(kRequest, FakeZeb::Raw(bytes));
    EXPECT_TRUE(Runs());
    EXPECT_EQ(path, "/tmp/HLX0001.exe");
    EXPECT_EQ(machine.fakes.temp_files->files.at("/tmp/HLX0001.exe"), bytes);
    EXPECT_TRUE(try_again);
}

TEST_F(Download, LeavesTheEmptyTemporaryFileBesideTheProgram) {
    zeb.On(kRequest, FakeZeb::Raw("MZ"));
    Runs();
    EXPECT_EQ(machine.fakes.temp_files->files.at("/tmp/HLX0001.tmp"), "");
    EXPECT_EQ(machine.fakes.temp_files->files.size(), 2U);
}

TEST_F(Download, SavesAnEmptyInstaller) {
    zeb.On(kRequest, FakeZeb::Raw(""));
    EXPECT_TRUE(Runs());
    EXPECT_EQ(machine.fakes.temp_files->files.at(path), "");
}

TEST_F(Download, SendsARequestWithoutFields) {
    zeb.On(kRequest, FakeZeb::Raw("MZ"));
    Runs();
    const XMLMessage heard = zeb.Latest(kRequest);
    EXPECT_EQ(heard.Type(), kRequest);
    EXPECT_EQ(heard.Version(), "1");
    EXPECT_TRUE(heard.Root().Children().empty());
}

TEST_F(Download, ShowsItsTextsAndAnEmptyBar) {
    zeb.On(kRequest, FakeZeb::Raw("MZ"));
    Runs([](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "Downloading...");
        EXPECT_EQ(user.Sees("lblIntro"), "The new version of the client is now downloading.  Please wait.");
        EXPECT_EQ(user.SeesProgress("pbProgress"), Progress{});
        EXPECT_TRUE(user.Window().Modal());
    });
}

TEST_F(Download, ChangesTheConnectionsSettingsForItsTimeOnly) {
    zeb.On(kRequest, FakeZeb::Raw("MZ"));
    Runs([&](FakeUser&) {
        EXPECT_EQ(client->ReceiveMode(), ReceiveMode::Events);
        EXPECT_EQ(client->ReceiveType(), DataType::Any);
    });
    EXPECT_EQ(client->ReceiveMode(), ReceiveMode::Take);
    EXPECT_EQ(client->ReceiveType(), DataType::XML);
}

TEST_F(Download, RestoresTheSettingsAfterAFailureToo) {
    zeb.On(kRequest, FakeZeb::Answer(Refusal("5", "No client")));
    host.Answer(BoxButton::No, [&] { EXPECT_EQ(client->ReceiveType(), DataType::Any); });
    Runs();
    EXPECT_EQ(client->ReceiveMode(), ReceiveMode::Take);
    EXPECT_EQ(client->ReceiveType(), DataType::XML);
}

TEST_F(Download, ShowsHowFarItIs) {
    zeb.On(kRequest, FakeZeb::Silence());
    host.Answer(BoxButton::No);
    Runs([&](FakeUser& user) {
        client->Progress("", 250, 1000);
        EXPECT_EQ(user.SeesProgress("pbProgress"), (Progress{0, 1000, 250}));
        client->Progress("", 5'000'000'000, 6'000'000'000);
        EXPECT_EQ(user.SeesProgress("pbProgress"), (Progress{0, 6'000'000'000, 5'000'000'000}));
    });
}

TEST_F(Download, ShowsNothingAsDoneWhenTheTotalIsUnknown) {
    zeb.On(kRequest, FakeZeb::Silence());
    host.Answer(BoxButton::No);
    Runs([&](FakeUser& user) {
        client->Progress("", 250, 0);
        EXPECT_EQ(user.SeesProgress("pbProgress"), (Progress{0, 0, 0}));
    });
}

TEST_F(Download, CannotBeClosedByHand) {
    zeb.On(kRequest, FakeZeb::Raw("MZ"));
    EXPECT_TRUE(Runs([](FakeUser& user) {
        user.Closes();
        user.Presses(Key::Escape);
        user.Presses(Key::Enter);
        EXPECT_TRUE(user.IsOpen());
    }));
}

// --- Failures

TEST_F(Download, TellsTheServersReason) {
    zeb.On(kRequest, FakeZeb::Answer(Refusal("5", "No client")));
    FailsBecauseOf("No client");
    EXPECT_EQ(dialog.LastFailure().number, 5);
}

TEST_F(Download, ReturnsTheUsersAnswer) {
    zeb.On(kRequest, FakeZeb::Answer(Refusal("5", "No client")));
    host.Answer(BoxButton::No);
    EXPECT_FALSE(Runs());
    EXPECT_FALSE(try_again);
    host.Answer(BoxButton::Yes);
    EXPECT_FALSE(Runs());
    EXPECT_TRUE(try_again);
}

TEST_F(Download, ReadsTheNumberOfARefusalAsFarAsItIsOne) {
    for (const auto& [text, number] :
         {std::pair{"5x", 5}, {"", 0}, {"x", 0}, {"99999999999", 0}, {"1e999", 0}}) {
        zeb.On(kRequest, FakeZeb::Answer(Refusal(text, "No client")));
        FailsBecauseOf("No client");
        EXPECT_EQ(dialog.LastFailure().number, number) << text;
    }
}

TEST_F(Download, TakesAnyMessageForARefusal) {
    zeb.On(kRequest, FakeZeb::Answer(XMLMessage("ASLoginResponse", "1")));
    FailsBecauseOf("");
}

TEST_F(Download, DoesNotUnderstandOtherAnswers) {
    zeb.On(kRequest, FakeZeb::Text("this is no message"));
    FailsBecauseOf(Failed("An unknown response was received"));
    EXPECT_EQ(dialog.LastFailure().number, -1);
}

TEST_F(Download, DoesNotUnderstandOtherTypesOfData) {
    zeb.On(kRequest, FakeZeb::Silence());
    host.Answer(BoxButton::No);
    EXPECT_FALSE(Runs([&](FakeUser&) { client->Receive(Block{static_cast<DataType>(7), "", "?"}); }));
    EXPECT_EQ(host.LastBox().text, Failed(Failed("An unknown response was received")));
    EXPECT_EQ(dialog.LastFailure().number, -1);
}

TEST_F(Download, EndsWithTheUnknownResponseWhenTheServerSendsAnotherTypeOfData) {
    for (const int type : {1, 64, 255}) {
        zeb.On(kRequest, [type](ScriptedPeer::Link& link, const XMLMessage&) { link.SendFrame(type, "?"); });
        FailsBecauseOf(Failed("An unknown response was received"));
        EXPECT_EQ(dialog.LastFailure().number, -1);
    }
    EXPECT_TRUE(client->Connected());
}

TEST_F(Download, TellsWhyTheConnectionFailed) {
    zeb.On(kRequest, FakeZeb::Reset());
    FailsBecauseOf(NetErrorText(10054));
    EXPECT_EQ(dialog.LastFailure().number, 10054);
}

TEST_F(Download, EndsWithTheConnection) {
    zeb.On(kRequest, FakeZeb::Drop());
    FailsBecauseOf(NetErrorText(10054));
    EXPECT_EQ(dialog.LastFailure().number, 10054);
}

TEST_F(Download, EndsWhenTheProgramDisconnects) {
    zeb.On(kRequest, FakeZeb::Silence());
    host.Answer(BoxButton::No);
    EXPECT_FALSE(Runs([&](FakeUser&) { client->Disconnect(); }));
    EXPECT_EQ(host.LastBox().text, Failed(NetErrorText(10054)));
}

TEST_F(Download, IsNotShownWhenTheRequestCannotBeSent) {
    client->Disconnect();
    host.Answer(BoxButton::No);
    EXPECT_FALSE(dialog.DownloadClient(client, path, try_again));
    EXPECT_EQ(host.LastBox().text, Failed(NetErrorText(10057)));
    EXPECT_TRUE(host.Shown().empty());
}

TEST_F(Download, TellsWhyTheFileCouldNotBeWritten) {
    zeb.On(kRequest, FakeZeb::Raw("MZ"));
    machine.fakes.temp_files->next_failure = {112, "There is not enough space on the disk"};
    FailsBecauseOf("There is not enough space on the disk");
    EXPECT_EQ(dialog.LastFailure().number, 112);
}

TEST_F(Download, DoesNotOverwriteAProgramThatIsThere) {
    zeb.On(kRequest, FakeZeb::Raw("MZ"));
    machine.fakes.temp_files->files["/tmp/HLX0001.exe"] = "mine";
    host.Answer(BoxButton::No);
    EXPECT_FALSE(Runs());
    EXPECT_EQ(host.LastBox().text, Failed("The file exists"));
    EXPECT_EQ(machine.fakes.temp_files->files.at("/tmp/HLX0001.exe"), "mine");
}

TEST_F(Download, CountsTheFirstOutcomeOnly) {
    zeb.On(kRequest, FakeZeb::Silence());
    host.Answer(BoxButton::No, [&] { client->Receive(Block{DataType::Raw, "", "MZ"}); });
    EXPECT_FALSE(Runs([&](FakeUser&) {
        client->Receive(Block{DataType::XML, "", Refusal("5", "No client").ToXML()});
        const auto timers = loop.TimerCount();
        client->Receive(Block{DataType::Raw, "", "MZ"});
        client->Error(10054, "gone");
        client->Progress("", 1, 2);
        EXPECT_EQ(loop.TimerCount(), timers);
    }));
    EXPECT_EQ(host.LastBox().text, Failed("No client"));
    EXPECT_TRUE(machine.fakes.temp_files->files.empty());
}

// --- The watchdog

TEST_F(Download, GivesUpAfterFifteenSecondsWithoutProgress) {
    zeb.On(kRequest, FakeZeb::Silence());
    const auto start = loop.Now();
    FailsBecauseOf(Failed("The process timed-out"));
    EXPECT_EQ(loop.Now() - start, std::chrono::seconds(15));
    EXPECT_EQ(dialog.LastFailure().number, -1);
}

TEST_F(Download, GoesOnAsLongAsThereIsProgress) {
    zeb.On(kRequest, FakeZeb::Silence());
    EXPECT_TRUE(Runs([&](FakeUser& user) {
        for (int i = 1; i <= 10; ++i) {
            user.Waits(std::chrono::milliseconds(14'999));
            client->Progress("", i, 11);
        }
        client->Receive(Block{DataType::Raw, "", "MZ"});
    }));
}

TEST_F(Download, CountsTheFifteenSecondsFromTheLastProgress) {
    zeb.On(kRequest, FakeZeb::Silence());
    host.Answer(BoxButton::No);
    EXPECT_FALSE(Runs([&](FakeUser& user) {
        user.Waits(std::chrono::seconds(14));
        client->Progress("", 1, 2);
        user.Waits(std::chrono::milliseconds(14'999));
        EXPECT_TRUE(user.IsOpen());
        user.Waits(std::chrono::milliseconds(1));
        EXPECT_FALSE(user.IsOpen());
    }));
}

TEST_F(Download, ReceivesALongInstallerInManyPieces) {
    const std::string bytes(300'000, 'x');
    zeb.On(kRequest, FakeZeb::Raw(bytes));
    std::int64_t seen = 0;
    Owner owner;
    client->Progress.Connect(owner,
                             [&](const std::string&, std::int64_t so_far, std::int64_t) { seen = so_far; });
    EXPECT_TRUE(Runs());
    EXPECT_EQ(machine.fakes.temp_files->files.at(path), bytes);
    EXPECT_EQ(seen, 300'000);
}

TEST_F(Download, AsksNobodyWhenTheProgramEnds) {
    zeb.On(kRequest, FakeZeb::Silence());
    EXPECT_FALSE(Runs([&](FakeUser&) { loop.Quit(); }));
    EXPECT_FALSE(try_again);
    EXPECT_TRUE(host.Boxes().empty());
}

}  // namespace
}  // namespace kq
