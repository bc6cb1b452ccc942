// "RequestASRegistration" and what follows from a session's moves between places.
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class Registration : public ZebTest {
 protected:
    void SetUp() override {
        StartZeb();
        Account details;
        details.first_name = "Ana";
        uid = AddUser("ana", kPassword, details);
        server = RunningServer(7000);
    }
    ASRegistrationResponse Ask(const std::string& session, const std::string& connection = "1") {
        server->AskToRegister(session, connection);
        return ASRegistrationResponse::Read(server->ExpectHeard());
    }
    void ExpectConfirmed(const std::string& session, const std::string& connection = "1") {
        EXPECT_FALSE(Ask(session, connection).ErrorResponse);
    }
    void ExpectNotConfirmed(const std::string& session, Refusal refusal) {
        ExpectRefusal(Ask(session), refusal);
    }
    static void ExpectRefusal(const ASRegistrationResponse& response, Refusal refusal) {
        EXPECT_FALSE(response.SessionInfo);
        ASSERT_TRUE(response.ErrorResponse);
        EXPECT_EQ(response.ErrorResponse->ErrorCode, std::to_string(NumberOf(refusal)));
        EXPECT_EQ(response.ErrorResponse->ErrorDescription, SentenceOf(refusal));
    }

    std::int32_t uid = 0;
    std::unique_ptr<TestAppServer> server;
};

TEST_F(Registration, AGoodSessionIsConfirmedWithItsRecord) {
    const auto id = Login("ana").SessionID;
    server->AskToRegister(id, "12");
    const auto reply = server->ExpectHeard();
    EXPECT_EQ(reply.Type(), "ASRegistrationResponse");
    EXPECT_EQ(reply.Schema(), "ZEBSchemas");
    EXPECT_EQ(reply.Field("TransID"), id + "|12");
    EXPECT_FALSE(reply.HasField("ErrorResponse"));
    EXPECT_EQ(reply.Root().TextOf("SessionInfo/LoginID"), "ana");
    EXPECT_EQ(reply.Root().TextOf("SessionInfo/UserUID"), std::to_string(uid));
    EXPECT_EQ(reply.Root().TextOf("SessionInfo/FirstName"), "Ana");
}

TEST_F(Registration, IsAnsweredWithTheTagOfTheClientsRequest) {
    server->AskToRegister(Login("ana").SessionID, "12", "7");
    EXPECT_EQ(server->ExpectHeard().Field("ReturnTag"), "7");
    server->AskToRegister("unknown", "12", "8");
    EXPECT_EQ(server->ExpectHeard().Field("ReturnTag"), "8");
    server->AskToRegister("unknown", "12");
    EXPECT_FALSE(server->ExpectHeard().HasField("ReturnTag"));
}

TEST_F(Registration, AnUnknownSessionIsRefusedWithNumberAndText) {
    const auto response = Ask("unknown");
    EXPECT_EQ(response.TransID, "unknown|1");
    ExpectRefusal(response, Refusal::NoSession);
}

TEST_F(Registration, ASessionOfAnotherApplicationIsRefused) {
    const auto id = Login("ana").SessionID;
    const auto other = RunningServer(7001, "Other");
    other->AskToRegister(id);
    ExpectRefusal(ASRegistrationResponse::Read(other->ExpectHeard()), Refusal::NoSession);
}

TEST_F(Registration, ASessionMustBeRegisteredInTime) {
    const auto in_time = Login("ana").SessionID;
    const auto late = Login("ana").SessionID;
    server->interval = "3600";
    server->Announce();
    Pass(std::chrono::minutes(9));
    ExpectConfirmed(in_time);
    Pass(std::chrono::minutes(2));
    ExpectNotConfirmed(late, Refusal::NoSession);
}

TEST_F(Registration, ADisabledUserIsRefused) {
    const auto id = Login("ana").SessionID;
    Accounts(store).SetDisabled(uid, true);
    ExpectNotConfirmed(id, Refusal::Disabled);
}

