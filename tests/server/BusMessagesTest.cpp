// What the bus says to the application server, and what becomes of it.
#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BusMessage : public ServerTest {
 protected:
    void SetUp() override {
        Listens();
        handler_ = SetStrayExceptionHandler([this](const std::exception_ptr& stray) {
            try {
                std::rethrow_exception(stray);
            } catch (const Error& error) {
                reported_.push_back(error.Description());
            }
        });
    }
    void TearDown() override { SetStrayExceptionHandler(handler_); }
    std::string LatestConnection() { return Server().Listener()->Clients().back()->Identifier(); }
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
    // The letter and the sessions of every announcement since Forget, "E S17".
    std::vector<std::string> Announced() const {
        std::vector<std::string> lines;
        for (const auto& announcement : heard_.sent) {
            if (announcement.Type() != "ASBroadcastInfo") continue;
            lines.push_back(StateOf(announcement));
            for (const auto& id : SessionsIn(announcement))
                lines.back() += " " + id;
        }
        return lines;
    }

    std::vector<std::string> reported_;

 private:
    StrayExceptionHandler handler_;
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
    Client().Registers("S17");
    SaysRegistration("S17|" + LatestConnection());
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
    EXPECT_THAT(heard_.All(),
                ElementsAre("XMLBusSend ASBroadcastInfo", "XMLBusReceive ASRegistrationResponse 0 "));
    EXPECT_THAT(handled_, ElementsAre(true));
    EXPECT_EQ(Server().Sessions()->Count(), 0);
    EXPECT_THAT(Announced(), ElementsAre("E S17"));
    EXPECT_THAT(reported_, IsEmpty());
}

TEST_F(BusMessage, ThatGrantsARegistrationOfAClientThatWasJustDisconnectedMakesNoSession) {
    auto& client = Client();
    client.Registers("S17");
    const auto connection = Server().Listener()->Clients().back();
    Forget();
    heard_.At("XMLBusReceive", [&] { connection->Disconnect(); });
    zeb_.Mutters(MessageOf("RequestBroadcastAS"), Here());
    zeb_.Grants("S17");
    EXPECT_THAT(heard_.Of("Connected"), IsEmpty());
    EXPECT_THAT(heard_.Of("Disconnected"), IsEmpty());
    EXPECT_THAT(handled_, ElementsAre(true, true));
    EXPECT_EQ(Server().Sessions()->Count(), 0);
    EXPECT_THAT(Announced(), ElementsAre("C", "E S17"));
}

TEST_F(BusMessage, ThatGrantsARegistrationOfAClientThatCameBackLeavesItsSession) {
    Client().Registers("S17");
    const std::string old = LatestConnection();
    Server().Listener()->Client(old)->Disconnect();
    RegisteredClient("S17");
    SaysRegistration("S17|" + old);
    EXPECT_THAT(Announced(), IsEmpty());
    EXPECT_TRUE(Server().Sessions()->Exists("S17"));
}

TEST_F(BusMessage, ThatGrantsARegistrationTwiceCountsOnce) {
    auto& client = RegisteredClient("S17");
    const auto first = Server().Sessions()->Session("S17");
    zeb_.Grants("S17", {{"LoginID", "bob"}});
    EXPECT_EQ(Server().Sessions()->Session("S17"), first);
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive ASRegistrationResponse 0 "));
    EXPECT_THAT(handled_, ElementsAre(true));
    EXPECT_THAT(reported_, ElementsAre("An ASRegistrationResponse answers no request that is open"));
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASRegisterResponse"));
    client.Leaves();
    EXPECT_EQ(Server().Sessions()->Count(), 0);
}

TEST_F(BusMessage, ThatGrantsWhatNobodyAskedForMakesNoSession) {
    auto& client = Client();
    SaysRegistration("S17|" + LatestConnection());
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive ASRegistrationResponse 0 "));
    EXPECT_THAT(handled_, ElementsAre(true));
    EXPECT_EQ(reported_.size(), 1U);
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
}

TEST_F(BusMessage, ThatGrantsAnotherSessionThanAskedMakesNoneUntilTheRightOneIsGranted) {
    auto& client = Client();
    client.Registers("S17");
    SaysRegistration("S99|" + LatestConnection());
    EXPECT_EQ(Server().Sessions()->Count(), 0);
    EXPECT_EQ(reported_.size(), 1U);
    zeb_.Grants("S17");
    EXPECT_TRUE(Server().Sessions()->Exists("S17"));
}

TEST_F(BusMessage, ThatRefusesWhatNobodyAskedForDisconnectsNobody) {
    auto& client = RegisteredClient("S17");
    zeb_.Refuses("S17", "7001", "No.");
    EXPECT_TRUE(client.Connected());
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive ASRegistrationResponse 7001 No."));
}

TEST_F(BusMessage, ThatGrantsASecondRegistrationOnAConnectionEndsTheFormerSessionFirst) {
    auto& client = RegisteredClient("S1");
    client.Registers("S2");
    Forget();
    heard_.At("Disconnected", [this] { EXPECT_EQ(Server().Sessions()->Count(), 0); });
    zeb_.Grants("S2");
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusSend ASBroadcastInfo", "Count", "Disconnected S1",
                                          "XMLBusSend ASBroadcastInfo", "Count", "Connected S2",
                                          "XMLBusReceive ASRegistrationResponse 0 "));
    EXPECT_THAT(Announced(), ElementsAre("E S1", "C S2"));
    EXPECT_TRUE(client.Connected());
    OrdersLogout({"S1"});
    EXPECT_TRUE(client.Connected());
    OrdersLogout({"S2"});
    EXPECT_FALSE(client.Connected());
    EXPECT_EQ(Server().Sessions()->Count(), 0);
}

