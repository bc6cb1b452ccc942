// "ASPasswordChangeRequest".
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class PasswordChange : public ZebTest {
 protected:
    void SetUp() override {
        StartZeb();
        AddUser("anastasia");
        AddUser("bob", "bobs password");
        server = RunningServer();
        session = Login("anastasia").SessionID;
    }
    ASPasswordChangeRequest Request(const std::string& new_password,
                                    const std::string& old_password = kPassword) {
        ASPasswordChangeRequest request;
        request.AppID = kApp;
        request.LoginID = "anastasia";
        request.SessionID = session;
        request.OldPassword = Secret(old_password);
        request.NewPassword = Secret(new_password);
        return request;
    }
    ASPasswordChangeResponse Change(const ASPasswordChangeRequest& request) {
        return ASPasswordChangeResponse::Read(Ask(request.Build()));
    }
    void ExpectPasswordRefused(const std::string& new_password, Refusal refusal) {
        ExpectRefused(Change(Request(new_password)), refusal);
    }

    std::unique_ptr<TestAppServer> server;
    std::string session;
};

TEST_F(PasswordChange, StoresTheNewPassword) {
    ExpectGranted(Change(Request("battery staple")));
    ExpectGranted(Login("anastasia", "battery staple"));
    ExpectRefused(Login("anastasia"), Refusal::UnknownUser);
}

TEST_F(PasswordChange, AWrongOldPasswordIsRefused) {
    ExpectRefused(Change(Request("battery staple", "wrong password")), Refusal::UnknownUser);
}

TEST_F(PasswordChange, TheOldPasswordIsNoNewOne) {
    ExpectPasswordRefused(kPassword, Refusal::SamePassword);
}

TEST_F(PasswordChange, TheLoginIdIsNoPasswordInAnyCase) {
    ExpectPasswordRefused("Anastasia", Refusal::PasswordIsLogin);
}

TEST_F(PasswordChange, LengthIsCountedInCharacters) {
    ExpectPasswordRefused("", Refusal::PasswordLength);
    ExpectPasswordRefused("1234567", Refusal::PasswordLength);
    ExpectPasswordRefused("äöüäöüä", Refusal::PasswordLength);
    ExpectPasswordRefused(std::string(65, 'x'), Refusal::PasswordLength);
    ExpectGranted(Change(Request(std::string(64, 'x'))));
}

TEST_F(PasswordChange, ControlCharactersAreRefused) {
    ExpectPasswordRefused("tab\there it is", Refusal::PasswordCharacter);
}

TEST_F(PasswordChange, ARefusedChangeKeepsTheOldPassword) {
    Change(Request("short"));
    ExpectGranted(Login("anastasia"));
}

TEST_F(PasswordChange, TheSessionMustBelongToTheUserAndTheApplication) {
    auto request = Request("battery staple", "bobs password");
    request.LoginID = "bob";
    ExpectRefused(Change(request), Refusal::NoSession);
    request = Request("battery staple");
    request.AppID = "Other";
    ExpectRefused(Change(request), Refusal::NoSession);
    request = Request("battery staple");
    request.SessionID = "unknown";
    ExpectRefused(Change(request), Refusal::NoSession);
}

TEST_F(PasswordChange, ADisabledUserHasNoSession) {
    Accounts accounts(store);
    accounts.SetDisabled(accounts.Find("anastasia")->uid, true);
    ExpectRefused(Change(Request("battery staple")), Refusal::NoSession);
}

TEST_F(PasswordChange, ARelayedChangeIsAnsweredWithItsTransID) {
    server->Relay(Request("battery staple").Build(), "5");
    const auto reply = server->ExpectHeard();
    EXPECT_EQ(reply.Type(), "ASPasswordChangeResponse");
    EXPECT_EQ(reply.Field("TransID"), "5");
    ExpectGranted(reply);
}

TEST_F(PasswordChange, OfTwoChangesAtOnceOneWins) {
    executor.hold = true;
    const auto first = NewClient();
    const auto second = NewClient();
    first->Send(Request("first password").Build());
    second->Send(Request("second password").Build());
    machine.loop->RunReady();
    executor.RunHeld();
    XMLMessage reply;
    reply.LoadXML(first->TakeBlock(0).data);
    ExpectGranted(reply);
    reply.LoadXML(second->TakeBlock(0).data);
    ExpectRefused(reply, Refusal::UnknownUser);
}

}  // namespace
}  // namespace kq::zeb
