// What clients ask for, and what they are answered.
#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ClientRequest : public ServerTest {
 protected:
    void SetUp() override { Listens(); }
    // The field names and texts of a message, "TransID=7" each.
    static std::vector<std::string> FieldsOf(const XMLMessage& message) {
        std::vector<std::string> fields;
        for (const auto& field : message.Root().Children())
            fields.push_back(field.Name() + "=" + message.Field(field.Name()));
        return fields;
    }
    std::string LatestConnection() { return Server().Listener()->Clients().back()->Identifier(); }
    std::string ReplyType() const { return "ReturnMsgType=" + bus_client_->ReplyType(); }
    std::string ReplySubType() const { return "ReturnSubType=" + bus_client_->ReplySubType(); }
};

TEST_F(ClientRequest, OfRegistrationIsPutBeforeTheLoginServer) {
    auto& client = Client();
    client.Registers("S17");
    ASSERT_EQ(zeb_.requests.size(), 1U);
    const auto& request = zeb_.requests[0];
    EXPECT_EQ(request.Type(), "RequestASRegistration");
    EXPECT_EQ(request.Schema(), "ZEBSchemas");
    EXPECT_EQ(request.Destination(), (BusAddress{"ZEB", ""}));
    EXPECT_THAT(FieldsOf(request),
                ElementsAre(ReplyType(), ReplySubType(), "TransID=S17|" + LatestConnection(), "AppID=Demo",
                            "SessionID=S17"));
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
}

TEST_F(ClientRequest, OfRegistrationIsToldToTheHostOnceTheBusHasIt) {
    Client().Registers("S17");
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusSend RequestASRegistration"));
    EXPECT_EQ(heard_.sent[0].Field("SessionID"), "S17");
}

TEST_F(ClientRequest, OfRegistrationComparesItsVersionAsANumber) {
    Client().Registers("S17", "1.00");
    Client().Registers("S18", " 1e0 ");
    EXPECT_EQ(zeb_.requests.size(), 2U);
}

TEST_F(ClientRequest, OfRegistrationInAnUnknownVersionIsRefusedInThatVersion) {
    auto& client = Client();
    client.Registers("S17", "1.1");
    EXPECT_EQ(client.Answer().Version(), "1.1");
    EXPECT_EQ(client.Answer().Type(), "ASRegisterResponse");
    EXPECT_THAT(FieldsOf(client.Answer()),
                ElementsAre("ErrorNum=-2147218931",
                            "ErrorDesc=Unknown interface version %0%.  Message cannot be handled."));
    EXPECT_FALSE(client.Connected());
    EXPECT_THAT(zeb_.requests, IsEmpty());
}

TEST_F(ClientRequest, OfRegistrationWithAVersionThatIsNoNumberIsNotAnswered) {
    auto& client = Client();
    client.Registers("S17", "one");
    client.Registers("S17", "");
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
    EXPECT_TRUE(client.Connected());
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ClientRequest, OfRegistrationForAnotherApplicationIsRefusedInTheClientsLanguage) {
    auto& client = Client();
    client.Registers("S17", "1", "demo", "2058");
    EXPECT_EQ(client.Answer().Version(), "1");
    EXPECT_EQ(client.Answer().Type(), "ASRegisterResponse");
    EXPECT_THAT(FieldsOf(client.Answer()),
                ElementsAre("ErrorNum=-2147218933",
                            "ErrorDesc=Esto servidor de aplicación no conoce el AppID demo."));
    EXPECT_FALSE(client.Connected());
}

TEST_F(ClientRequest, IsRefusedInEnglishWhenItsLocaleIsNoNumberOrTooLarge) {
    for (const std::string locale : {"", "spanish", "99999999999", "-1"}) {
        auto& client = Client();
        client.Registers("S17", "1", "Other", locale);
        EXPECT_EQ(client.Answer().Field("ErrorDesc"),
                  "This application server does not support AppID Other.");
    }
}

TEST_F(ClientRequest, ReadsTheVersionBeforeTheApplication) {
    auto& client = Client();
    client.Registers("S17", "2", "Other");
    EXPECT_EQ(client.Answer().Field("ErrorNum"), "-2147218931");
}