TEST_F(BusMessage, ThatGrantsTheSameSessionAnewOnAConnectionReplacesIt) {
    auto& client = RegisteredClient("S17");
    client.Registers("S17");
    Forget();
    zeb_.Grants("S17", {{"LoginID", "bob"}});
    EXPECT_THAT(heard_.Of("Disconnected"), ElementsAre("S17"));
    EXPECT_THAT(heard_.Of("Connected"), ElementsAre("S17"));
    EXPECT_EQ(Server().Sessions()->Session("S17")->LoginID(), "bob");
    EXPECT_THAT(Announced(), ElementsAre("E S17", "C S17"));
}

TEST_F(BusMessage, ThatGrantsASecondRegistrationMakesNoSessionWhenTheHostDropsTheClientInBetween) {
    auto& client = RegisteredClient("S1");
    client.Registers("S2");
    Forget();
    heard_.At("Disconnected", [this] { Server().Listener()->Clients().back()->Disconnect(); });
    zeb_.Grants("S2");
    EXPECT_THAT(heard_.Of("Connected"), IsEmpty());
    EXPECT_THAT(heard_.Of("Disconnected"), ElementsAre("S1"));
    EXPECT_THAT(Announced(), ElementsAre("E S1", "E S2"));
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

TEST_F(BusMessage, ThatGrantsOneIdToTwoClientsLeavesTheFirstWhenTheSecondLeaves) {
    auto& first = RegisteredClient("S17");
    auto& second = RegisteredClient("S17");
    second.Leaves();
    EXPECT_TRUE(Server().Sessions()->Exists("S17"));
    OrdersLogout({"S17"});
    EXPECT_FALSE(first.Connected());
}

TEST_F(BusMessage, ThatAnswersARegistrationReturnsTheTag) {
    auto& client = Client();
    client.Registers("S17", "1", "Demo", "1033", "7");
    zeb_.Grants("S17");
    EXPECT_EQ(client.AnswerTag(), "7");
    auto& refused = Client();
    refused.Registers("S18", "1", "Demo", "1033", "8");
    zeb_.Refuses("S18", "7001", "No.");
    EXPECT_EQ(refused.AnswerTag(), "8");
}

TEST_F(BusMessage, ThatAnswersARelayedRequestReturnsTheTagWhateverIsInIt) {
    for (const std::string tag : {"7", "a b%\x01\xC3\xA4\x7F", " "}) {
        auto& client = Client();
        client.Sends(MessageOf("ASLoginRequest"), tag);
        zeb_.Answers("ASLoginRequest", MessageOf("ASLoginResponse"));
        EXPECT_EQ(client.Answer(), MessageOf("ASLoginResponse"));
        EXPECT_EQ(client.AnswerTag(), tag);
    }
}

TEST_F(BusMessage, ThatAnswersTheSecondOfTwoRequestsReturnsTheTagOfTheSecond) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"), "first");
    client.Sends(MessageOf("ASLoginRequest"), "second");
    zeb_.Answers("ASLoginRequest", MessageOf("ASLoginResponse"));
    EXPECT_EQ(client.AnswerTag(), "second");
}

TEST_F(BusMessage, ThatAnswersWithoutTheTagIsTakenForTheOldestRequestOfItsType) {
    auto& client = Client();
    client.Sends(MessageOf("ASValidateClientRequest"), "v");
    client.Sends(MessageOf("ASLoginRequest"), "l");
    zeb_.Says(MessageOf("ASLoginResponse", {{"TransID", LatestConnection()}}), Here());
    EXPECT_EQ(client.AnswerTag(), "l");
}

TEST_F(BusMessage, ThatAnswersARelayedRequestTwiceReachesItsClientOnce) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    for (int i = 0; i < 2; ++i)
        zeb_.Answers("ASLoginRequest", MessageOf("ASLoginResponse"));
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASLoginResponse"));
    EXPECT_THAT(reported_, ElementsAre("An ASLoginResponse answers no request that is open"));
    EXPECT_EQ(heard_.Of("XMLBusReceive").size(), 2U);
}

TEST_F(BusMessage, ThatAnswersWhatWasNotAskedReachesNoClient) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    zeb_.Answers("ASLoginRequest", MessageOf("ASPasswordChangeResponse"));
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
    EXPECT_EQ(reported_.size(), 1U);
}

TEST_F(BusMessage, ThatAnswersAnythingButALoginCarriesNoSessionsRecord) {
    for (const std::string type : {"ASValidateClient", "ASPasswordChange"}) {
        auto& client = Client();
        client.Sends(MessageOf(type + "Request"));
        auto answer = MessageOf(type + "Response", {{"ErrorNumber", "0"}});
        answer.SetMessageField("SessionInfo", MessageOf("SessionInfo", {{"LoginID", "ann"}}));
        zeb_.Answers(type + "Request", answer);
        EXPECT_EQ(client.Answer(), MessageOf(type + "Response", {{"ErrorNumber", "0"}}));
    }
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
