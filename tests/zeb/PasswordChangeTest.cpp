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
    std::string Code(const std::string& new_password) { return Change(Request(new_password)).ErrorParam; }

    std::unique_ptr<TestAppServer> server;
    std::string session;
};

TEST_F(PasswordChange, StoresTheNewPassword) {
    const auto reply = Change(Request("battery staple"));
    EXPECT_EQ(reply.ErrorNumber, "0");
    EXPECT_EQ(reply.ErrorParam + reply.ErrorDesc, "");
    EXPECT_EQ(Login("anastasia", "battery staple").ErrorNumber, "0");
    EXPECT_EQ(Login("anastasia").ErrorNumber, "7721");
}

TEST_F(PasswordChange, AWrongOldPasswordIsRefused) {
    const auto reply = Change(Request("battery staple", "wrong password"));
    EXPECT_EQ(reply.ErrorNumber, "7721");
    EXPECT_EQ(reply.ErrorParam, "ZEBError-132");
}

TEST_F(PasswordChange, TheOldPasswordIsNoNewOne) {
    EXPECT_EQ(Code(kPassword), "ZEBError-130");
}

TEST_F(PasswordChange, TheLoginIdIsNoPasswordInAnyCase) {
    EXPECT_EQ(Code("Anastasia"), "ZEBError-305");
}

TEST_F(PasswordChange, LengthIsCountedInCharacters) {
    EXPECT_EQ(Code(""), "ZEBError-301");
    EXPECT_EQ(Code("1234567"), "ZEBError-301");
    EXPECT_EQ(Code("äöüäöüä"), "ZEBError-301");
    EXPECT_EQ(Code(std::string(65, 'x')), "ZEBError-301");
    EXPECT_EQ(Code(std::string(64, 'x')), "");
}

TEST_F(PasswordChange, ControlCharactersAreRefused) {
    EXPECT_EQ(Code("tab\there it is"), "ZEBError-302");
}

TEST_F(PasswordChange, ARefusedChangeKeepsTheOldPassword) {
    Change(Request("short"));
    EXPECT_EQ(Login("anastasia").ErrorNumber, "0");
}

TEST_F(PasswordChange, TheSessionMustBelongToTheUserAndTheApplication) {
    auto request = Request("battery staple", "bobs password");
    request.LoginID = "bob";
    EXPECT_EQ(Change(request).ErrorNumber, "7605");
    request = Request("battery staple");
    request.AppID = "Other";
    EXPECT_EQ(Change(request).ErrorNumber, "7605");
    request = Request("battery staple");
    request.SessionID = "unknown";
    EXPECT_EQ(Change(request).ErrorNumber, "7605");
}

TEST_F(PasswordChange, ARelayedChangeIsAnsweredWithItsTransID) {
    server->Relay(Request("battery staple").Build(), "5");
    const auto reply = server->Heard();
    EXPECT_EQ(reply.Type(), "ASPasswordChangeResponse");
    EXPECT_EQ(reply.Field("TransID"), "5");
    EXPECT_EQ(reply.Field("ErrorNumber"), "0");
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
    EXPECT_EQ(reply.Field("ErrorNumber"), "0");
    reply.LoadXML(second->TakeBlock(0).data);
    EXPECT_EQ(reply.Field("ErrorNumber"), "7721");
}

}  // namespace
}  // namespace kq::zeb