TEST_F(ClientRequest, OfLoginTrafficIsRelayedToTheLoginServer) {
    for (const std::string type :
         {"ASValidateClientRequest", "ASLoginRequest", "ASPasswordChangeRequest", "ASProfilesUpdate"}) {
        Client().Sends(MessageOf(type, {{"AppID", "Demo"}, {"LoginID", "ann"}}));
        ASSERT_FALSE(zeb_.requests.empty());
        const auto& relayed = zeb_.requests.back();
        EXPECT_EQ(relayed.Type(), type);
        EXPECT_EQ(relayed.Schema(), "ZEBSchemas");
        EXPECT_EQ(relayed.Destination(), (BusAddress{"ZEB", ""}));
        EXPECT_THAT(FieldsOf(relayed), ElementsAre("AppID=Demo", "LoginID=ann", ReplyType(), ReplySubType(),
                                                   "TransID=" + LatestConnection()));
    }
    EXPECT_EQ(heard_.Of("XMLBusSend").size(), 4U);
}

TEST_F(ClientRequest, CannotChooseWhereTheAnswerGoes) {
    Client().Sends(MessageOf("ASLoginRequest",
                             {{"TransID", "1"}, {"ReturnMsgType", "Reply"}, {"ReturnSubType", "theirs"}}));
    EXPECT_THAT(FieldsOf(zeb_.Latest("ASLoginRequest")),
                ElementsAre("TransID=" + LatestConnection(), ReplyType(), ReplySubType()));
}

TEST_F(ClientRequest, IsRestrictedToTheListenersAddress) {
    Client().Sends(MessageOf("ASLoginRequest", {{"RestrictIP", "10.9.8.7"}, {"RestrictPort", "7000"}}));
    EXPECT_EQ(zeb_.Latest("ASLoginRequest").Field("RestrictIP"), "192.0.2.10");
    EXPECT_EQ(zeb_.Latest("ASLoginRequest").Field("RestrictPort"), "7000");
}

TEST_F(ClientRequest, IsNotRestrictedWhenTheClientAskedForNothing) {
    Client().Sends(MessageOf("ASLoginRequest", {{"RestrictIP", ""}}));
    EXPECT_EQ(zeb_.Latest("ASLoginRequest").Field("RestrictIP"), "");
    Client().Sends(MessageOf("ASLoginRequest"));
    EXPECT_FALSE(zeb_.Latest("ASLoginRequest").HasField("RestrictIP"));
}

TEST_F(ClientRequest, IsDroppedWithoutAWordWhenTheBusTakesNothing) {
    FillBus(true);
    auto& client = Client();
    client.Registers("S17");
    client.Sends(MessageOf("ASLoginRequest"));
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
    EXPECT_TRUE(client.Connected());
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ClientRequest, OfAnUnregisteredClientIsRefusedAndTheClientDropped) {
    auto& client = Client();
    client.Sends(MessageOf("Order", {{"LocaleID", "1033"}}, "7"));
    EXPECT_EQ(client.Answer().Type(), "ASUnknownResponse");
    EXPECT_EQ(client.Answer().Version(), "1");
    EXPECT_EQ(client.Answer().Field("ErrorNum"), "-2147218932");
    EXPECT_EQ(client.Answer().Field("ErrorDesc"),
              "Client has not registered.  Incoming messages will be ignored until registration has been "
              "completed.");
    EXPECT_FALSE(client.Connected());
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ClientRequest, IsRefusedWhileTheRegistrationIsNotAnswered) {
    auto& client = Client();
    client.Registers("S17");
    client.Sends(MessageOf("Order"));
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASUnknownResponse"));
}

TEST_F(ClientRequest, OfARegisteredClientIsTheHosts) {
    auto& client = RegisteredClient("S17");
    const auto order = MessageOf("Order", {{"Item", "42"}});
    client.Sends(order, "tag");
    EXPECT_THAT(heard_.All(), ElementsAre("ReceivedData S17"));
    EXPECT_EQ(heard_.received_data->data_type, DataType::XML);
    EXPECT_EQ(heard_.received_data->data, order.ToXML());
    EXPECT_EQ(heard_.received_data->tag, "tag");
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASRegisterResponse"));
}

TEST_F(ClientRequest, OfARegisteredClientIsRelayedLikeAnyOther) {
    RegisteredClient("S17").Sends(MessageOf("ASPasswordChangeRequest"));
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusSend ASPasswordChangeRequest"));
}

