// Direct connections: what is not a request, what is too much, and what must never be written down.
#include <gmock/gmock.h>

#include <kqappsession/Error.h>

#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

using Connection = ZebTest;

bool Ended(const std::shared_ptr<APClient>& client) {
    try {
        client->TakeBlock(0);
        return false;
    } catch (const Error&) {
        return !client->Connected();
    }
}

// The answer to what is no request.
void ExpectUnknown(const XMLMessage& reply) {
    EXPECT_EQ(reply.Type(), "ASUnknownResponse");
    const auto answer = ASUnknownResponse::Read(reply);
    EXPECT_EQ(answer.ErrorNum, std::to_string(NumberOf(Refusal::UnknownMessage)));
    EXPECT_EQ(answer.ErrorDesc, SentenceOf(Refusal::UnknownMessage));
}

TEST_F(Connection, AnUnknownMessageIsAnsweredAndTheConnectionClosed) {
    StartZeb();
    const auto client = NewClient();
    ExpectUnknown(client->Request(XMLMessage("ASRegisterRequest", "1")));
    EXPECT_TRUE(Ended(client));
}

TEST_F(Connection, MessagesOfTheBusAreUnknownHere) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    RequestASRegistration request;
    request.SessionID = Login("ana").SessionID;
    request.AppID = kApp;
    ExpectUnknown(Ask(request.Build()));
    ExpectUnknown(Ask(server->Info("D", {}).Build()));
    ExpectGranted(Login("ana"));
}

// The refusal of what is no message, after which the connection has ended.
void ExpectNotAMessage(const std::shared_ptr<APClient>& client, const std::string& tag) {
    const Block block = client->TakeBlock(0);
    XMLMessage reply;
    reply.LoadXML(block.data);
    ExpectUnknown(reply);
    EXPECT_EQ(block.tag, tag);
    EXPECT_TRUE(Ended(client));
}

TEST_F(Connection, TextThatIsNoMessageIsAnsweredAndTheConnectionClosed) {
    StartZeb();
    const auto client = NewClient();
    client->SendText("hello", "7");
    ExpectNotAMessage(client, "7");
}

TEST_F(Connection, RawBytesAreAnsweredAndTheConnectionClosed) {
    StartZeb();
    const auto client = NewClient();
    client->SendBytes("bytes", "7");
    ExpectNotAMessage(client, "7");
}

TEST_F(Connection, AMessageOfMoreThanAHundredThousandElementsIsRefused) {
    StartZeb();
    std::string text = "<ASMessage type=\"ASLoginRequest\" version=\"1\">";
    for (int i = 0; i < 100'000; ++i)
        text += "<a/>";
    const auto client = NewClient();
    client->SendText(text + "</ASMessage>");
    ExpectNotAMessage(client, "");
}

TEST_F(Connection, TheTagOfARequestComesBackWithItsAnswer) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    const auto client = NewClient();
    const std::vector<XMLMessage> requests = {
        ASValidateClientRequest().Build(), LoginRequest("ana").Build(), LoginRequest("nobody").Build(),
        ASPasswordChangeRequest().Build(), ASProfilesUpdate().Build(),  ASDownloadClientRequest().Build()};
    for (const auto& request : requests) {
        client->Send(request, request.Type());
        EXPECT_EQ(client->TakeBlock(0).tag, request.Type());
    }
}

TEST_F(Connection, EndsAfterTenSecondsWithoutARequest) {
    StartZeb();
    const auto client = NewClient();
    Pass(std::chrono::milliseconds(9'900));
    EXPECT_TRUE(client->Connected());
    Pass(std::chrono::milliseconds(100));
    EXPECT_FALSE(client->Connected());
}

TEST_F(Connection, EndsFiveMinutesAfterTheLastRequestOfAClientThatHasNotLoggedIn) {
    StartZeb();
    const auto client = NewClient();
    for (int i = 0; i < 3; ++i) {
        client->Request(ASValidateClientRequest().Build());
        Pass(std::chrono::seconds(299));
    }
    EXPECT_TRUE(client->Connected());
    Pass(std::chrono::seconds(1));
    EXPECT_FALSE(client->Connected());
}

TEST_F(Connection, HasNoTimeLimitOnceTheUserHasLoggedIn) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    const auto client = NewClient();
    ExpectGranted(client->Request(LoginRequest("ana").Build()));
    client->Request(ASValidateClientRequest().Build());
    Pass(std::chrono::hours(10));
    EXPECT_TRUE(client->Connected());
}

TEST_F(Connection, OfOneAddressMayTakeHalfOfThePlacesBeforeTheLogin) {
    ZebSettings settings;
    settings.max_connections = 200;
    StartZeb(settings);
    std::vector<std::shared_ptr<APClient>> crowd;
    for (int i = 0; i < 101; ++i)
        crowd.push_back(NewClient());
    machine.loop->RunReady();
    EXPECT_TRUE(crowd[99]->Connected());
    EXPECT_FALSE(crowd[100]->Connected());
}

TEST_F(Connection, ARequestOverTheLimitEndsIt) {
    ZebSettings settings;
    settings.max_request = 4096;
    StartZeb(settings);
    const auto client = NewClient();
    client->SendText(std::string(5000, 'x'));
    EXPECT_TRUE(Ended(client));
}

TEST_F(Connection, SeveralRequestsMayComeOverOneConnection) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    const auto client = NewClient();
    ASValidateClientRequest validate;
    validate.AppID = kApp;
    ExpectGranted(client->Request(validate.Build()));
    ExpectGranted(client->Request(LoginRequest("ana").Build()));
}

