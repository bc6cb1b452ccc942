// Questions of the logins whose answers lead somewhere else than most do, and the questions about errors that
// no step expects.
#include "client/InteractiveFixture.h"
#include "platform/Locale.h"

namespace kq {
namespace {

class LoginQuestionsTest : public InteractiveFixture {
 protected:
    bool Register() { return client->ServerLogin(true); }
    void HaveASystemLogin() {
        LogsIn();
        ASSERT_TRUE(Login());
    }
    std::ptrdiff_t Requests(const std::string& type) { return std::ranges::count(zeb.HeardTypes(), type); }

    static constexpr const char* kNoReply =
        "Could not register with the application server.  Click Yes to try again, No to perform another "
        "login, or Cancel to quit.";
    static constexpr const char* kNotHere = "Registration failed:  Not here.  Would you like to login again?";
};

// --- the system login

TEST_F(LoginQuestionsTest, AnExpiringPasswordIsChangedInTheSameLogin) {
    XMLMessage reply = FakeZeb::LoginWith("ErrorNumber", "7724");
    reply.SetField("DaysToExpirePassword", "5");
    zeb.Once(FakeZeb::kLogin, zeb.Answer(reply));
    LogsIn();
    IsAsked("Your password expires in 5 days, do you want to change it now?", BoxButton::Yes);
    user.Expect("frmPassword", [](FakeUser& at) {
        at.Types("txtOldPassword", "secret word");
        at.Types("txtNewPassword", "better word");
        at.Types("txtConfirmPassword", "better word");
        at.Clicks("cmdOK");
    });
    EXPECT_TRUE(Login());
    ExpectQuestions();
    EXPECT_EQ(Requests(FakeZeb::kLogin), 2);
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("NewPassword"), "better word");
}

struct AProgramWithoutVersion : AppObject {
    std::optional<std::string> Property(std::string_view) const override {
        throw Error(77, "the program", "No version today");
    }
};

TEST_F(LoginQuestionsTest, AnErrorThatNoStepOfTheSystemLoginExpectsIsAskedAboutWithoutTheWaitWindow) {
    login.AppObj = std::make_shared<AProgramWithoutVersion>();
    login.ClientVersion = "";
    const auto* const question =
        "An error occurred while logging in:  No version today.  Would you like to try again?";
    LogsIn();
    IsAsked(question, BoxButton::Yes);
    LogsIn();
    IsAsked(question, BoxButton::No);
    EXPECT_FALSE(Login());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

// --- the server login

TEST_F(LoginQuestionsTest, NoAfterASilenceOfTheApplicationServerWantsANewLogin) {
    HaveASystemLogin();
    app.Once(FakeAppServer::kRegister, app.Silence());
    IsAsked(kNoReply, BoxButton::No);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(LoginQuestionsTest, CancelAfterASilenceOfTheApplicationServerKeepsTheSystemLogin) {
    HaveASystemLogin();
    app.Once(FakeAppServer::kRegister, app.Silence());
    IsAsked(kNoReply, BoxButton::Cancel);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

// A machine that cannot tell its language, which a registration sends.
class AnErrorInTheServerLogin : public LoginQuestionsTest {
 protected:
    struct NoLocale : Locale {
        std::int32_t UserLocaleId() const override { throw Error(78, "the machine", "No language"); }
    };
    void SetUp() override {
        Platform::Machine parts = platform->Parts();
        parts.locale = std::make_shared<NoLocale>();
        client = std::make_unique<KQAppSessClient>(MakeBundle(parts));
        HaveASystemLogin();
    }
    void IsAskedAboutTheError(BoxButton answer) {
        IsAsked(
            "An error occurred while registering with the application server:  No language.  Would you "
            "like to login again?",
            answer);
    }
};

TEST_F(AnErrorInTheServerLogin, IsAskedAboutWithoutTheWaitWindow) {
    IsAskedAboutTheError(BoxButton::No);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(client->SessionClient(), nullptr);
}

TEST_F(AnErrorInTheServerLogin, LeadsToANewLoginWhenTheUserWantsOne) {
    IsAskedAboutTheError(BoxButton::Yes);
    EXPECT_FALSE(Register());
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

// --- both

TEST_F(LoginQuestionsTest, ALoginEndsWithAServerLoginThatTheUserDoesNotWantAgain) {
    app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration("7", "Not here")));
    LogsIn();
    IsAsked(kNotHere, BoxButton::No);
    EXPECT_FALSE(client->Login("Demo", "1.0", nullptr));
    ExpectQuestions();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(Requests(FakeZeb::kLogin), 1);
}

TEST_F(LoginQuestionsTest, ALoginEndsWithAServerLoginThatTheUserCancels) {
    app.Once(FakeAppServer::kRegister, app.Silence());
    LogsIn();
    IsAsked(kNoReply, BoxButton::Cancel);
    EXPECT_FALSE(client->Login("Demo", "1.0", nullptr));
    ExpectQuestions();
    EXPECT_EQ(Requests(FakeZeb::kLogin), 1);
}

TEST_F(LoginQuestionsTest, ALoginStartsAnewAfterNoToASilentApplicationServer) {
    app.Once(FakeAppServer::kRegister, app.Silence());
    LogsIn();
    IsAsked(kNoReply, BoxButton::No);
    LogsIn();
    EXPECT_TRUE(client->Login("Demo", "1.0", nullptr));
    ExpectQuestions();
    EXPECT_EQ(Requests(FakeZeb::kLogin), 2);
}

}  // namespace
}  // namespace kq
