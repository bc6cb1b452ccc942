// What the bus says to the application server, and what becomes of it.
#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BusMessage : public ServerTest {
 protected:
    void SetUp() override { Listens(); }
    BusAddress Here() const { return {bus_client_->ReplyType(), bus_client_->ReplySubType()}; }
    void SaysRegistration(const std::string& trans_id) {
        zeb_.Says(MessageOf("ASRegistrationResponse", {{"TransID", trans_id}}), Here());
    }
    void OrdersLogout(const std::vector<std::string>& ids) {
        XMLElement list("SessionIDs");
        for (const auto& id : ids)
            list.Add("SessionID", id);
        auto order = MessageOf("ASLogoutUser");
        order.SetField(std::move(list));
        zeb_.SaysToAll(order);
    }
};

TEST_F(BusMessage, ThatGrantsARegistrationMakesASession) {
    auto& client = Client();
    client.Registers("S17");
    Forget();
    zeb_.Grants("S17");
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusSend ASBroadcastInfo", "Count", "Connected S17",
                                          "XMLBusReceive ASRegistrationResponse 0 "));
    EXPECT_THAT(handled_, ElementsAre(true));
    EXPECT_TRUE(Server().Sessions()->Exists("S17"));
    EXPECT_TRUE(client.Connected());
}

TEST_F(BusMessage, ThatGrantsARegistrationIsAnsweredWithErrorZeroAlone) {
    auto& client = RegisteredClient("S17");
    EXPECT_EQ(client.Answer().Type(), "ASRegisterResponse");
    EXPECT_EQ(client.Answer().Version(), "1");
    EXPECT_EQ(client.Answer().Root().Children().size(), 1U);
    EXPECT_EQ(client.Answer().Field("ErrorNum"), "0");
}

TEST_F(BusMessage, ThatGrantsARegistrationFillsTheSession) {
    Client().Registers("S17");
    zeb_.Grants("S17", {{"LoginID", "ann"},
                        {"UserUID", "55"},
                        {"EnterpriseID", "theirs"},
                        {"OperatorID", "99"},
                        {"Language", "es"},
                        {"FirstName", "Ann"},
                        {"LastName", "Lee"},
                        {"TZ", "-3"},
                        {"DST", "1"},
                        {"BUID", "7"},
                        {"BUIDUnionList", "7|9|"},
                        {"PrivilegeList", "A|B"},
                        {"Password", "x"}});
    std::vector<std::string> fields;
    const auto message = Server().Sessions()->Session("S17")->Export();
    for (const auto& field : message->Root().Children())
        fields.push_back(field.Name() + "=" + field.Text());
    EXPECT_EQ(message->Type() + " " + message->Version(), "SessionInfo 1");
    EXPECT_THAT(fields,
                ElementsAre("LoginID=ann", "UserUID=55", "EnterpriseID=ENT", "OperatorID=55", "Language=es",
                            "FirstName=Ann", "LastName=Lee", "TZ=-3", "DST=1", "BUID=7", "BUIDUnionList=7|9|",
                            "PrivilegeList=A|B", "SessionID=S17", "AppID=Demo"));
}

TEST_F(BusMessage, ThatGrantsARegistrationTakesTheIdFromTheTransaction) {
    Client().Registers("S17");
    zeb_.Grants("S17", {{"SessionID", "S99"}, {"AppID", "Other"}});
    EXPECT_EQ(Server().Sessions()->Session(1)->SessionID(), "S17");
    EXPECT_EQ(Server().Sessions()->Session(1)->AppID(), "Demo");
    Client().Registers("");
    zeb_.Grants("", {{"SessionID", "S99"}});
    EXPECT_EQ(Server().Sessions()->Session(2)->SessionID(), "");
}

TEST_F(BusMessage, ThatGrantsARegistrationWithoutARecordMakesASessionOfEmptyFields) {
    Client();
    SaysRegistration("S17|" + Server().Listener()->Clients().back()->Identifier());
    EXPECT_EQ(Server().Sessions()->Session("S17")->LoginID(), "");
    EXPECT_EQ(Server().Sessions()->Session("S17")->EnterpriseID(), "ENT");
}