TEST_F(Connection, ADownloadIsRefusedAsThereIsNothingToDownload) {
    StartZeb();
    const auto reply = Ask(ASDownloadClientRequest().Build());
    EXPECT_EQ(reply.Type(), "ASDownloadClientResponse");
    ExpectRefused(reply, Refusal::NoClientPackage);
}

// The client whose address and port these are.
std::string NameOf(const APClient& client) {
    return client.LocalAddress() + ":" + std::to_string(client.LocalPort());
}

TEST_F(Connection, WhoClosesItDuringTheCheckIsLoggedByAddress) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    executor.hold = true;
    const auto client = NewClient();
    const auto name = NameOf(*client);
    client->Send(LoginRequest("ana").Build());
    machine.loop->RunReady();
    client->Disconnect();
    Pass(std::chrono::seconds(2));
    executor.RunHeld();
    machine.loop->RunReady();
    EXPECT_THAT(Log(), testing::HasSubstr("Login of ana to Demo from " + name));
}

TEST_F(Connection, WhoClosesItRightAfterARefusedRequestIsLoggedByAddress) {
    StartZeb();
    const auto client = NewClient();
    const auto name = NameOf(*client);
    client->Send(ASDownloadClientRequest().Build());
    client->Disconnect();
    Pass(std::chrono::seconds(2));
    EXPECT_THAT(Log(), testing::HasSubstr("ASDownloadClientResponse to " + name + " for"));
}

TEST_F(Connection, ThatFailsIsLoggedByAddress) {
    StartZeb();
    const auto client = NewClient();
    const auto name = NameOf(*client);
    machine.network->CutAll();
    machine.loop->RunReady();
    EXPECT_THAT(Log(), testing::HasSubstr("Connection from " + name + ": 10054 "));
}

TEST_F(Connection, OneTooManyIsLoggedWithoutAnAddress) {
    ZebSettings settings;
    settings.max_connections = 1;
    StartZeb(settings);
    const auto first = NewClient();
    const auto second = NewClient();
    EXPECT_TRUE(Ended(second));
    EXPECT_THAT(Log(), testing::HasSubstr("Connection from a client that was not accepted: 10024 "));
}

TEST_F(Connection, NoPasswordGetsIntoTheLog) {
    const std::string marked = "MarkedPassword17";
    StartZeb();
    AddUser("ana", marked);
    const auto server = RunningServer();
    Login("ana", marked);
    Login("ana", marked + "x");
    Login("ana", marked, marked + "y");
    server->Relay(LoginRequest("ana", marked + "z").Build());
    NewClient()->SendText("<ASLoginRequest><Password>" + marked);
    machine.loop->RunReady();
    EXPECT_NE(Log().find("Login of ana"), std::string::npos) << "the log is looked at";
    EXPECT_EQ(Log().find(marked), std::string::npos);
}

TEST_F(Connection, NobodyWritesLinesOfHisOwnIntoTheLog) {
    StartZeb();
    const auto server = RunningServer();
    AddUser("ana");
    auto request = LoginRequest("ana");
    request.AppID = "Demo\n[error] forged";
    Login(request);
    ASValidateClientRequest validate;
    validate.AppID = "Demo\n[error] forged";
    Ask(validate.Build());
    EXPECT_EQ(Log().find("\n[error] forged"), std::string::npos);
    EXPECT_NE(Log().find("Demo\\u000a[error] forged"), std::string::npos);
}

}  // namespace
}  // namespace kq::zeb