TEST_F(Registration, TheNumberOfSessionsIsHeldHereToo) {
    Account details;
    details.max_sessions = 1;
    AddUser("bob", kPassword, details);
    const auto first = Login("bob").SessionID;
    const auto second = Login("bob").SessionID;
    ExpectConfirmed(first);
    ExpectNotConfirmed(second, Refusal::TooManySessions);
    ExpectConfirmed(first);  // again is not one more
}

TEST_F(Registration, RegisteringAgainLogsTheOldConnectionOutFirst) {
    const auto id = ExpectRegistered("ana", *server, "1");
    const auto another = RunningServer(7001);
    another->AskToRegister(id, "9");
    const auto order = server->ExpectHeard();
    EXPECT_EQ(order.Type(), "ASLogoutUser");
    EXPECT_EQ(order.Root().TextOf("SessionIDs/SessionID"), id);
    EXPECT_FALSE(another->ExpectHeard().HasField("ErrorResponse"));
}

TEST_F(Registration, OnOneServerTheOrderComesBeforeTheAnswer) {
    const auto id = ExpectRegistered("ana", *server, "1");
    server->AskToRegister(id, "2");
    ASSERT_EQ(server->heard.size(), 2U);
    EXPECT_EQ(server->heard[0].Type(), "ASLogoutUser");
    EXPECT_EQ(server->heard[1].Type(), "ASRegistrationResponse");
}

TEST_F(Registration, TheSameConnectionAskingAgainIsNotLoggedOut) {
    const auto id = ExpectRegistered("ana", *server, "1");
    ExpectConfirmed(id, "1");
}

TEST_F(Registration, NoOrderGoesToAServerThatIsGone) {
    const auto id = ExpectRegistered("ana", *server, "1");
    server->Say(server->Info("D", {}));
    const auto another = RunningServer(7001);
    another->AskToRegister(id, "9");
    EXPECT_TRUE(server->heard.empty());
    EXPECT_FALSE(another->ExpectHeard().HasField("ErrorResponse"));
}

TEST_F(Registration, ASessionThatEndedMayRegisterAgainForATime) {
    const auto id = ExpectRegistered("ana", *server, "1");
    server->Say(server->Info("E", {id}));
    Pass(std::chrono::minutes(1));
    server->Announce();
    ExpectConfirmed(id, "2");
    server->Say(server->Info("E", {id}));
    Pass(std::chrono::minutes(11));
    ExpectNotConfirmed(id, Refusal::NoSession);
}

TEST_F(Registration, TheEndOfTheOldConnectionDoesNotEndTheNewOne) {
    const auto id = ExpectRegistered("ana", *server, "1");
    server->AskToRegister(id, "2");
    server->Say(server->Info("E", {id}));
    server->Announce({id});
    server->heard.clear();
    ExpectConfirmed(id, "2");  // still registered there: no order
}

TEST_F(Registration, AnEndFromAnotherServerIsIgnored) {
    Account details;
    details.max_sessions = 1;
    AddUser("bob", kPassword, details);
    const auto id = ExpectRegistered("bob", *server, "1");
    const auto another = RunningServer(7001);
    another->Say(another->Info("E", {id}));
    ExpectRefused(Login("bob"), Refusal::TooManySessions, "bob");
}

TEST_F(Registration, SessionsOutliveARestartOfTheLoginServer) {
    const auto id = Login("ana").SessionID;
    zeb.reset();
    StartZeb();
    ExpectConfirmed(id);
}

TEST_F(Registration, ARequestWithoutAReplyAddressIsDropped) {
    RequestASRegistration request;
    request.SessionID = Login("ana").SessionID;
    request.AppID = kApp;
    auto message = request.Build();
    message.SetDestination({"ZEB", ""});
    server->bus_client->Send(message);
    machine.loop->RunReady();
    EXPECT_TRUE(server->heard.empty());
    ExpectConfirmed(request.SessionID);
}

}  // namespace
}  // namespace kq::zeb