TEST_F(ClientRequest, ThatIsBinaryIsDropped) {
    auto& registered = RegisteredClient("S17");
    Server().Listener()->SetReceiveType(DataType::Any);
    auto& unregistered = Client();
    registered.SendsBytes("<ASMessage type=\"Order\" version=\"1\"/>");
    unregistered.SendsBytes("bytes");
    EXPECT_THAT(heard_.All(), IsEmpty());
    EXPECT_THAT(unregistered.AnswerTypes(), IsEmpty());
    EXPECT_TRUE(unregistered.Connected());
}

constexpr const char* kNoMessages[] = {"", "garbage", "<Order/>", "<ASMessage type='x' version='1'>",
                                       "<!DOCTYPE x><x/>"};

TEST_F(ClientRequest, ThatIsNoMessageIsRefusedAtOnce) {
    for (const std::string text : kNoMessages) {
        auto& client = Client();
        client.SendsText(text, "7");
        EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASUnknownResponse")) << text;
        EXPECT_EQ(client.Answer().Field("ErrorNum"), "-2147218687");
        EXPECT_THAT(client.Answer().Field("ErrorDesc"), testing::StartsWith("The text is not a message"));
        EXPECT_EQ(client.AnswerTag(), "7");
        EXPECT_FALSE(client.Connected());
    }
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ClientRequest, ThatIsNoMessageCostsARegisteredClientNothingButTheAnswer) {
    auto& client = RegisteredClient("S17");
    for (const std::string text : kNoMessages) {
        client.SendsText(text, "7");
        EXPECT_EQ(client.Answer().Type(), "ASUnknownResponse") << text;
        EXPECT_EQ(client.AnswerTag(), "7");
    }
    EXPECT_THAT(heard_.All(), IsEmpty());
    EXPECT_TRUE(client.Connected());
}

TEST_F(ClientRequest, OfRegistrationWithASeparatorInItsSessionIdIsRefusedAtOnce) {
    auto& client = Client();
    client.Registers("S1|7", "1", "Demo", "2058");
    EXPECT_EQ(client.Answer().Type(), "ASRegisterResponse");
    EXPECT_EQ(client.Answer().Field("ErrorNum"), "-2147218932");
    EXPECT_THAT(client.Answer().Field("ErrorDesc"), testing::StartsWith("El cliente no ha registrado."));
    EXPECT_FALSE(client.Connected());
    EXPECT_THAT(zeb_.requests, IsEmpty());
}

TEST_F(ClientRequest, MayBeAsLargeAsAMebibyteBeforeTheClientHasRegistered) {
    auto& client = Client();
    client.Sends(MessageOf("ASProfilesUpdate", {{"Profiles", std::string(1'000'000, 'x')}}));
    EXPECT_EQ(zeb_.Latest("ASProfilesUpdate").Field("Profiles").size(), 1'000'000U);
    client.Sends(MessageOf("ASProfilesUpdate", {{"Profiles", std::string(1U << 20, 'x')}}));
    EXPECT_FALSE(client.Connected());
}

std::string OrderOf(int elements) {
    std::string text = "<ASMessage type=\"Order\" version=\"1\">";
    for (int i = 1; i < elements; ++i)
        text += "<a/>";
    return text + "</ASMessage>";
}

