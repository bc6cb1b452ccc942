// Sessions as an application server sees them: how they come, what they say, how they end.
#include "automation/SessionsTesting.h"
#include "automation/WideText.h"

namespace kq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Sessions : public SessionsTest {
 protected:
    void SetUp() override { Listens(); }
    bool Exists(const wchar_t* id) {
        VARIANT_BOOL exists = VARIANT_FALSE;
        EXPECT_EQ(server_.Sessions()->Exists(Text(id), &exists), S_OK);
        return exists != VARIANT_FALSE;
    }
    // An answer to the registration of S1 that leads elsewhere.
    void AnswersRegistrationWith(const std::string& trans_id) {
        const auto request = zeb_.Request("RequestASRegistration");
        request->put_Field(Text(L"TransID"), BstrOf(trans_id));
        zeb_.Answers(request, MessageOf("ASRegistrationResponse"));
    }
    // What the bus brings before this has been received once this has.
    void SaysSomethingElse() {
        zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
        ASSERT_TRUE(Await([&] { return AnnouncementWasAskedFor(); }));
    }
    bool AnnouncementWasAskedFor() {
        const auto received = events_.Of("XMLBusReceive");
        return !received.empty() && received.back() == "RequestBroadcastAS 0 ";
    }
    static std::vector<std::string> Texts(SAFEARRAY* array) {
        std::vector<std::string> texts;
        BSTR* data = nullptr;
        SafeArrayAccessData(array, reinterpret_cast<void**>(&data));
        for (ULONG i = 0; i < array->rgsabound[0].cElements; ++i)
            texts.push_back(Narrow(data[i]));
        SafeArrayUnaccessData(array);
        SafeArrayDestroy(array);
        return texts;
    }
};

TEST_F(Sessions, ComeWithTheRegistrationThatTheLoginServerConfirms) {
    RegisteredClient("S1");
    // The list of sessions may go out later.
    std::erase(events_.heard, "XMLBusSend ASBroadcastInfo");
    EXPECT_THAT(events_.heard, ElementsAre("XMLBusSend RequestASRegistration", "Count", "Connected S1",
                                           "XMLBusReceive ASRegistrationResponse 0 "));
    EXPECT_EQ(server_.CountOfSessions(), 1);
    EXPECT_TRUE(SameObject(server_.Session(1L), server_.Session(L"S1")));
}

TEST_F(Sessions, AreFoundByPositionInTheOrderOfTheirComingAndByTheirId) {
    RegisteredClient("S2");
    RegisteredClient("S1");
    EXPECT_EQ(IdOf(server_.Session(1L)), "S2");
    EXPECT_EQ(IdOf(server_.Session(L"S1")), "S1");
    EXPECT_EQ(IdOf(server_.Session(2L)), "S1");
    Ptr<_KQAppSessionInfo> none;
    EXPECT_EQ(server_.Sessions()->get_Session(_variant_t(3L), none.Out()), static_cast<HRESULT>(0x800A0005));
}

TEST_F(Sessions, AreNoLongerThereOnceTheirClientHasGone) {
    auto& client = RegisteredClient("S1");
    RegisteredClient("S2");
    EXPECT_TRUE(Exists(L"S1"));
    client.Leaves();
    ASSERT_TRUE(AwaitEvent("Disconnected"));
    EXPECT_FALSE(Exists(L"S1"));
    EXPECT_EQ(IdOf(server_.Session(1L)), "S2");
}

TEST_F(Sessions, HaveTheUserNumberAsOperatorAndTheBusClientsEnterprise) {
    auto& client = Client();
    client.Registers("S1");
    zeb_.Grants({{"LoginID", "ann"}, {"UserUID", "55"}, {"OperatorID", "99"}, {"EnterpriseID", "theirs"}});
    client.Answer();
    const auto session = server_.Session(L"S1");
    long user = 0;
    EXPECT_EQ(session->get_UserUID(&user), S_OK);
    EXPECT_EQ(user, 55);
    EXPECT_EQ(Read(session, &_KQAppSessionInfo::get_OperatorID), L"55");
    EXPECT_EQ(Read(session, &_KQAppSessionInfo::get_EnterpriseID), L"ENT");
    EXPECT_EQ(Read(session, &_KQAppSessionInfo::get_AppID), L"Demo");
}

TEST_F(Sessions, ListTheUnionOfBusinessUnitsWithEmptyPieces) {
    auto& client = Client();
    client.Registers("S1");
    zeb_.Grants({{"UserUID", "55"}, {"BUIDList", "1"}, {"BUIDUnionList", "7|9|"}, {"PrivilegeList", ""}});
    client.Answer();
    SAFEARRAY* units = nullptr;
    SAFEARRAY* privileges = nullptr;
    ASSERT_EQ(server_.Session(L"S1")->get_BUIDList(&units), S_OK);
    ASSERT_EQ(server_.Session(L"S1")->get_PrivilegeList(&privileges), S_OK);
    EXPECT_THAT(Texts(units), ElementsAre("7", "9", ""));
    EXPECT_THAT(Texts(privileges), ElementsAre(""));
}

TEST_F(Sessions, DoNotComeOfAnswersThatLeadNowhere) {
    Client().Registers("S1");
    AnswersRegistrationWith("S1|7|x");
    Client().Registers("S1");
    AnswersRegistrationWith("S1");
    SaysSomethingElse();
    EXPECT_THAT(events_.Of("XMLBusReceive"), ElementsAre("RequestBroadcastAS 0 "));
    EXPECT_EQ(server_.CountOfSessions(), 0);
}

