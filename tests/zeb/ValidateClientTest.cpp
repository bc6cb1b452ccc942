// "ASValidateClientRequest" in all its answers.
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class ValidateClient : public ZebTest {
 protected:
    static ASValidateClientRequest Request(const std::string& version = "1.0") {
        ASValidateClientRequest request;
        request.AppID = kApp;
        request.InterfaceVersion = version;
        request.ClientVersion = "3.1.4";
        return request;
    }
    std::string Available(const ASValidateClientRequest& request) {
        return ASValidateClientResponse::Read(Ask(request.Build())).InterfaceAvailable;
    }
};

TEST_F(ValidateClient, FindsTheInterfaceOfALiveServer) {
    StartZeb();
    const auto server = RunningServer();
    const auto reply = Ask(Request().Build());
    EXPECT_EQ(reply.Type(), "ASValidateClientResponse");
    EXPECT_EQ(reply.Version(), "1");
    ExpectGranted(reply);
    EXPECT_EQ(reply.Field("InterfaceAvailable"), "True");
    EXPECT_EQ(reply.Field("ClientAvailable"), "False");
}

TEST_F(ValidateClient, FindsNoInterfaceWithoutAServer) {
    StartZeb();
    EXPECT_EQ(Available(Request()), "False");
}

TEST_F(ValidateClient, ComparesTheInterfaceVersionExactly) {
    StartZeb();
    const auto server = RunningServer();
    EXPECT_EQ(Available(Request("1")), "False");
}

TEST_F(ValidateClient, OtherApplicationsDoNotCount) {
    StartZeb();
    const auto server = RunningServer(7000, "Other");
    EXPECT_EQ(Available(Request()), "False");
}

TEST_F(ValidateClient, ARestrictionLeavesOnlyServersOfThatAddressAndPort) {
    StartZeb();
    auto server = NewServer(7000);
    server->address = "203.0.113.5";
    server->Announce();
    auto request = Request();
    request.RestrictIP = "203.0.113.5";
    EXPECT_EQ(Available(request), "True");
    request.RestrictPort = "7001";
    EXPECT_EQ(Available(request), "False");
    request.RestrictPort = "7000";
    EXPECT_EQ(Available(request), "True");
    request.RestrictIP = "203.0.113.6";
    EXPECT_EQ(Available(request), "False");
}

TEST_F(ValidateClient, AHostNameIsNotLookedUpAndLeavesEveryServerOfThatPort) {
    StartZeb();
    const auto server = RunningServer(7000);
    auto request = Request();
    request.RestrictIP = "apps.example";
    request.RestrictPort = "7000";
    EXPECT_EQ(Available(request), "True");
    request.RestrictPort = "7001";
    EXPECT_EQ(Available(request), "False");
    EXPECT_TRUE(machine.resolver->asked.empty());
}

TEST_F(ValidateClient, ANumericAddressMayBeSpelledInEveryWay) {
    StartZeb();
    auto server = NewServer(7000);
    server->address = "2001:db8::5";
    server->Announce();
    auto request = Request();
    for (const char* spelling : {"2001:db8::5", "2001:DB8:0::5", "[2001:db8::5]"}) {
        request.RestrictIP = spelling;
        EXPECT_EQ(Available(request), "True") << spelling;
    }
    request.RestrictIP = "2001:db8::6";
    EXPECT_EQ(Available(request), "False");
}

TEST_F(ValidateClient, ARestrictionToTheLoginServerItselfIsNone) {
    StartZeb();
    const auto server = RunningServer(7000);
    auto request = Request();
    request.RestrictPort = std::to_string(zeb->Port());
    for (const char* name : {"127.0.0.1", "127.0.0.53", "::1", "192.0.2.10"}) {
        request.RestrictIP = name;
        EXPECT_EQ(Available(request), "True") << name;
    }
    request.RestrictIP = "203.0.113.7";
    EXPECT_EQ(Available(request), "False") << "another machine's port of that number";
}

TEST_F(ValidateClient, AnAddressOfThisMachineMeansServersOnThisMachine) {
    StartZeb();
    const auto here = RunningServer(7000);
    const auto elsewhere = NewServer(7001);
    elsewhere->address = "203.0.113.5";
    elsewhere->Announce();
    auto request = Request();
    for (const char* address : {"127.0.0.1", "127.0.0.53", "::1", "192.0.2.10"}) {
        SCOPED_TRACE(address);
        request.RestrictIP = address;
        request.RestrictPort = "7000";
        EXPECT_EQ(Available(request), "True");
        request.RestrictPort = "7001";
        EXPECT_EQ(Available(request), "False");
    }
}

TEST_F(ValidateClient, ARelayedRequestIsAnsweredToTheServerThatRelayedIt) {
    StartZeb();
    const auto server = RunningServer();
    server->Relay(Request().Build(), "17");
    const auto reply = server->ExpectHeard();
    EXPECT_EQ(reply.Type(), "ASValidateClientResponse");
    EXPECT_EQ(reply.Schema(), "ZEBSchemas");
    EXPECT_EQ(reply.Field("TransID"), "17");
    EXPECT_EQ(reply.Field("InterfaceAvailable"), "True");
    EXPECT_EQ(reply.Field("ClientAvailable"), "False");
}

TEST_F(ValidateClient, ARelayedRequestIsAnsweredWithTheTagOfTheClientsRequest) {
    StartZeb();
    const auto server = RunningServer();
    server->Relay(Request().Build(), "17", "7");
    EXPECT_EQ(server->ExpectHeard().Field("ReturnTag"), "7");
    server->Relay(Request().Build(), "17");
    EXPECT_FALSE(server->ExpectHeard().HasField("ReturnTag"));
}

TEST_F(ValidateClient, ARelayedRestrictionNamesTheServerThatRelayed) {
    StartZeb();
    const auto server = RunningServer(7000);
    auto request = Request();
    request.RestrictIP = "what the client typed";
    request.RestrictPort = "7000";
    server->Relay(request.Build());
    EXPECT_EQ(server->ExpectHeard().Field("InterfaceAvailable"), "True");
}

TEST_F(ValidateClient, ARestrictionPortThatIsTooLargeIsRefused) {
    StartZeb();
    auto request = Request();
    request.RestrictPort = "99999999999";
    ExpectRefused(Ask(request.Build()), Refusal::Failed);
}

}  // namespace
}  // namespace kq::zeb
