// A client that is terminated or dropped while a dialog of its login is open: the dialog goes, nothing is
// kept.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class InteractiveTerminationTest : public InteractiveFixture {
 protected:
    // While the form is open, and once it has gone, the login has ended.
    void ExpectTheEndAt(const std::string& form, const std::function<void()>& end) {
        user.Expect(form, [&](FakeUser& at) {
            end();
            EXPECT_FALSE(at.IsOpen());
        });
        ExpectInterrupted();
    }
    void ExpectInterrupted() {
        EXPECT_EQ(ErrorOf([this] { Login(); }).Number(), static_cast<std::int32_t>(NetError::Interrupted));
    }
    std::function<void()> Terminates() {
        return [this] { client->TerminateClient(); };
    }
};

TEST_F(InteractiveTerminationTest, ClosesTheLoginDialogAndKeepsNothing) {
    ExpectTheEndAt("frmLogin", Terminates());
    EXPECT_EQ(Settings().Setting("LoginID", "none"), "none");
    EXPECT_EQ(zeb.Accepted(), 0);
}

TEST_F(InteractiveTerminationTest, ClosesTheDialogOfAClientThatIsDropped) {
    auto dropped = std::move(client);
    user.Expect("frmLogin", [&](FakeUser& at) {
        dropped.reset();
        EXPECT_FALSE(at.IsOpen());
    });
    EXPECT_EQ(ErrorOf([&] { dropped->SystemLogin(true, login); }).Number(),
              static_cast<std::int32_t>(NetError::Interrupted));
}

TEST_F(InteractiveTerminationTest, ClosesTheServerDialog) {
    StoreServer("", "");
    ExpectTheEndAt("frmServer", Terminates());
}

TEST_F(InteractiveTerminationTest, ClosesThePasswordDialog) {
    LogsIn();
    zeb.RefusesLogin("7722");
    ExpectTheEndAt("frmPassword", Terminates());
}

TEST_F(InteractiveTerminationTest, ClosesTheProfilesDialog) {
    user.Expect("frmLogin", [](FakeUser& at) {
        at.Types("txtLoginID", "ann");
        at.Types("txtPassword", "secret word");
        at.Clicks("cmdShowHide");
        at.Ticks("chkAskForProfile");
        at.Clicks("cmdOK");
    });
    ExpectTheEndAt("frmProfiles", Terminates());
}

// The end comes while the box is open; whatever was pressed then does not count.
TEST_F(InteractiveTerminationTest, ClosesAQuestion) {
    zeb.StopListening();
    LogsIn();
    user.Answer(BoxButton::Yes, Terminates());
    ExpectInterrupted();
    EXPECT_EQ(user.Withdrawn(), 1U);
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(InteractiveTerminationTest, ClosesAQuestionOfAServerLogin) {
    LogsIn();
    ASSERT_TRUE(Login());
    app.StopListening();
    user.Answer(BoxButton::Yes, Terminates());
    EXPECT_EQ(ErrorOf([this] { client->ServerLogin(true); }).Number(),
              static_cast<std::int32_t>(NetError::Interrupted));
    EXPECT_EQ(user.Withdrawn(), 1U);
}

TEST_F(InteractiveTerminationTest, ClosesTheMessageOfADialog) {
    user.Expect("frmLogin", [](FakeUser& at) { at.Clicks("cmdOK"); });
    user.Answer(BoxButton::OK, Terminates());
    ExpectInterrupted();
    EXPECT_EQ(user.Withdrawn(), 1U);
}

TEST_F(InteractiveTerminationTest, ClosesTheMessageOfADialogOverAnother) {
    user.Expect("frmLogin", [](FakeUser& at) {
        at.Clicks("cmdShowHide");
        at.Clicks("cmdChangeServer");
    });
    user.Expect("frmServer", [](FakeUser& at) {
        at.Types("txtPort", "x");
        at.Clicks("cmdOK");
    });
    user.Answer(BoxButton::OK, Terminates());
    ExpectInterrupted();
    EXPECT_EQ(user.Withdrawn(), 1U);
}

TEST_F(InteractiveTerminationTest, ClosesAMessageBeforeItsDialogOpens) {
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithProfiles(Profiles())));
    LogsIn();
    user.Answer(BoxButton::OK, Terminates());  // what profiles are
    ExpectInterrupted();
    EXPECT_EQ(user.Withdrawn(), 1U);
}

TEST_F(InteractiveTerminationTest, ClosesTheQuestionAfterADownload) {
    LogsIn();
    user.Answer(BoxButton::Yes);
    zeb.Once(FakeZeb::kValidate, FakeZeb::Answer(FakeZeb::ValidationWith("ClientAvailable", "True")));
    zeb.On("ASDownloadClientRequest", FakeZeb::Drop());
    user.Expect("frmDownload", [](FakeUser&) {});
    user.Answer(BoxButton::Yes, Terminates());
    ExpectInterrupted();
    EXPECT_EQ(user.Withdrawn(), 1U);
}

TEST_F(InteractiveTerminationTest, EndsADownloadWithoutAQuestion) {
    LogsIn();
    user.Answer(BoxButton::Yes);
    zeb.Once(FakeZeb::kValidate, FakeZeb::Answer(FakeZeb::ValidationWith("ClientAvailable", "True")));
    zeb.On("ASDownloadClientRequest", FakeZeb::Silence());
    user.Expect("frmDownload", [&](FakeUser& at) {
        client->TerminateClient();
        EXPECT_FALSE(at.IsOpen());
    });
    EXPECT_EQ(ErrorOf([this] { Login(); }).Number(), static_cast<std::int32_t>(NetError::Interrupted));
    EXPECT_EQ(user.Boxes().size(), 1U);  // the offer
}

TEST_F(InteractiveTerminationTest, ClosesTheDialogOfAChangedConfiguration) {
    LogsIn();
    ASSERT_TRUE(Login());
    user.Expect("frmServer", [&](FakeUser& at) {
        at.Types("txtAddress", "elsewhere.example");
        client->TerminateClient();
        EXPECT_FALSE(at.IsOpen());
    });
    EXPECT_EQ(ErrorOf([this] { client->ChangeConfiguration(); }).Number(),
              static_cast<std::int32_t>(NetError::Interrupted));
    EXPECT_EQ(Settings().Setting("Address", ""), FakeZeb::kAddress);
}

TEST_F(InteractiveTerminationTest, TheServerDialogOfALoginHasNoIcon) {
    class SomeIcon : public Icon {};
    StoreServer("", "");
    login.AppIcon = std::make_shared<SomeIcon>();
    user.Expect("frmServer", [](FakeUser& at) {
        EXPECT_EQ(at.Window().FormIcon(), nullptr);
        at.Types("txtAddress", FakeZeb::kAddress);
        at.Types("txtPort", "7710");
        at.Clicks("cmdOK");
    });
    user.Expect("frmLogin", [&](FakeUser& at) {
        EXPECT_EQ(at.Window().FormIcon(), login.AppIcon);
        at.Clicks("cmdCancel");
    });
    EXPECT_FALSE(Login());
}

}  // namespace
}  // namespace kq