TEST_F(Sessions, DoNotComeOfAConfirmationForAClientThatHasGone) {
    auto& client = Client();
    client.Registers("S1");
    const auto request = zeb_.Request("RequestASRegistration");
    client.Leaves();
    long count = 1;
    ASSERT_TRUE(Await([&] { return server_.Listener()->get_Count(&count) == S_OK && count == 0; }));
    const auto answer = MessageOf("ASRegistrationResponse");
    answer->SetMessageField(Text(L"SessionInfo"), MessageOf("SessionInfo", {{"UserUID", "55"}}).Get());
    zeb_.Answers(request, answer);
    ASSERT_TRUE(AwaitEvent("XMLBusReceive"));
    EXPECT_THAT(events_.Of("XMLBusReceive"), ElementsAre("ASRegistrationResponse 0 "));
    EXPECT_THAT(events_.Of("Connected"), IsEmpty());
    EXPECT_EQ(server_.CountOfSessions(), 0);
}

TEST_F(Sessions, DoNotComeOfARefusalWhichTheHostSeesWithItsNumberAndDescription) {
    auto& client = Client();
    client.Registers("S1");
    zeb_.Refuses("7731", "Too many users");
    const auto answer = client.Answer();
    EXPECT_EQ(TypeOf(answer), "ASRegisterResponse");
    EXPECT_EQ(FieldOf(answer, "ErrorNum") + " " + FieldOf(answer, "ErrorDesc"), "7731 Too many users");
    EXPECT_TRUE(client.IsDisconnected());
    EXPECT_THAT(events_.Of("XMLBusReceive"), ElementsAre("ASRegistrationResponse 7731 Too many users"));
    EXPECT_EQ(server_.CountOfSessions(), 0);
}

TEST_F(Sessions, EndInTheOrderInWhichTheLoginServerLogsThemOut) {
    auto& first = RegisteredClient("S1");
    auto& second = RegisteredClient("S2");
    RegisteredClient("S3");
    events_.Forget();
    const auto order = MessageOf("ASLogoutUser");
    order->SetElementField(ListOf("SessionIDs", "SessionID", {"S2", "S1"}).Get());
    zeb_.SaysToAll(order);
    ASSERT_TRUE(AwaitEvent("XMLBusReceive"));
    EXPECT_THAT(events_.Of("Disconnected"), ElementsAre("S2", "S1"));
    EXPECT_EQ(events_.heard.back(), "XMLBusReceive ASLogoutUser 0 ");
    EXPECT_TRUE(first.IsDisconnected());
    EXPECT_TRUE(second.IsDisconnected());
    EXPECT_EQ(server_.CountOfSessions(), 1);
}

TEST_F(Sessions, ReportTheErrorOfTheirConnectionWithTheSessionAndTheConnection) {
    HostObject at_listener;
    const auto listener = server_.Listener();
    listener->put_AdmittedFrameLimit(1000);
    Advise(listener.Get(), __uuidof(_ListenerEvents), &at_listener);
    auto& client = RegisteredClient("S1");
    Ptr<_APClient> connection;
    ASSERT_EQ(server_.Session(L"S1")->get_Client(connection.Out()), S_OK);
    const std::string id = Narrow(Read(connection, &_APClient::get_Identifier).c_str());
    client.SendsText(std::string(1001, 'x'));
    ASSERT_TRUE(AwaitEvent("Disconnected"));
    const auto errors = events_.Of("SessionError");
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_THAT(errors[0], testing::StartsWith("S1 " + id + " 10040 "));
    const std::string rest = errors[0].substr(("S1 " + id + " ").size());
    const auto comma = rest.find(' ');
    EXPECT_THAT(at_listener.heard,
                Contains("4(object, " + rest.substr(0, comma) + ", " + rest.substr(comma + 1) + ")"));
}

TEST_F(Sessions, AloneHaveErrors) {
    server_.Listener()->put_FrameLimit(1000);
    auto& stranger = Client();
    stranger.SendsText(std::string(1001, 'x'));
    EXPECT_TRUE(stranger.IsDisconnected());
    SaysSomethingElse();
    EXPECT_THAT(events_.Of("SessionError"), IsEmpty());
    EXPECT_THAT(events_.Of("Disconnected"), IsEmpty());
}

TEST_F(Sessions, AreNotNeededForARequestOfTheLoginServer) {
    ApplicationServer other(bus_.Port());
    EXPECT_EQ(other.object->Initialize(Text(L"Demo"), nullptr, other.bus.Get(), nullptr, _variant_t(L"1.0")),
              S_OK);
    ASSERT_EQ(other.bus->Start(), S_OK);
    const std::string type = Narrow(Read(other.bus, &_Client::get_ReplyType).c_str());
    const std::string subtype = Narrow(Read(other.bus, &_Client::get_ReplySubType).c_str());
    ASSERT_TRUE(Await([&] {
        VARIANT_BOOL connected = VARIANT_FALSE;
        other.bus->get_Connected(&connected);
        return connected != VARIANT_FALSE;
    }));
    zeb_.Says(MessageOf("RequestBroadcastAS"), type, subtype);
    ASSERT_TRUE(Await([&] { return !other.events.heard.empty(); }));
    EXPECT_THAT(other.events.heard, ElementsAre("XMLBusReceive RequestBroadcastAS 0 "));
}

}  // namespace
}  // namespace kq
