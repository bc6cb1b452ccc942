// What clients ask an application server for, and what comes of it.
#include "automation/FailingAccept.h"
#include "automation/SessionsTesting.h"
#include "automation/WideText.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Requests : public SessionsTest {
 protected:
    void SetUp() override { Listens(); }
    std::string RefusalIn(const std::string& locale, const std::string& app_id = "ABC") {
        auto& client = Client();
        client.Registers("S1", "1", app_id, locale);
        const auto answer = client.Answer();
        EXPECT_EQ(TypeOf(answer), "ASRegisterResponse");
        EXPECT_EQ(FieldOf(answer, "ErrorNum"), "-2147218933");
        EXPECT_TRUE(client.IsDisconnected());
        return FieldOf(answer, "ErrorDesc");
    }
    static std::string XMLOf(const MessageObject& message) {
        BSTR text = nullptr;
        message->ToXML(&text);
        const _bstr_t owned(text, false);
        return Narrow(text);
    }
};

TEST_F(Requests, ForRegistrationAreTakenInEveryWritingOfTheVersion) {
    for (const std::string version : {"1", "1.00", "1e0"}) {
        Client().Registers("S1", version);
        EXPECT_EQ(FieldOf(zeb_.Request("RequestASRegistration"), "SessionID"), "S1") << version;
    }
}

TEST_F(Requests, ForRegistrationInAnotherVersionAreRefusedInThatVersion) {
    auto& client = Client();
    client.Registers("S1", "1.1");
    const auto answer = client.Answer();
    EXPECT_EQ(TypeOf(answer), "ASRegisterResponse");
    EXPECT_EQ(Read(answer, &_XMLMessage::get_Version), L"1.1");
    EXPECT_EQ(FieldOf(answer, "ErrorNum"), "-2147218931");
    EXPECT_EQ(FieldOf(answer, "ErrorDesc"), "Unknown interface version %0%.  Message cannot be handled.");
    EXPECT_TRUE(client.IsDisconnected());
    EXPECT_THAT(events_.heard, IsEmpty());
}

TEST_F(Requests, ForAnotherApplicationAreRefusedInTheClientsLanguage) {
    EXPECT_EQ(RefusalIn("1033"), "This application server does not support AppID ABC.");
    EXPECT_EQ(RefusalIn("2058", "demo"),
              Narrow(L"Esto servidor de aplicaci\x00f3n no conoce el AppID demo."));
    EXPECT_THAT(events_.heard, IsEmpty());
}

TEST_F(Requests, AreRefusedInEnglishForEveryLocaleThatIsNotSpanish) {
    for (const std::string locale : {"1046", "0", "", "x"})
        EXPECT_EQ(RefusalIn(locale), "This application server does not support AppID ABC.") << locale;
}

TEST_F(Requests, OfAStrangerAreRefusedAndTheStrangerIsDisconnected) {
    auto& client = Client();
    client.Sends(MessageOf("Order", {{"LocaleID", "1033"}}));
    const auto answer = client.Answer();
    EXPECT_EQ(TypeOf(answer), "ASUnknownResponse");
    EXPECT_EQ(FieldOf(answer, "ErrorNum"), "-2147218932");
    EXPECT_EQ(FieldOf(answer, "ErrorDesc"),
              "Client has not registered.  Incoming messages will be ignored until registration has been "
              "completed.");
    EXPECT_TRUE(client.IsDisconnected());
    EXPECT_THAT(events_.heard, IsEmpty());
}

TEST_F(Requests, OfARegisteredClientAreGivenToTheHostAsTheyCame) {
    auto& client = RegisteredClient("S1");
    const auto order = MessageOf("Order", {{"LocaleID", "1033"}});
    client.Sends(order, "tag");
    ASSERT_TRUE(AwaitEvent("ReceivedData"));
    EXPECT_THAT(events_.Of("ReceivedData"), ElementsAre("S1 " + XMLOf(order) + " 128 tag"));
}

// What a client sends is taken in its order: when the message has come, the bytes before it had come.
TEST_F(Requests, ThatAreNoXMLAreDroppedWithoutAnEvent) {
    auto& client = RegisteredClient("S1");
    auto& stranger = Client();
    events_.Forget();
    client.SendsBytes("<ASMessage type=\"Order\" version=\"1\"/>");
    client.Sends(MessageOf("Order"), "second");
    stranger.SendsBytes("bytes");
    stranger.Sends(MessageOf("Order"));
    EXPECT_EQ(TypeOf(stranger.Answer()), "ASUnknownResponse");
    ASSERT_TRUE(AwaitEvent("ReceivedData"));
    EXPECT_THAT(events_.Of("ReceivedData"), ElementsAre("S1 " + XMLOf(MessageOf("Order")) + " 128 second"));
}

TEST_F(Requests, AreNotMissedWhenAStrangerLeaves) {
    long count = 0;
    auto& client = Client();
    ASSERT_TRUE(Await([&] { return server_.Listener()->get_Count(&count) == S_OK && count == 1; }));
    client.Leaves();
    ASSERT_TRUE(Await([&] { return server_.Listener()->get_Count(&count) == S_OK && count == 0; }));
    EXPECT_THAT(events_.heard, IsEmpty());
}

TEST_F(Requests, ThatTheListenerCannotTakeAreItsErrorWithNumberAndDescription) {
    HostObject at_listener;
    const auto listener = server_.Listener();
    Advise(listener.Get(), __uuidof(_ListenerEvents), &at_listener);
    ASSERT_TRUE(FailNextAccept());
    Client();
    ASSERT_TRUE(AwaitEvent("Error"));
    const std::string error = events_.Of("Error")[0];
    EXPECT_THAT(error, testing::StartsWith("10024 "));
    EXPECT_THAT(at_listener.heard, ElementsAre("5(10024, " + error.substr(6) + ")"));
    EXPECT_GT(error.size(), 6U);
    RegisteredClient("S1");  // the listener goes on
}

}  // namespace
}  // namespace kq
