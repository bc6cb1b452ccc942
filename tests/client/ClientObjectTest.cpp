// The client object itself: its fields, what puts it into a state from outside, and its end.
#include "client/LoginFixture.h"

namespace kq {
namespace {

class ClientObjectTest : public LoginFixture {
 protected:
    // SetSystemLoginState with good values, each of which a test replaces.
    std::string session =
        R"(<ASMessage type="SessionInfo" version="1"><AppID>Demo</AppID><SessionID>S1</SessionID></ASMessage>)";
    KQAppSessClient::TextOrObject<TranslationTable> table;
    std::string profiles = R"(<Profiles lastUsed=""><Profile name="A"/><Profile name="B"/></Profiles>)";
    std::string profile_name;
    std::string address = "host";
    std::int32_t port = 7000;
    std::int32_t time_out = 5000;

    void SetState() {
        client->SetSystemLoginState(session, table, profiles, profile_name, address, port, time_out);
    }
};

TEST_F(ClientObjectTest, AFreshOneIsNotLoggedInAndUsesProfiles) {
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    EXPECT_TRUE(client->UseProfiles());
    EXPECT_FALSE(client->UseASServerForLogin());
    ASSERT_NE(client->SessionInfo(), nullptr);
    EXPECT_FALSE(client->SessionInfo()->IsInitialized());
    EXPECT_EQ(client->Profiles(), nullptr);
    EXPECT_EQ(client->SessionClient(), nullptr);
    EXPECT_EQ(machine.network->ConnectCount(), 0U);
    EXPECT_THAT(machine.profile_file->files, IsEmpty());
}

TEST_F(ClientObjectTest, AFreshOneKnowsNoApplicationServer) {
    EXPECT_EQ(client->AppServerAddress(), "");
    EXPECT_EQ(client->AppServerPort(), 0);
    EXPECT_EQ(client->AppServerTimeOut(), 0);
}

TEST_F(ClientObjectTest, NeedsAPlatform) {
    ExpectError(ErrorOf([] { KQAppSessClient(nullptr); }), NumberOf(RuntimeError::ObjectNotSet),
                "A client object needs a platform, such as that of MakePlatform");
}

TEST_F(ClientObjectTest, StoresAnyValueOfItsSimpleProperties) {
    client->SetAppServerPort(-7);
    client->SetAppServerTimeOut(-1);
    client->SetRestrictPort(99'999);
    client->SetAppServerAddress("any thing");
    EXPECT_EQ(client->AppServerPort(), -7);
    EXPECT_EQ(client->AppServerTimeOut(), -1);
    EXPECT_EQ(client->RestrictPort(), 99'999);
    EXPECT_EQ(client->AppServerAddress(), "any thing");
}

// --- CurrentProfile

TEST_F(ClientObjectTest, TakesACurrentProfileWhoseNameIsInTheCollection) {
    SetState();
    auto same_name = std::make_shared<Profile>("B");
    client->SetCurrentProfile(same_name);
    EXPECT_EQ(client->CurrentProfile(), same_name);
}

TEST_F(ClientObjectTest, IgnoresACurrentProfileThatIsNotInTheCollection) {
    SetState();
    client->SetCurrentProfile(std::make_shared<Profile>("b"));
    EXPECT_EQ(client->CurrentProfile()->Name(), "A");
}

TEST_F(ClientObjectTest, ACurrentProfileWithoutACollectionIsAnObjectNotSet) {
    EXPECT_EQ(ErrorOf([this] { client->SetCurrentProfile(std::make_shared<Profile>("A")); }).Number(),
              NumberOf(RuntimeError::ObjectNotSet));
}

// --- SetSystemLoginState

TEST_F(ClientObjectTest, SetSystemLoginStateIsAsGoodAsASystemLogin) {
    SetState();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(client->SessionInfo()->SessionID(), "S1");
    EXPECT_EQ(client->AppServerAddress(), "host");
    EXPECT_EQ(client->AppServerTimeOut(), 5000);
}

TEST_F(ClientObjectTest, SetSystemLoginStateReportsTheState) {
    std::vector<KQAppSessLoginState> states;
    Owner owner;
    client->LoginStateChanged.Connect(owner, [&](KQAppSessLoginState state) { states.push_back(state); });
    SetState();
    SetState();
    EXPECT_THAT(states, ElementsAre(kqaslsSystemLogin));
}

TEST_F(ClientObjectTest, SetSystemLoginStateKeepsTheObjectsThatItIsGiven) {
    const auto message = std::make_shared<XMLMessage>("SessionInfo", "1");
    const auto collection = std::make_shared<Profiles>();
    client->SetSystemLoginState(message, table, collection, "", "host", 7000, 5000);
    EXPECT_EQ(client->SessionInfo()->Export(), message);
    EXPECT_EQ(client->Profiles(), collection);
}

TEST_F(ClientObjectTest, SetSystemLoginStateWithoutPortOrAddressLeavesTheState) {
    port = 0;
    SetState();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    port = 7000;
    address = "";
    SetState();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    address = "host";
    SetState();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(ClientObjectTest, SetSystemLoginStateTakesTheNamedProfileOrTheFirstOrNone) {
    SetState();
    EXPECT_EQ(client->CurrentProfile()->Name(), "A");
    profile_name = "B";
    SetState();
    EXPECT_EQ(client->CurrentProfile()->Name(), "B");
    profile_name = "unknown";
    SetState();
    EXPECT_EQ(client->CurrentProfile(), nullptr);
    profile_name = "";
    profiles = "<Profiles/>";
    SetState();
    EXPECT_EQ(client->CurrentProfile(), nullptr);
}

TEST_F(ClientObjectTest, ATranslationTableGivenAsObjectIsKept) {
    const auto object = std::make_shared<TranslationTable>();
    table = object;
    SetState();
    EXPECT_EQ(client->TranslationTable(), object);
}

TEST_F(ClientObjectTest, ATranslationTableGivenAsTextLeavesTheFieldAsItWas) {
    const auto former = std::make_shared<TranslationTable>();
    table = former;
    SetState();
    table = std::string(R"(<TranslationTable language="en"><Text key="a">b</Text></TranslationTable>)");
    SetState();
    EXPECT_EQ(client->TranslationTable(), former);
}

TEST_F(ClientObjectTest, ATranslationTableTextThatDoesNotLoadRaisesItsErrorAndLeavesTheField) {
    const auto former = std::make_shared<TranslationTable>();
    table = former;
    SetState();
    table = std::string("broken");
    EXPECT_EQ(ErrorOf([this] { SetState(); }).Number(), kNotWebData);
    EXPECT_EQ(client->TranslationTable(), former);
}

TEST_F(ClientObjectTest, NoTranslationTableClearsTheField) {
    table = std::make_shared<TranslationTable>();
    SetState();
    table = std::monostate();
    SetState();
    EXPECT_EQ(client->TranslationTable(), nullptr);
}

TEST_F(ClientObjectTest, ASessionTextThatIsNoMessageChangesNothing) {
    SetState();
    session = "<html/>";
    address = "other";
    EXPECT_EQ(ErrorOf([this] { SetState(); }).Number(), XMLMessage::kNotAMessage);
    EXPECT_EQ(client->AppServerAddress(), "host");
    EXPECT_EQ(client->SessionInfo()->SessionID(), "S1");
}

TEST_F(ClientObjectTest, AnEmptySessionOrProfilesArgumentIsAnObjectNotSet) {
    EXPECT_EQ(ErrorOf([this] { client->SetSystemLoginState({}, table, profiles, "", "h", 1, 1); }).Number(),
              NumberOf(RuntimeError::ObjectNotSet));
}

TEST_F(ClientObjectTest, ATimeOutOfZeroReadsTheStoredOneByTheWholeTextRule) {
    time_out = 0;
    EXPECT_EQ(ErrorOf([this] { SetState(); }).Number(), NumberOf(RuntimeError::TypeMismatch));
    EXPECT_EQ(client->AppServerPort(), 7000);  // set before the failing step
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    Settings().SetSetting("TimeOut", "8000x");
    EXPECT_EQ(ErrorOf([this] { SetState(); }).Number(), NumberOf(RuntimeError::TypeMismatch));
    Settings().SetSetting("TimeOut", "8000");
    SetState();
    EXPECT_EQ(client->AppServerTimeOut(), 8000);
}

// --- SetSystemConnectState

TEST_F(ClientObjectTest, SetSystemConnectStateOnAFreshObjectRaisesSessionRequired) {
    ExpectError(ErrorOf([this] { client->SetSystemConnectState("a", 1, 2); }), kqaserrLoginSessionRequired,
                "No session info is present.  Either perform a system login or call SetSystemLoginState "
                "before calling this method.");
}

TEST_F(ClientObjectTest, SetSystemConnectStateStoresThreeSettings) {
    SystemLogin();
    client->SetSystemConnectState("zeb.example", 5000, 30);
    EXPECT_EQ(Settings().Setting("Address", ""), "zeb.example");
    EXPECT_EQ(Settings().Setting("Port", ""), "5000");
    EXPECT_EQ(Settings().Setting("TimeOut", ""), "30");
    EXPECT_EQ(Settings().Setting("UseASServerForLogin", "none"), "none");
    EXPECT_EQ(client->AppServerAddress(), FakeZeb::kAddress);
}

TEST_F(ClientObjectTest, SetSystemConnectStateRaisesThePathOfAFileThatCannotBeWritten) {
    SystemLogin();
    machine.profile_file->read_only = true;
    const auto expect = [](const Error& error) {
        ExpectError(error, NumberOf(RuntimeError::PathFileAccess),
                    "The settings could not be stored in /home/user/Documents/HLXApps/AppSess_Demo.ini");
        EXPECT_EQ(error.Cause(), ErrorCause::SettingsFile);
    };
    expect(ErrorOf([this] { client->SetSystemConnectState("zeb.example", 5000, 30); }));
    expect(ErrorOf([this] { client->SetSystemConnectState2("zeb.example", 5000, 30, true); }));
    client->SetSystemConnectState("", 5000, 30);
}

TEST_F(ClientObjectTest, SetSystemConnectStateWithAnEmptyAddressWritesNothing) {
    SystemLogin();
    const int writes = machine.profile_file->write_count;
    client->SetSystemConnectState("", 5000, 30);
    client->SetSystemConnectState2("", 5000, 30, true);
    EXPECT_EQ(machine.profile_file->write_count, writes);
}

TEST_F(ClientObjectTest, SetSystemConnectState2StoresTheFlagAsOneOrZeroAndLeavesTheField) {
    SetState();
    client->SetSystemConnectState2("a", 1, 2, true);
    EXPECT_EQ(Settings().Setting("UseASServerForLogin", ""), "1");
    EXPECT_FALSE(client->UseASServerForLogin());
    client->SetSystemConnectState2("a", 1, 2, false);
    EXPECT_EQ(Settings().Setting("UseASServerForLogin", ""), "0");
}

// --- TerminateClient

TEST_F(ClientObjectTest, TerminateClientLeavesTheLoginStateUntilTheDisconnectionArrives) {
    LogInWhole();
    client->TerminateClient();
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
    EXPECT_EQ(client->SessionClient(), nullptr);
    EXPECT_TRUE(client->SessionInfo()->IsInitialized());
    EXPECT_NE(client->TranslationTable(), nullptr);
    machine.loop->RunReady();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(ClientObjectTest, TheDisconnectionArrivesAlsoWhenNothingElseHoldsTheConnection) {
    LogInWhole();
    address = "";
    SetState();
    ASSERT_EQ(client->LoginState(), kqaslsServerLogin);
    client->TerminateClient();
    machine.loop->RunReady();
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

TEST_F(ClientObjectTest, AServerLoginAfterTerminateClientConnectsAgain) {
    LogInWhole();
    client->TerminateClient();
    EXPECT_TRUE(ServerLogin());
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
}

TEST_F(ClientObjectTest, TerminateClientOnAFreshObjectDoesNothing) {
    client->TerminateClient();
    client->TerminateClient();
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(ClientObjectTest, DroppingTheObjectEndsItsConnections) {
    LogInWhole();
    client.reset();
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Open() + app.Open(), 0);
}

TEST_F(ClientObjectTest, ResolvesHostNamesToDottedAddresses) {
    machine.resolver->names["zeb.example"] = {"192.0.2.1", "192.0.2.2"};
    EXPECT_EQ(client->IPAddressFromHostName("zeb.example"), "192.0.2.1");
    EXPECT_EQ(client->IPAddressFromHostName("127.0.0.1"), "127.0.0.1");
    EXPECT_EQ(client->IPAddressFromHostName("nowhere.example"), "");
}

}  // namespace
}  // namespace kq
