// "ASProfilesUpdate".
#include <kqappsession/WebData.h>

#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class ProfilesUpdate : public ZebTest {
 protected:
    void SetUp() override { Start({}); }
    void Start(const ZebSettings& settings) {
        StartZeb(settings);
        uid = AddUser("ana");
        AddUser("bob");
        server = RunningServer();
        session = Login("ana").SessionID;
    }
    static std::string Named(const std::string& name) {
        Profiles profiles;
        profiles.Add(std::make_shared<Profile>(name));
        return profiles.ToXML();
    }
    ASProfilesUpdate Request(const std::string& profiles) {
        ASProfilesUpdate request;
        request.AppID = kApp;
        request.LoginID = "ana";
        request.UserUID = std::to_string(uid);
        request.SessionID = session;
        request.Profiles = profiles;
        return request;
    }
    ASProfilesUpdateResponse Update(const ASProfilesUpdate& request) {
        return ASProfilesUpdateResponse::Read(Ask(request.Build()));
    }
    ASProfilesUpdateResponse Update(const std::string& profiles) { return Update(Request(profiles)); }
    void ExpectStored(const std::string& profiles) { ExpectGranted(Update(profiles)); }
    bool Has(const std::string& name) {
        Profiles profiles;
        profiles.LoadXML(Login("ana").Profiles);
        return profiles.Exists(name);
    }

    std::int32_t uid = 0;
    std::unique_ptr<TestAppServer> server;
    std::string session;
};

TEST_F(ProfilesUpdate, WhatIsStoredComesWithTheNextLogin) {
    const auto reply = Ask(Request(Named("Work")).Build());
    EXPECT_EQ(reply.Type(), "ASProfilesUpdateResponse");
    ExpectGranted(reply);
    EXPECT_TRUE(Has("Work"));
}

TEST_F(ProfilesUpdate, ALaterUpdateReplacesTheEarlier) {
    ExpectStored(Named("Work"));
    ExpectStored(Named("Home"));
    EXPECT_FALSE(Has("Work"));
    EXPECT_TRUE(Has("Home"));
}

TEST_F(ProfilesUpdate, AnotherApplicationHasProfilesOfItsOwn) {
    ExpectStored(Named("Work"));
    const auto other = RunningServer(7001, "Other");
    auto request = LoginRequest("ana");
    request.AppID = "Other";
    EXPECT_EQ(Login(request).Profiles, Profiles().ToXML());
}

TEST_F(ProfilesUpdate, SessionUserAndApplicationMustBelongTogether) {
    auto request = Request(Named("Work"));
    request.UserUID = std::to_string(uid + 1);
    ExpectRefused(Update(request), Refusal::NoSession);
    request = Request(Named("Work"));
    request.LoginID = "bob";
    ExpectRefused(Update(request), Refusal::NoSession);
    request = Request(Named("Work"));
    request.AppID = "Other";
    ExpectRefused(Update(request), Refusal::NoSession);
    request = Request(Named("Work"));
    request.SessionID = "unknown";
    ExpectRefused(Update(request), Refusal::NoSession);
    EXPECT_FALSE(Has("Work"));
}

TEST_F(ProfilesUpdate, WhatIsNoProfileCollectionIsRefused) {
    ExpectRefused(Update(""), Refusal::BadProfiles);
    ExpectRefused(Update("<Other/>"), Refusal::BadProfiles);
}

TEST_F(ProfilesUpdate, LargeProfilesComeOverAConnectionThatHasNotLoggedIn) {
    ExpectStored(Named(std::string(500'000, 'x')));
}

TEST_F(ProfilesUpdate, ProfilesThatCouldNotBeSentBackAreRefusedAndTheStoredOnesStay) {
    ExpectStored(Named("Work"));
    ExpectRefused(Update(Named(std::string(900'000, 'x'))), Refusal::ProfilesTooLarge);
    EXPECT_TRUE(Has("Work"));
}

// "<" needs one byte in a CDATA section and four where it is escaped.
TEST_F(ProfilesUpdate, TheSizeOfProfilesIsThatInTheAnswer) {
    const std::string form =
        "<Profiles><Profile name='p'><DataTable name='t' columns='c'><Row><Value column='c'>here</Value>"
        "</Row></DataTable></Profile></Profiles>";
    auto text = Request(form).Build().ToXML();
    text.replace(text.find("here"), 4, "<![CDATA[" + std::string(300'000, '<') + "]]>");
    const auto client = NewClient();
    client->SendText(text);
    XMLMessage reply;
    reply.LoadXML(client->TakeBlock(0).data);
    ExpectRefused(ASProfilesUpdateResponse::Read(reply), Refusal::ProfilesTooLarge);
}

class LargestProfiles : public ProfilesUpdate {
 protected:
    void SetUp() override {
        ZebSettings settings;
        settings.max_request = 16U << 20;
        Start(settings);
    }
};

TEST_F(LargestProfiles, AreDeliveredDirectlyAndThroughAnApplicationServer) {
    const auto profiles = Named(std::string(4'190'000, 'x'));
    ExpectStored(profiles);
    EXPECT_EQ(Login("ana").Profiles, profiles);
    server->Relay(LoginRequest("ana").Build());
    EXPECT_EQ(server->ExpectHeard().Field("Profiles"), profiles);
}

TEST_F(LargestProfiles, AreFourMegabytes) {
    ExpectRefused(Update(Named(std::string(4'194'304, 'x'))), Refusal::ProfilesTooLarge);
}

TEST_F(ProfilesUpdate, OlderOnesThatCannotBeDeliveredRefuseTheLogin) {
    store.Use("INSERT INTO profiles VALUES (?1, ?2, ?3)")
        .Bind(1, std::int64_t{uid})
        .Bind(2, kApp)
        .Bind(3, Named(std::string(9'000'000, 'x')))
        .Run();
    ExpectRefused(Login("ana"), Refusal::ProfilesTooLarge);
    UserData(store).RemoveProfiles(uid, kApp);
    ExpectGranted(Login("ana"));
}

TEST_F(ProfilesUpdate, ARelayedUpdateIsAnsweredWithItsTransID) {
    server->Relay(Request(Named("Work")).Build(), "8");
    const auto reply = server->ExpectHeard();
    EXPECT_EQ(reply.Type(), "ASProfilesUpdateResponse");
    EXPECT_EQ(reply.Field("TransID"), "8");
    ExpectGranted(reply);
}

}  // namespace
}  // namespace kq::zeb
