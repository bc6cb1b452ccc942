// The dialogs at a terminal.
#include "dialogs/frmDownload.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmNewProfile.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmProfiles.h"
#include "dialogs/frmServer.h"
#include "support/FakeZeb.h"
#include "tty/TtyScene.h"

namespace kq {
namespace {

struct LoginOnTty : TtyScene {
    bool Login() { return frmLogin(platform).Login(answer, use_profiles, nullptr); }
    LoginAnswer answer{.login_id = "ann"};
    bool use_profiles = false;
};

TEST_F(LoginOnTty, AsksBoxesAndThenButtons) {
    terminal->Types({"bob", "secret", ""});
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.login_id, "bob");
    EXPECT_EQ(answer.password.Reveal(), "secret");
    EXPECT_EQ(terminal->Screen(),
              "\n-- Please Login\nLogin ID [ann]: bob\nPassword: \n"
              "  1. OK\n  2. Cancel\n  3. Show More >>\n[1]: \n");
}

TEST_F(LoginOnTty, KeepsWhatIsThereAfterAnEmptyAnswer) {
    terminal->Types({"", "secret", "1"});
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.login_id, "ann");
}

TEST_F(LoginOnTty, AsksAgainAfterAMessage) {
    terminal->Types({" ", "secret", "", /* the message */ "", "eve", "", ""});
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.login_id, "eve");
    EXPECT_EQ(answer.password.Reveal(), "secret");
    EXPECT_TRUE(terminal->Shows("A login ID must be specified.\n"));
    EXPECT_TRUE(terminal->Shows("Password [*]: "));
}

TEST_F(LoginOnTty, AsksAgainForWhatTheMessageNames) {
    terminal->Types({"", "", "", /* the message */ "", "secret", ""});
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.password.Reveal(), "secret");
    EXPECT_TRUE(terminal->Shows("[1]: \n\n-- Please Login\nPassword: \n  1. OK")) << terminal->Screen();
}

TEST_F(LoginOnTty, AsksEverythingAgainAfterAButtonThatLeavesItOpen) {
    terminal->Types({"", "secret", "3", "bob", "", "", ""});
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.login_id, "bob");
}

TEST_F(LoginOnTty, NeverShowsAPassword) {
    terminal->Types({"", "Swordfish", ""});
    Login();
    EXPECT_FALSE(terminal->Shows("Swordfish"));
}

TEST_F(LoginOnTty, AsksForTheRestWhenTheUserWantsMore) {
    use_profiles = true;
    terminal->Types({"", "old", "3", "", "", "new", "y", "ok"});
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.new_password.Reveal(), "new");
    EXPECT_TRUE(answer.ask_for_profile);
    EXPECT_TRUE(answer.show_details);
    EXPECT_TRUE(terminal->Shows("Always prompt for profile (y/n) [n]: "));
}

TEST_F(LoginOnTty, IsCancelledByTheInterruptKeyAndByTheEndOfTheInput) {
    terminal->Types({"bob"});
    terminal->PressesInterrupt();
    EXPECT_FALSE(Login());
    EXPECT_FALSE(Login());
    EXPECT_EQ(answer.login_id, "ann");
}

TEST_F(LoginOnTty, EndsWhenTheFormIsHiddenDuringAQuestion) {
    auto dialog = std::make_unique<frmLogin>(platform);
    terminal->Types({"bob"});
    terminal->Waits([&] { dialog.reset(); });
    EXPECT_FALSE(dialog->Login(answer, false, nullptr));
}

TEST_F(LoginOnTty, LeadsToTheServerDialogAndBack) {
    frmLogin dialog(platform);
    std::string saved;
    dialog.SaveAddressPort = [&](const ServerSettings& server) {
        saved = server.address + " " + std::to_string(server.port) + " " + std::to_string(server.time_out);
    };
    answer.show_details = true;
    terminal->Types({"", "pw", "", "Change", "zeb", "7710", "5", "n", ""});
    terminal->PressesInterrupt();
    EXPECT_FALSE(dialog.Login(answer, false, nullptr));
    EXPECT_EQ(saved, "zeb 7710 5000");
    EXPECT_TRUE(terminal->Shows("Connection Time-out (in seconds) [0]: "));
}

using PasswordOnTty = TtyScene;

TEST_F(PasswordOnTty, AsksAllThreeWithoutEcho) {
    Secret old_password, new_password;
    terminal->Types({"Old1", "New2", "New2", ""});
    EXPECT_TRUE(frmPassword(platform).GetPassword(old_password, new_password, nullptr));
    EXPECT_EQ(new_password.Reveal(), "New2");
    EXPECT_FALSE(terminal->Shows("Old1"));
    EXPECT_FALSE(terminal->Shows("New2"));
}

struct ProfilesOnTty : TtyScene {
    bool Choose() {
        return frmProfiles(platform).GetProfile(profiles, current, "", {"Demo", "/opt", "demo"}, nullptr,
                                                changed);
    }
    std::shared_ptr<Profiles> profiles = std::make_shared<Profiles>();
    std::shared_ptr<Profile> current;
    bool changed = false;
};