TEST_F(BusMessage, ThatGrantsARegistrationLetsTheClientSendLargeBlocks) {
    auto& client = RegisteredClient("S17");
    client.Sends(MessageOf("Order", {{"Text", std::string(1U << 20, 'x')}}));
    EXPECT_THAT(heard_.All(), ElementsAre("ReceivedData S17"));
}

TEST_F(BusMessage, ThatGrantsARegistrationOfAClientThatLeftMakesNoSession) {
    auto& client = Client();
    client.Registers("S17");
    client.Leaves();
    Forget();
    zeb_.Grants("S17");
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive ASRegistrationResponse 0 "));
    EXPECT_THAT(handled_, ElementsAre(true));
    EXPECT_EQ(Server().Sessions()->Count(), 0);
}

TEST_F(BusMessage, ThatGrantsARegistrationTwiceLeavesTheFirstSession) {
    auto& client = RegisteredClient("S17");
    const auto first = Server().Sessions()->Session("S17");
    zeb_.Grants("S17", {{"LoginID", "bob"}});
    EXPECT_EQ(Server().Sessions()->Session("S17"), first);
    EXPECT_EQ(Server().Sessions()->Count(), 1);
    EXPECT_THAT(heard_.Of("Connected"), ElementsAre("S17"));
    client.Leaves();
    EXPECT_EQ(Server().Sessions()->Count(), 0);
}

TEST_F(BusMessage, ThatGrantsOneIdToTwoClientsLeavesTheFirstInPlace) {
    RegisteredClient("S17");
    const auto first = Server().Sessions()->Session("S17");
    auto& second = Client();
    second.Registers("S17");
    zeb_.Grants("S17");
    EXPECT_EQ(Server().Sessions()->Session("S17"), first);
    OrdersLogout({"S17"});
    EXPECT_FALSE(first->Client()->Connected());
    EXPECT_TRUE(second.Connected());
}

TEST_F(BusMessage, WithATransactionOfOneOrThreePartsIsDroppedWithoutAnEvent) {
    const auto& client = Client();
    const auto identifier = Server().Listener()->Clients().back()->Identifier();
    for (const auto& id : {"S1|" + identifier + "|x", std::string("S1"), std::string()})
        SaysRegistration(id);
    EXPECT_THAT(heard_.All(), IsEmpty());
    EXPECT_THAT(handled_, ElementsAre(false, false, false));
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
}

TEST_F(BusMessage, ThatRefusesARegistrationReachesTheClientAndDropsIt) {
    auto& client = Client();
    client.Registers("S17");
    Forget();
    zeb_.Refuses("S17", "7001", "Too many users.");
    EXPECT_EQ(client.Answer().Type(), "ASRegisterResponse");
    EXPECT_EQ(client.Answer().Version(), "1");
    EXPECT_EQ(client.Answer().Field("ErrorNum"), "7001");
    EXPECT_EQ(client.Answer().Field("ErrorDesc"), "Too many users.");
    EXPECT_FALSE(client.Connected());
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive ASRegistrationResponse 7001 Too many users."));
    EXPECT_THAT(handled_, ElementsAre(true));
}

TEST_F(BusMessage, ThatRefusesARegistrationOfAClientThatLeftIsStillReported) {
    auto& client = Client();
    client.Registers("S17");
    client.Leaves();
    zeb_.Refuses("S17", "7001x", "No.");
    EXPECT_THAT(heard_.Of("XMLBusReceive"), ElementsAre("ASRegistrationResponse 7001 No."));
}

TEST_F(BusMessage, ThatRefusesWithACodeBeyond32BitsIsReportedWithoutANumber) {
    for (const char* code : {"99999999999", "1e999"}) {
        auto& client = Client();
        client.Registers(code);
        Forget();
        zeb_.Refuses(code, code, "No.");
        EXPECT_EQ(client.Answer().Field("ErrorNum"), code);
        EXPECT_THAT(heard_.Of("XMLBusReceive"), ElementsAre("ASRegistrationResponse 0 No."));
    }
}

