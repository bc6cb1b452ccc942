// Uploading the profiles, adding and replacing them, without a user to ask.
#include "client/LoginFixture.h"

namespace kq {
namespace {

class ProfilesOnClientTest : public LoginFixture {
 protected:
    void SetUp() override {
        ASSERT_TRUE(SystemLogin());
        SessConfig settings = Settings();
        settings.SetSetting("Address", FakeZeb::kAddress);
        settings.SetSetting("Port", "7710");
        settings.SetSetting("TimeOut", "4000");
    }
    bool Upload() { return client->UpdateProfilesEx(false, address, port, time_out); }
    Error UploadError() {
        return ErrorOf([this] { Upload(); });
    }
    void Forget(const std::string& key) { Settings().SetSetting(key, ""); }

    std::string address;
    std::int32_t port = 0;
    std::int32_t time_out = 0;
};

TEST_F(ProfilesOnClientTest, SendsTheWholeCollectionWithItsFieldsInOrder) {
    EXPECT_TRUE(Upload());
    const XMLMessage sent = zeb.Latest(FakeZeb::kUpload);
    std::vector<std::string> names;
    for (const auto& field : sent.Root().Children())
        names.push_back(field.Name());
    EXPECT_THAT(names, ElementsAre("AppID", "LoginID", "UserUID", "SessionID", "Profiles"));
    EXPECT_EQ(sent.Field("UserUID"), "55");
    Profiles received;
    received.LoadXML(sent.Field("Profiles"));
    EXPECT_EQ(received.Count(), 2);
}

TEST_F(ProfilesOnClientTest, ShowsTheCallerWhatWasFilledIn) {
    Upload();
    EXPECT_EQ(address, FakeZeb::kAddress);
    EXPECT_EQ(port, 7710);
    EXPECT_EQ(time_out, 4000);
}

TEST_F(ProfilesOnClientTest, TakesGivenArgumentsBeforeTheSettings) {
    Settings().SetSetting("Port", "1");
    port = 7710;
    EXPECT_TRUE(Upload());
}

TEST_F(ProfilesOnClientTest, WithoutAStoredTimeOutIsATypeMismatch) {
    Forget("TimeOut");
    EXPECT_EQ(UploadError().Number(), NumberOf(RuntimeError::TypeMismatch));
    EXPECT_EQ(address, FakeZeb::kAddress);
}

TEST_F(ProfilesOnClientTest, WithAStoredPortOfZeroIsABadAddress) {
    Settings().SetSetting("Port", "0");
    ExpectError(UploadError(), kqaserrLoginBadAddr,
                "Invalid address (192.0.2.1), port (0), or timeout value (4000) was specified.");
}

TEST_F(ProfilesOnClientTest, ABadAddressLeavesTheLoginConnection) {
    Forget("Address");
    UploadError();
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Open(), 1);
}

TEST_F(ProfilesOnClientTest, WithoutAStoredAddressIsABadAddress) {
    Forget("Address");
    EXPECT_EQ(UploadError().Number(), kqaserrLoginBadAddr);
}

TEST_F(ProfilesOnClientTest, WithoutSettingsObjectAndArgumentsIsABadAddress) {
    KQAppSessClient fresh(platform);
    EXPECT_EQ(ErrorOf([&] { fresh.UpdateProfilesEx(false, address, port, time_out); }).Number(),
              kqaserrLoginBadAddr);
}

TEST_F(ProfilesOnClientTest, AnUnreachableLoginServerRaisesNoConnect) {
    zeb.StopListening();
    ExpectError(UploadError(), kqaserrLoginNoConnect,
                "Could not connect to login server: " + NetErrorText(10061) + ".");
    EXPECT_EQ(client->Profiles()->Count(), 2);
}

TEST_F(ProfilesOnClientTest, AReplacedProfileThatWasCurrentStaysCurrent) {
    const auto changed = std::make_shared<Profile>("Main");
    client->AddReplaceProfileASP(changed);
    EXPECT_EQ(client->CurrentProfile(), changed);
    EXPECT_EQ(client->Profiles()->Count(), 2);
    EXPECT_EQ(zeb.Latest(FakeZeb::kUpload).Type(), FakeZeb::kUpload);
}

TEST_F(ProfilesOnClientTest, AnAddedProfileDoesNotBecomeCurrent) {
    client->AddReplaceProfileASP(std::make_shared<Profile>("Third"));
    EXPECT_EQ(client->CurrentProfile()->Name(), "Main");
    EXPECT_TRUE(client->Profiles()->Exists("Third"));
}

TEST_F(ProfilesOnClientTest, UploadsOnceForEachReplacement) {
    client->AddReplaceProfileASP(std::make_shared<Profile>("Main"));
    EXPECT_EQ(std::ranges::count(zeb.HeardTypes(), FakeZeb::kUpload), 1);
}

TEST_F(ProfilesOnClientTest, AFailedUploadLeavesTheChangeInPlace) {
    zeb.StopListening();
    EXPECT_EQ(ErrorOf([this] { client->AddReplaceProfileASP(std::make_shared<Profile>("Third")); }).Number(),
              kqaserrLoginNoConnect);
    EXPECT_TRUE(client->Profiles()->Exists("Third"));
}

TEST_F(ProfilesOnClientTest, WithoutASessionRecordIsAnObjectNotSetBeforeItConnects) {
    KQAppSessClient fresh(platform);
    const int accepted = zeb.Accepted();
    EXPECT_EQ(ErrorOf([&] {
                  std::string to = FakeZeb::kAddress;
                  std::int32_t at = FakeZeb::kPort;
                  time_out = 1000;
                  fresh.UpdateProfilesEx(false, to, at, time_out);
              }).Number(),
              NumberOf(RuntimeError::ObjectNotSet));
    EXPECT_EQ(zeb.Accepted(), accepted);
}

TEST_F(ProfilesOnClientTest, TheAnswerIsNotLookedInto) {
    zeb.Once(FakeZeb::kUpload, zeb.Answer(FakeZeb::Refusal("ASProfilesUpdateResponse", "9", "No", "")));
    EXPECT_TRUE(Upload());
    zeb.Once(FakeZeb::kUpload, zeb.Answer(FakeZeb::Validation()));
    EXPECT_TRUE(Upload());
}

TEST_F(ProfilesOnClientTest, ClosesItsConnectionAfterTheAnswer) {
    Upload();
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Open(), 0);
}

