// Dialog objects that go while their window is open, loops that quit, programs without a face.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/DialogsTesting.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmProfiles.h"
#include "dialogs/frmServer.h"
#include "dialogs/frmWait.h"

namespace kq {
namespace {

struct DialogLife : DialogScene {
    bool LogsIn(frmLogin& dialog) { return dialog.Login(answer, true, nullptr); }
    LoginAnswer answer{.ask_for_profile = true, .show_details = true};
};

TEST_F(DialogLife, ClosesTheWindowWhenTheObjectGoes) {
    std::optional<frmLogin> dialog(std::in_place, machine.platform);
    host.Expect("frmLogin", [&](FakeUser& user) {
        dialog.reset();
        EXPECT_FALSE(user.IsOpen());
    });
    EXPECT_FALSE(LogsIn(*dialog));
}

TEST_F(DialogLife, ClosesTheDialogOnTopAsWell) {
    std::optional<frmLogin> dialog(std::in_place, machine.platform);
    host.Expect("frmServer", [&](FakeUser& user) {
        dialog.reset();
        EXPECT_FALSE(user.IsOpen());
    });
    host.Expect("frmLogin", [](FakeUser& user) { user.Clicks("cmdChangeServer"); });
    EXPECT_FALSE(LogsIn(*dialog));
}

TEST_F(DialogLife, OpensNoServerDialogWhenTheObjectGoesWhileItAsksForTheServer) {
    auto dialog = std::make_unique<frmLogin>(machine.platform);
    bool saved = false;
    dialog->GetAddressPort = [&](auto&&...) { dialog.reset(); };
    dialog->SaveAddressPort = [&](auto&&...) { saved = true; };
    host.Expect("frmLogin", [](FakeUser& user) { user.Clicks("cmdChangeServer"); });
    EXPECT_FALSE(LogsIn(*dialog));
    EXPECT_EQ(host.Shown(), std::vector<std::string>{"frmLogin"});
    EXPECT_FALSE(saved);
}

TEST_F(DialogLife, ALoginDialogThatGoesUnderItsMessageReturnsAsCancelled) {
    auto dialog = std::make_unique<frmLogin>(machine.platform);
    host.Answer(BoxButton::OK, [&] { dialog.reset(); });
    host.Expect("frmLogin", [](FakeUser& user) {
        user.Types("txtLoginID", "ann");
        user.Types("txtNewPassword", "better");
        user.Unticks("chkAskForProfile");
        user.Clicks("cmdOK");
        EXPECT_FALSE(user.IsOpen());
    });
    answer.login_id = "bob";
    answer.password = Secret("old");
    answer.new_password = Secret("older");
    EXPECT_FALSE(LogsIn(*dialog));
    BoxSaid("A password must be specified.", "Login Procedure", BoxStyle::Warning);
    EXPECT_EQ(answer.login_id, "bob");
    EXPECT_EQ(answer.password.Reveal(), "old");
    EXPECT_EQ(answer.new_password.Reveal(), "older");
    EXPECT_TRUE(answer.ask_for_profile);
}

TEST_F(DialogLife, AServerDialogThatGoesUnderItsMessageReturnsAsCancelled) {
    auto dialog = std::make_unique<frmServer>(machine.platform);
    host.Answer(BoxButton::OK, [&] { dialog.reset(); });
    host.Expect("frmServer", [](FakeUser& user) {
        user.Types("txtAddress", "other");
        user.Types("txtPort", "80");
        user.Clears("txtTimeOut");
        user.Unticks("chkUseASServerforLogin");
        user.Clicks("cmdOK");
        EXPECT_FALSE(user.IsOpen());
    });
    ServerSettings server{"zeb", 7710, 10'000, true};
    EXPECT_FALSE(dialog->GetServerInfo(server, nullptr));
    BoxSaid("Time-out value must be greater than 0 and less than 60 seconds.", "KQAppSessionLib",
            BoxStyle::Warning);
    EXPECT_EQ(server.address, "zeb");
    EXPECT_EQ(server.port, 7710);
    EXPECT_EQ(server.time_out, 10'000);
    EXPECT_TRUE(server.use_as_server_for_login);
}

TEST_F(DialogLife, APasswordDialogThatGoesUnderItsMessageReturnsAsCancelled) {
    auto dialog = std::make_unique<frmPassword>(machine.platform);
    host.Answer(BoxButton::OK, [&] { dialog.reset(); });
    host.Expect("frmPassword", [](FakeUser& user) {
        user.Types("txtOldPassword", "old");
        user.Types("txtNewPassword", "better");
        user.Types("txtConfirmPassword", "bitter");
        user.Clicks("cmdOK");
        EXPECT_FALSE(user.IsOpen());
    });
    Secret old_password("a");
    Secret new_password("b");
    EXPECT_FALSE(dialog->GetPassword(old_password, new_password, nullptr));
    BoxSaid("The passwords you typed do not match. Type the new password in both text boxes.",
            "KQAppSessionLib", BoxStyle::Warning);
    EXPECT_EQ(old_password.Reveal(), "a");
    EXPECT_EQ(new_password.Reveal(), "b");
}

struct ProfilesLife : DialogLife {
    bool GetsProfile() { return dialog->GetProfile(profiles, current, "", ProgramInfo(), nullptr, changed); }
    std::unique_ptr<frmProfiles> dialog = std::make_unique<frmProfiles>(machine.platform);
    std::shared_ptr<Profiles> profiles = std::make_shared<Profiles>();
    std::shared_ptr<Profile> current;
    bool changed = false;
};

TEST_F(ProfilesLife, AsksNothingAboutAnEmptyCollectionWhenTheObjectHasGone) {
    host.Answer(BoxButton::OK);  // what profiles are
    host.Expect("frmProfiles", [&](FakeUser&) { dialog.reset(); });
    EXPECT_FALSE(GetsProfile());
}

TEST_F(ProfilesLife, IsNotShownWhenTheObjectGoesUnderTheExplanation) {
    host.Answer(BoxButton::OK, [&] { dialog.reset(); });
    EXPECT_FALSE(GetsProfile());
    EXPECT_TRUE(host.Shown().empty());
}

TEST_F(ProfilesLife, RemovesNothingWhenTheObjectGoesUnderItsQuestion) {
    profiles->Add(std::make_shared<Profile>("Sales"));
    host.Answer(BoxButton::Yes, [&] { dialog.reset(); });
    host.Expect("frmProfiles", [](FakeUser& user) {
        user.Selects("lvProfiles", "Sales");
        user.Clicks("cmdRemove");
        EXPECT_FALSE(user.IsOpen());
    });
    EXPECT_FALSE(GetsProfile());
    EXPECT_TRUE(profiles->Exists("Sales"));
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesLife, AddsNothingWhenTheObjectGoesUnderTheDialogForAName) {
    host.Expect("frmNewProfile", [&](FakeUser& user) {
        user.Types("txtName", "Sales");
        user.Waits(Milliseconds(100));
        dialog.reset();
        if (user.IsOpen()) user.Clicks("cmdOK");
    });
    profiles->Add(std::make_shared<Profile>("Main"));
    host.Expect("frmProfiles", [](FakeUser& user) { user.Clicks("cmdNew"); });
    EXPECT_FALSE(GetsProfile());
    EXPECT_FALSE(profiles->Exists("Sales"));
}

TEST_F(DialogLife, ReturnsAsCancelledWhenTheLoopQuits) {
    frmLogin dialog(machine.platform);
    host.Expect("frmLogin", [&](FakeUser&) { loop.Quit(); });
    EXPECT_FALSE(LogsIn(dialog));
}

TEST(DialogsWithoutAFace, RaiseAnError) {
    EnglishMachine machine(FakePlatform::Face::None);
    constexpr auto kInvalidCall = NumberOf(RuntimeError::InvalidProcedureCall);
    Secret secret;
    EXPECT_EQ(ErrorOf([&] { frmPassword(machine.platform).GetPassword(secret, secret, nullptr); }).Number(),
              kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { frmWait(machine.platform).ShowWait(300); }).Number(), kInvalidCall);
}

TEST_F(DialogLife, EndsWithTheErrorOfAMissingText) {
    Secret secret;
    const Error error =
        ErrorOf([&] { frmPassword(machine.fakes.platform).GetPassword(secret, secret, nullptr); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::ResourceNotFound));
    EXPECT_TRUE(host.Shown().empty());
}

}  // namespace
}  // namespace kq