TEST_F(BusMessage, ThatLogsUsersOutEndsTheirConnectionsInOrder) {
    auto& first = RegisteredClient("S1");
    auto& second = RegisteredClient("S2");
    auto& third = RegisteredClient("S3");
    OrdersLogout({"S3", "unknown", "S1"});
    EXPECT_FALSE(first.Connected());
    EXPECT_TRUE(second.Connected());
    EXPECT_FALSE(third.Connected());
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusSend ASBroadcastInfo", "Count", "Disconnected S3",
                                          "XMLBusSend ASBroadcastInfo", "Count", "Disconnected S1",
                                          "XMLBusReceive ASLogoutUser 0 "));
    EXPECT_THAT(handled_, ElementsAre(true));
}

TEST_F(BusMessage, ThatLogsNobodyOutIsReported) {
    zeb_.SaysToAll(MessageOf("ASLogoutUser"));
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive ASLogoutUser 0 "));
}

TEST_F(BusMessage, ThatAnswersARelayedRequestReachesItsClientWithoutTheRelaysFields) {
    const std::vector<std::pair<std::string, std::string>> kinds = {
        {"ASValidateClientRequest", "ASValidateClientResponse"},
        {"ASLoginRequest", "ASLoginResponse"},
        {"ASPasswordChangeRequest", "ASPasswordChangeResponse"},
        {"ASProfilesUpdate", "ASProfilesUpdateResponse"}};
    for (const auto& [request, response] : kinds) {
        auto& client = Client();
        auto& other = Client();
        client.Sends(MessageOf(request));
        zeb_.Answers(
            request,
            MessageOf(response, {{"ErrorNumber", "0"}, {"ReturnMsgType", "a"}, {"ReturnSubType", "b"}}));
        EXPECT_EQ(client.Answer(), MessageOf(response, {{"ErrorNumber", "0"}}));
        EXPECT_THAT(other.AnswerTypes(), IsEmpty());
        EXPECT_EQ(heard_.All().back(), "XMLBusReceive " + response + " 0 ");
        EXPECT_THAT(handled_, testing::Contains(true));
    }
}

TEST_F(BusMessage, ThatAnswersALoginCarriesTheSessionsRecord) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    auto answer = MessageOf("ASLoginResponse", {{"ErrorNumber", "0"}});
    answer.SetMessageField("SessionInfo", MessageOf("SessionInfo", {{"LoginID", "ann"}}));
    zeb_.Answers("ASLoginRequest", answer);
    XMLMessage record;
    record.LoadXML(client.Answer().Field("SessionInfo"));
    EXPECT_EQ(record.Field("LoginID"), "ann");
}

TEST_F(BusMessage, ThatAnswersAClientThatLeftIsStillReported) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    client.Leaves();
    Forget();
    zeb_.Answers("ASLoginRequest", MessageOf("ASLoginResponse"));
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive ASLoginResponse 0 "));
    EXPECT_THAT(handled_, ElementsAre(true));
}

TEST_F(BusMessage, ThatAsksForABroadcastIsAnsweredAtOnce) {
    RegisteredClient("S17");
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    EXPECT_THAT(heard_.All(),
                ElementsAre("XMLBusSend ASBroadcastInfo", "XMLBusReceive RequestBroadcastAS 0 "));
    ASSERT_EQ(zeb_.announcements.size(), 1U);
    EXPECT_EQ(StateOf(zeb_.announcements[0]), "C");
    EXPECT_THAT(SessionsIn(zeb_.announcements[0]), ElementsAre("S17"));
    EXPECT_THAT(handled_, ElementsAre(true));
}

TEST_F(BusMessage, ThatAsksForABroadcastIsNotHandledWhenTheBusTakesNothing) {
    FillBus(true);
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    EXPECT_THAT(heard_.All(), IsEmpty());
    EXPECT_THAT(handled_, ElementsAre(false));
}

TEST_F(BusMessage, OfAnotherTypeIsTheHosts) {
    zeb_.SaysToAll(MessageOf("Prices"));
    EXPECT_THAT(heard_.All(), IsEmpty());
    EXPECT_THAT(handled_, ElementsAre(false));
}

TEST_F(ServerTest, ReportsAWishForABroadcastWhileUninitialised) {
    Server().Initialize("Demo", app_, bus_client_, nullptr, InterfaceVersions("1"));
    bus_client_->Start();
    Run();
    zeb_.Says(MessageOf("RequestBroadcastAS"), {bus_client_->ReplyType(), bus_client_->ReplySubType()});
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive RequestBroadcastAS 0 "));
}

}  // namespace
}  // namespace kq