TEST_F(ProfilesOnClientTest, AnUploadWithoutAnswerRaisesTheTimeOutAndLeavesNoConnection) {
    zeb.Once(FakeZeb::kUpload, zeb.Silence());
    EXPECT_EQ(
        TimeOf([this] { EXPECT_EQ(UploadError().Number(), static_cast<std::int32_t>(NetError::TimedOut)); }),
        Milliseconds(4000));
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Open(), 0);
}

TEST_F(ProfilesOnClientTest, TerminateClientInsideAnUploadEndsItAtOnce) {
    zeb.Once(FakeZeb::kUpload, [this](ScriptedPeer::Link&, const XMLMessage&) { client->TerminateClient(); });
    EXPECT_EQ(UploadError().Number(), static_cast<std::int32_t>(NetError::Interrupted));
    zeb.StopListening();
    address = "192.0.2.99";
    machine.network->BlackHole(address, FakeZeb::kPort);
    machine.loop->StartTimer(Milliseconds(100), [this] { client->TerminateClient(); });
    EXPECT_EQ(TimeOf([this] {
                  EXPECT_EQ(UploadError().Number(), static_cast<std::int32_t>(NetError::Interrupted));
              }),
              Milliseconds(100));
}

TEST_F(ProfilesOnClientTest, DroppingTheClientObjectInsideAnUploadEndsIt) {
    zeb.Once(FakeZeb::kUpload, [this](ScriptedPeer::Link&, const XMLMessage&) { client.reset(); });
    KQAppSessClient& dying = *client;
    EXPECT_EQ(ErrorOf([&] { dying.UpdateProfilesEx(false, address, port, time_out); }).Number(),
              static_cast<std::int32_t>(NetError::Interrupted));
}

TEST_F(ProfilesOnClientTest, AClientDroppedByAnEventOfTheCollectionConnectsNoMore) {
    Owner owner;
    const auto profiles = client->Profiles();
    profiles->ProfileAdded.Connect(owner, [this](const auto&) { client.reset(); });
    const int accepted = zeb.Accepted();
    KQAppSessClient& dying = *client;
    EXPECT_EQ(ErrorOf([&] { dying.AddReplaceProfileASP(std::make_shared<Profile>("Third")); }).Number(),
              static_cast<std::int32_t>(NetError::Interrupted));
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Accepted(), accepted);
}

TEST_F(ProfilesOnClientTest, AProcedureInsideAnUploadRaisesInvalidProcedureCall) {
    std::int32_t inner = 0;
    zeb.Once(FakeZeb::kUpload, [&](ScriptedPeer::Link& link, const XMLMessage&) {
        inner = ServerLoginError().Number();
        link.Send(FakeZeb::Validation());
    });
    EXPECT_TRUE(Upload());
    EXPECT_EQ(inner, NumberOf(RuntimeError::InvalidProcedureCall));
}

TEST_F(ProfilesOnClientTest, AProfileAddedByTheHostWhileTheUploadConnectsTravelsWithIt) {
    machine.loop->Post([this] { client->Profiles()->Add(std::make_shared<Profile>("Third")); });
    EXPECT_TRUE(Upload());
    Profiles received;
    received.LoadXML(zeb.Latest(FakeZeb::kUpload).Field("Profiles"));
    EXPECT_TRUE(received.Exists("Third"));
}

TEST_F(ProfilesOnClientTest, AProfileAddedByTheHostInsideAProcedureIsNotUploaded) {
    zeb.Once(FakeZeb::kUpload, [this](ScriptedPeer::Link& link, const XMLMessage&) {
        client->Profiles()->Add(std::make_shared<Profile>("Third"));
        link.Send(FakeZeb::Validation());
    });
    EXPECT_TRUE(Upload());
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(std::ranges::count(zeb.HeardTypes(), FakeZeb::kUpload), 1);
}

TEST_F(ProfilesOnClientTest, WithoutACollectionIsAnObjectNotSet) {
    KQAppSessClient fresh(platform);
    EXPECT_EQ(ErrorOf([&] { fresh.AddReplaceProfileASP(std::make_shared<Profile>("A")); }).Number(),
              NumberOf(RuntimeError::ObjectNotSet));
}

}  // namespace
}  // namespace kq