TEST_F(ProfilesOnTty, ChoosesFromAList) {
    profiles->Add(std::make_shared<Profile>("Purchasing"));
    profiles->Add(std::make_shared<Profile>("Sales"));
    terminal->Types({"2", ""});
    EXPECT_TRUE(Choose());
    EXPECT_EQ(current->Name(), "Sales");
    EXPECT_TRUE(terminal->Shows("Please select or create a profile:\n  1. Purchasing\n  2. Sales\n[1]: 2\n"));
}

TEST_F(ProfilesOnTty, WaitsForAButtonThatIsEnabledAMomentLater) {
    std::string name;
    terminal->Types({"Ware*house", "ok"});
    EXPECT_TRUE(frmNewProfile(platform).GetNewProfile(name, nullptr));
    EXPECT_EQ(name, "Warehouse");
}

TEST_F(ProfilesOnTty, OffersOnlyButtonsThatCanBeUsed) {
    terminal->Types({/* information */ "", "2"});
    terminal->PressesInterrupt();
    EXPECT_FALSE(Choose());
    EXPECT_TRUE(terminal->Shows("create a profile:\n  1. New\n  2. Cancel\n1-2: 2\n")) << terminal->Screen();
}

TEST_F(ProfilesOnTty, MakesANewProfile) {
    terminal->Types({/* information */ "", "New", "Sales", "", /* list */ "", ""});
    EXPECT_TRUE(Choose());
    EXPECT_EQ(current->Name(), "Sales");
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesOnTty, GivesUpAtTheEndOfTheInput) {
    EXPECT_FALSE(Choose());
    EXPECT_TRUE(terminal->Shows("A profile has not been created."));
}

struct DownloadOnTty : TtyScene {
    DownloadOnTty() {
        client->SetReceiveMode(ReceiveMode::Take);
        client->Connect(FakeZeb::kAddress, FakeZeb::kPort, "", 0);
    }
    FakeZeb zeb{machine.fakes};
    std::shared_ptr<APClient> client = APClient::Create(platform);
};

TEST_F(DownloadOnTty, TellsHowFarItIs) {
    machine.fakes.loop->StartTimer(Milliseconds(10), [&] { client->Progress("", 1, 2); });
    machine.fakes.loop->StartTimer(Milliseconds(20), [&] { client->Progress("", 2, 2); });
    machine.fakes.loop->StartTimer(Milliseconds(30), [&] { client->Error(10054, "It broke"); });
    std::string path;
    bool try_again = false;
    terminal->Types({"y"});
    EXPECT_FALSE(frmDownload(platform).DownloadClient(client, path, try_again));
    EXPECT_TRUE(try_again);
    EXPECT_TRUE(terminal->Shows("now downloading.  Please wait.\n\r50 %\r100 %\n")) << terminal->Screen();
    EXPECT_TRUE(terminal->Shows("It broke"));
}

TEST_F(DownloadOnTty, TellsHowFarItIsInLinesWhereNothingCanBeRewritten) {
    terminal->CannotRewrite();
    machine.fakes.loop->StartTimer(Milliseconds(10), [&] { client->Progress("", 1, 2); });
    machine.fakes.loop->StartTimer(Milliseconds(20), [&] { client->Error(10054, "It broke"); });
    std::string path;
    bool try_again = false;
    EXPECT_FALSE(frmDownload(platform).DownloadClient(client, path, try_again));
    EXPECT_FALSE(try_again);
    EXPECT_TRUE(terminal->Shows("Please wait.\n50 %\n\n!  ")) << terminal->Screen();
}

// A form of a kind that no dialog is: its user cannot give it up at once.
struct StubbornForm : TtyScene {
    std::shared_ptr<Form> Load(Closing closing) {
        using enum ControlKind;
        const auto form = Form::Load(platform, {.name = "frmStubborn",
                                                .cancel_button = "cmdCancel",
                                                .closing = closing,
                                                .controls = {{.kind = TextBox, .name = "txtBox"},
                                                             {.kind = Label, .name = "lblNews"},
                                                             {.kind = Button, .name = "cmdCancel"}}});
        form->SetCaption("Stubborn");
        form->At("cmdCancel").SetText("Cancel");
        form->At("cmdCancel").OnClick([this] { ++cancels; });
        return form;
    }
    int cancels = 0;
};

TEST_F(StubbornForm, IsAskedAgainAndClosedWhenItsUserGivesUpTwice) {
    const auto form = Load(Closing::Hides);
    terminal->PressesInterrupt();
    terminal->Types({"text"});
    terminal->PressesInterrupt();
    terminal->PressesInterrupt();
    form->ShowModal();
    EXPECT_EQ(cancels, 3);
    EXPECT_FALSE(form->Visible());
}

TEST_F(StubbornForm, WaitsForItsEndWhereClosingIsRefused) {
    const auto form = Load(Closing::Refused);
    machine.fakes.loop->StartTimer(Milliseconds(1000), [&] { form->Hide(); });
    form->ShowModal();
    EXPECT_EQ(cancels, 2);
}

TEST_F(StubbornForm, TellsWhatChangesWhileItAsks) {
    const auto form = Load(Closing::Hides);
    terminal->Waits([&] { form->At("lblNews").SetText("News"); });
    terminal->Waits([&] { form->Hide(); });
    form->ShowModal();
    EXPECT_TRUE(terminal->Shows("Stubborn: \nNews\nStubborn: \n")) << terminal->Screen();
}

}  // namespace
}  // namespace kq
