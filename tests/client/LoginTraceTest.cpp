// What the trace says of logins that succeed, fail, are cancelled and are terminated.
#include <stdexcept>

#include "client/InteractiveFixture.h"
#include "client/TracedLogin.h"
#include "support/StrayErrors.h"

namespace kq {
namespace {

class LoginTraceTest : public LoginFixture {
 protected:
    TracedLogin trace{*client};
};

class InteractiveLoginTraceTest : public InteractiveFixture {
 protected:
    TracedLogin trace{*client};
};

// --- logins that succeed

TEST_F(LoginTraceTest, NamesEveryStepOfASilentLogin) {
    LogInWhole();
    EXPECT_THAT(
        trace.Lines(),
        ElementsAre("SystemLogin lsGetLoginInfo 0 lsAttemptConnectZEB",
                    "SystemLogin lsAttemptConnectZEB 0 lsValidateClient",
                    "SystemLogin lsValidateClient 250 lsCheckValidZEBInterface",
                    "SystemLogin lsCheckValidZEBInterface 0 lsCheckValidInterface",
                    "SystemLogin lsCheckValidInterface 0 lsAttemptLogin",
                    "SystemLogin lsAttemptLogin 250 lsGetTranslation",
                    "SystemLogin lsGetTranslation 0 lsGetSessionInfo",
                    "SystemLogin lsGetSessionInfo 0 lsGetProfile",
                    "SystemLogin lsGetProfile 0 lsFinish",  //
                    "SystemLogin lsFinish 0 ended", "ServerLogin lsAttemptConnectServer 0 lsAttemptRegister",
                    "ServerLogin lsAttemptRegister 500 lsFinish", "ServerLogin lsFinish 0 ended"));
}

TEST_F(LoginTraceTest, SaysWhatEachStateIsFor) {
    SystemLogin();
    EXPECT_EQ(trace.Steps().front().Role,
              "gets address and credentials; in the server login: gives up for a new login");
    EXPECT_EQ(trace.Steps().back().Role, "records the result and ends with success");
}

TEST_F(InteractiveLoginTraceTest, NamesEveryStepOfAnInteractiveLoginWithTheTimeOfItsUser) {
    user.Expect("frmLogin", [](FakeUser& at) {
        at.Waits(Milliseconds(3000));
        at.Types("txtLoginID", "ann");
        at.Types("txtPassword", "secret word");
        at.Clicks("cmdOK");
    });
    ASSERT_TRUE(client->Login("Demo", "1.0", nullptr));
    EXPECT_THAT(
        trace.Lines(),
        ElementsAre("SystemLogin lsGetLoginInfo 3000 lsAttemptConnectZEB",
                    "SystemLogin lsAttemptConnectZEB 0 lsValidateClient",
                    "SystemLogin lsValidateClient 250 lsCheckValidZEBInterface",
                    "SystemLogin lsCheckValidZEBInterface 0 lsCheckValidInterface",
                    "SystemLogin lsCheckValidInterface 0 lsAttemptLogin",
                    "SystemLogin lsAttemptLogin 250 lsGetTranslation",
                    "SystemLogin lsGetTranslation 0 lsGetSessionInfo",
                    "SystemLogin lsGetSessionInfo 0 lsGetProfile",
                    "SystemLogin lsGetProfile 0 lsFinish",  //
                    "SystemLogin lsFinish 0 ended", "ServerLogin lsAttemptConnectServer 0 lsAttemptRegister",
                    "ServerLogin lsAttemptRegister 500 lsFinish", "ServerLogin lsFinish 0 ended"));
}

// --- logins that fail

TEST_F(LoginTraceTest, NamesTheErrorOfARefusalAndTheCleanUp) {
    zeb.RefusesLogin("7721", "Unknown", "ZEBError-132");
    SystemLoginError();
    EXPECT_THAT(trace.LinesFrom("lsAttemptLogin"),
                ElementsAre("SystemLogin lsAttemptLogin 250 0x80040A0D", "SystemLogin lsFailed 0 ended"));
}

TEST_F(LoginTraceTest, NamesTheConnectionsErrorBehindTheRaisedOne) {
    zeb.StopListening();
    SystemLoginError();
    EXPECT_THAT(
        trace.LinesFrom("lsAttemptConnectZEB"),
        ElementsAre("SystemLogin lsAttemptConnectZEB 0 0x80040A06 10061", "SystemLogin lsFailed 0 ended"));
}

TEST_F(LoginTraceTest, TimesAReplyThatDoesNotCome) {
    zeb.Once(FakeZeb::kLogin, zeb.Silence());
    SystemLoginError();
    EXPECT_THAT(
        trace.LinesFrom("lsAttemptLogin"),
        ElementsAre("SystemLogin lsAttemptLogin 10250 0x80040A05 10060", "SystemLogin lsFailed 0 ended"));
}

TEST_F(LoginTraceTest, NamesTheConnectionsErrorThatAServerLoginKeepsToItself) {
    SystemLogin();
    app.StopListening();
    ServerLoginError();
    EXPECT_THAT(
        trace.LinesFrom("lsAttemptConnectServer"),
        ElementsAre("ServerLogin lsAttemptConnectServer 0 0x80040A10 10061", "ServerLogin lsFailed 0 ended"));
}

TEST_F(LoginTraceTest, SaysNothingOfAProcedureThatCannotStart) {
    ServerLoginError();
    EXPECT_THAT(trace.Lines(), IsEmpty());
}

TEST_F(InteractiveLoginTraceTest, NamesTheErrorThatBecameAQuestionAndWhereTheAnswerLeads) {
    zeb.RefusesLogin("7721", "Unknown", "ZEBError-132");
    LogsIn();
    user.Answer(BoxButton::No);
    EXPECT_FALSE(Login());
    EXPECT_THAT(
        trace.LinesFrom("lsAttemptLogin"),
        ElementsAre("SystemLogin lsAttemptLogin 250 lsFailed 0x80040A0D", "SystemLogin lsFailed 0 ended"));
}

TEST_F(InteractiveLoginTraceTest, NamesTheErrorThatNoStepExpects) {
    Settings().SetSetting("AskForProfile", "perhaps");
    user.Answer(BoxButton::No);
    EXPECT_FALSE(Login());
    EXPECT_THAT(trace.Lines(), ElementsAre("SystemLogin lsGetLoginInfo 0 lsFailed 0x800A000D",
                                           "SystemLogin lsFailed 0 ended"));
}

TEST_F(InteractiveLoginTraceTest, FollowsAServerLoginThatWantsANewLogin) {
    LogsIn();
    ASSERT_TRUE(Login());
    app.StopListening();
    user.Answer(BoxButton::No);
    EXPECT_FALSE(client->ServerLogin(true));
    EXPECT_THAT(trace.LinesFrom("lsAttemptConnectServer"),
                ElementsAre("ServerLogin lsAttemptConnectServer 0 lsGetLoginInfo 10061 0x80040A10",
                            "ServerLogin lsGetLoginInfo 0 ended"));
}

// --- users who give up

TEST_F(InteractiveLoginTraceTest, LeadsACancelledDialogToTheFailedState) {
    Cancels("frmLogin");
    EXPECT_FALSE(Login());
    EXPECT_THAT(trace.Lines(),
                ElementsAre("SystemLogin lsGetLoginInfo 0 lsFailed", "SystemLogin lsFailed 0 ended"));
}

TEST_F(InteractiveLoginTraceTest, CallsAStepCancelledWhoseWaitWindowIsClosed) {
    zeb.Once(FakeZeb::kValidate,
             [this](ScriptedPeer::Link&, const XMLMessage&) { user.Window("frmWait").Closes(); });
    LogsIn();
    EXPECT_FALSE(Login());
    EXPECT_THAT(trace.LinesFrom("lsValidateClient"),
                ElementsAre(testing::StartsWith("SystemLogin lsValidateClient 0 cancelled"),
                            "SystemLogin lsFailed 0 ended"));
}

// --- the end of the client

TEST_F(LoginTraceTest, NamesTheInterruptionOfAStep) {
    zeb.Once(FakeZeb::kLogin, [this](ScriptedPeer::Link&, const XMLMessage&) { client->TerminateClient(); });
    SystemLoginError();
    EXPECT_THAT(trace.LinesFrom("lsAttemptLogin"),
                ElementsAre(testing::StartsWith("SystemLogin lsAttemptLogin 0 10004"),
                            "SystemLogin lsFailed 0 ended"));
}

TEST_F(LoginTraceTest, IsTakenByAHandlerThatTerminatesTheClient) {
    trace.At("lsCheckValidInterface", [this] { client->TerminateClient(); });
    EXPECT_EQ(SystemLoginError().Number(), static_cast<std::int32_t>(NetError::Interrupted));
    EXPECT_THAT(trace.LinesFrom("lsAttemptLogin"),
                ElementsAre("SystemLogin lsAttemptLogin 0 10004", "SystemLogin lsFailed 0 ended"));
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(LoginTraceTest, IsTakenByAHandlerThatDropsTheClient) {
    trace.At("lsCheckValidInterface", [this] { client.reset(); });
    EXPECT_EQ(ErrorOf([&] { client->SystemLogin(false, login); }).Number(),
              static_cast<std::int32_t>(NetError::Interrupted));
    EXPECT_THAT(trace.LinesFrom("lsAttemptLogin"), IsEmpty());
}

// --- errors that nobody is shown

TEST_F(LoginTraceTest, NamesTheErrorOfARequestThatCannotBeSent) {
    trace.At("lsCheckValidInterface", [this] {
        zeb.DropAll();
        machine.loop->ProcessPending();
    });
    SystemLoginError();
    EXPECT_THAT(trace.LinesFrom("lsAttemptLogin"),
                ElementsAre("SystemLogin lsAttemptLogin 0 0x80040A05 10057", "SystemLogin lsFailed 0 ended"));
}

// An application object whose property cannot be read.
struct BrokenAppObject : AppObject {
    std::optional<std::string> Property(std::string_view) const override {
        throw std::runtime_error("no version");
    }
};

TEST_F(LoginTraceTest, CallsAStepFailedThatEndsWithAnExceptionOfTheHost) {
    login.ClientVersion = "";
    login.AppObj = std::make_shared<BrokenAppObject>();
    EXPECT_THROW(SystemLogin(), std::runtime_error);
    EXPECT_THAT(trace.LinesFrom("lsValidateClient"),
                ElementsAre("SystemLogin lsValidateClient 0 failed", "SystemLogin lsFailed 0 ended"));
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(LoginTraceTest, NamesTheErrorOfAnUploadThatFailsWithoutNotice) {
    const StrayErrors stray;
    client->SetUseProfiles(false);  // makes the profile "Default"
    zeb.Once(FakeZeb::kLogin, [this](ScriptedPeer::Link& link, const XMLMessage&) {
        zeb.StopListening();
        link.Send(FakeZeb::LoginWithProfiles(Profiles()));
    });
    EXPECT_TRUE(SystemLogin());
    EXPECT_THAT(
        trace.LinesFrom("lsGetProfile"),
        ElementsAre("SystemLogin lsGetProfile 0 lsFinish 10061 0x80040A06", "SystemLogin lsFinish 0 ended"));
}

TEST_F(LoginTraceTest, NamesTheErrorsOfARegistrationThatIsTriedAgain) {
    SystemLogin();
    machine.loop->StartTimer(Milliseconds(100), [this] { app.DropAll(); });
    EXPECT_TRUE(ServerLogin());
    EXPECT_THAT(trace.LinesFrom("lsAttemptConnectServer"),
                ElementsAre("ServerLogin lsAttemptConnectServer 0 lsAttemptRegister",
                            "ServerLogin lsAttemptRegister 250 lsAttemptConnectServer 10057",
                            "ServerLogin lsAttemptConnectServer 0 lsAttemptRegister",
                            "ServerLogin lsAttemptRegister 500 lsFinish", "ServerLogin lsFinish 0 ended"));
}

}  // namespace
}  // namespace kq