TEST_F(ClientRequest, MayHaveAHundredThousandElementsAndNoMore) {
    auto& client = RegisteredClient("S17");
    client.SendsText(OrderOf(100'000));
    EXPECT_THAT(heard_.All(), ElementsAre("ReceivedData S17"));
    client.SendsText(OrderOf(100'001));
    EXPECT_THAT(heard_.All(), ElementsAre("ReceivedData S17"));
    EXPECT_THAT(client.Answer().Field("ErrorDesc"), testing::HasSubstr("more than 100000 elements"));
}

TEST_F(ClientRequest, GetsItsTagBackWithARefusal) {
    const auto refused = [this](const auto& request) {
        auto& client = Client();
        request(client);
        EXPECT_FALSE(client.Connected());
        return client.AnswerTag();
    };
    EXPECT_EQ(refused([](auto& client) { client.Registers("S17", "2", "Demo", "1033", "a"); }), "a");
    EXPECT_EQ(refused([](auto& client) { client.Registers("S17", "1", "Other", "1033", "b"); }), "b");
    EXPECT_EQ(refused([](auto& client) { client.Registers("S|7", "1", "Demo", "1033", "c"); }), "c");
    EXPECT_EQ(refused([](auto& client) { client.Sends(MessageOf("Order"), "d"); }), "d");
}

TEST_F(ClientRequest, TakesItsTagAcrossTheBusInAnElement) {
    Client().Sends(MessageOf("ASLoginRequest", {{"ReturnTag", "theirs"}}), "7");
    EXPECT_EQ(zeb_.Latest("ASLoginRequest").Field("ReturnTag"), "7");
    Client().Registers("S17", "1", "Demo", "1033", "8");
    EXPECT_EQ(zeb_.Latest("RequestASRegistration").Field("ReturnTag"), "8");
}

TEST_F(ClientRequest, WithoutATagHasNoElementForIt) {
    Client().Sends(MessageOf("ASLoginRequest", {{"ReturnTag", "theirs"}}));
    EXPECT_FALSE(zeb_.Latest("ASLoginRequest").HasField("ReturnTag"));
}

// Time in which a client that is not registered has to prove itself.
class Stranger : public ServerTest {
 protected:
    void SetUp() override { Listens(); }
    void Pass(int seconds) { machine_.loop->Advance(std::chrono::seconds(seconds)); }
};

TEST_F(Stranger, IsDisconnectedAfterTenSecondsWhateverBlocksItSends) {
    auto& client = Client();
    client.SendsBytes("rubbish");
    Pass(9);
    EXPECT_TRUE(client.Connected());
    Pass(1);
    EXPECT_FALSE(client.Connected());
}

TEST_F(Stranger, MayStayOnceARequestOfItWasAnswered) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    zeb_.Answers("ASLoginRequest", MessageOf("ASLoginResponse"));
    Pass(1000);
    EXPECT_TRUE(client.Connected());
}

TEST_F(Stranger, MayStayOnceItHasRegistered) {
    auto& client = RegisteredClient("S17");
    Pass(1000);
    EXPECT_TRUE(client.Connected());
}

TEST_F(Stranger, IsNotDisconnectedWhileTheLoginServerThinks) {
    auto& client = Client();
    Pass(9);
    client.Registers("S17");
    Pass(20);
    EXPECT_TRUE(client.Connected());
    zeb_.Grants("S17");
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASRegisterResponse"));
}

class ClientConnection : public ServerTest {
 protected:
    void SetUp() override { Listens(); }
};

TEST_F(ClientConnection, ThatNeverRegisteredEndsWithoutAnEvent) {
    Client().Leaves();
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ClientConnection, OfASessionTakesTheSessionAlong) {
    auto& client = RegisteredClient("S17");
    heard_.At("Disconnected", [this] { EXPECT_FALSE(Server().Sessions()->Exists("S17")); });
    client.Leaves();
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusSend ASBroadcastInfo", "Count", "Disconnected S17"));
    EXPECT_EQ(Server().Sessions()->Count(), 0);
}

TEST_F(ClientConnection, TakesTheSessionAlongWhenTheBusTakesNothing) {
    auto& client = RegisteredClient("S17");
    FillBus(true);
    client.Leaves();
    EXPECT_THAT(heard_.All(), ElementsAre("Count", "Disconnected S17"));
}

TEST_F(ClientConnection, OfASessionThatFailsIsReported) {
    RegisteredClient("S17");
    machine_.network->CutAll();
    Run();
    EXPECT_THAT(heard_.Of("SessionError"), ElementsAre("S17 10054"));
    EXPECT_THAT(heard_.Of("Disconnected"), ElementsAre("S17"));
}

TEST_F(ClientConnection, WithoutASessionFailsWithoutAnEvent) {
    Client();
    machine_.network->CutAll();
    Run();
    EXPECT_THAT(heard_.All(), IsEmpty());
}

TEST_F(ClientConnection, ThatTheListenerCannotTakeIsReportedAsItsOwnError) {
    machine_.network->FailNextAccept(10024);
    std::vector<std::string> errors;
    Owner owner;
    Server().Listener()->Error.Connect(owner, [&](std::int32_t number, const std::string& description) {
        errors.push_back(std::to_string(number) + " " + description);
    });
    Client();
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_EQ(heard_.Of("Error"), errors);
}

}  // namespace
}  // namespace kq
