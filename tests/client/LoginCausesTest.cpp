// What is behind the errors of a silent system login, where their numbers do not tell.
#include "client/LoginFixture.h"

namespace kq {
namespace {

using LoginCausesTest = LoginFixture;

TEST_F(LoginCausesTest, ALoginThatIsNotAnsweredIsNotABadLoginByItsCause) {
    zeb.Once(FakeZeb::kLogin, zeb.Silence());
    const Error silent = SystemLoginError();
    EXPECT_EQ(silent.Number(), kqaserrLoginBadLogin);
    EXPECT_EQ(silent.Cause(), ErrorCause::NoReply);
    login.Password = Secret();
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::Arguments);
}

TEST_F(LoginCausesTest, ARefusalForTheServersOwnFailureIsOneByItsCause) {
    for (const char* code : {"7602", "7603", "7604", "7609"}) {
        zeb.RefusesLogin(code, "Later");
        EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::ServerFailure) << code;
        zeb.Once(FakeZeb::kValidate,
                 zeb.Answer(FakeZeb::Refusal("ASValidateClientResponse", code, "Later", "")));
        EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::ServerFailure) << code;
    }
    for (const char* code : {"7721", "7601", "7790", "7605", "1"}) {
        zeb.RefusesLogin(code, "No");
        EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::Credentials) << code;
    }
}

TEST_F(LoginCausesTest, AReplyThatIsNotValidIsTheServersFailure) {
    zeb.Once(FakeZeb::kLogin, zeb.Text("hello"));
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::ServerFailure);
    zeb.Once(FakeZeb::kValidate, zeb.Text("hello"));
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::ServerFailure);
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithout("SessionInfo")));
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::ServerFailure);
}

TEST_F(LoginCausesTest, TellsTheOtherCausesApart) {
    zeb.RefusesLogin("7722");
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::PasswordChange);
    zeb.Once(FakeZeb::kValidate, zeb.Drop());
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::NoReply);
    zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("InterfaceAvailable", "False")));
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::Version);
    zeb.StopListening();
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::NoConnection);
    Settings().SetSetting("UseASServerForLogin", "yes");
    EXPECT_EQ(SystemLoginError().Cause(), ErrorCause::Arguments);
}

}  // namespace
}  // namespace kq
