// "ASProfilesUpdate".
#include <kqappsession/WebData.h>

#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class ProfilesUpdate : public ZebTest {
 protected:
    void SetUp() override {
        StartZeb();
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
    std::string Update(const ASProfilesUpdate& request) { return Ask(request.Build()).Field("ErrorNumber"); }
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
    EXPECT_EQ(reply.Field("ErrorNumber"), "0");
    EXPECT_TRUE(Has("Work"));
}

TEST_F(ProfilesUpdate, ALaterUpdateReplacesTheEarlier) {
    Update(Request(Named("Work")));
    Update(Request(Named("Home")));
    EXPECT_FALSE(Has("Work"));
    EXPECT_TRUE(Has("Home"));
}

TEST_F(ProfilesUpdate, AnotherApplicationHasProfilesOfItsOwn) {
    Update(Request(Named("Work")));
    const auto other = RunningServer(7001, "Other");
    auto request = LoginRequest("ana");
    request.AppID = "Other";
    EXPECT_EQ(Login(request).Profiles, Profiles().ToXML());
}

TEST_F(ProfilesUpdate, SessionUserAndApplicationMustBelongTogether) {
    auto request = Request(Named("Work"));
    request.UserUID = std::to_string(uid + 1);
    EXPECT_EQ(Update(request), "7605");
    request = Request(Named("Work"));
    request.LoginID = "bob";
    EXPECT_EQ(Update(request), "7605");
    request = Request(Named("Work"));
    request.AppID = "Other";
    EXPECT_EQ(Update(request), "7605");
    request = Request(Named("Work"));
    request.SessionID = "unknown";
    EXPECT_EQ(Update(request), "7605");
    EXPECT_FALSE(Has("Work"));
}

TEST_F(ProfilesUpdate, WhatIsNoProfileCollectionIsRefused) {
    EXPECT_EQ(Update(Request("")), "7606");
    EXPECT_EQ(Update(Request("<Other/>")), "7606");
}

TEST_F(ProfilesUpdate, LargeProfilesComeOverAConnectionThatHasNotLoggedIn) {
    EXPECT_EQ(Update(Request(Named(std::string(500'000, 'x')))), "0");
}

TEST_F(ProfilesUpdate, ARelayedUpdateIsAnsweredWithItsTransID) {
    server->Relay(Request(Named("Work")).Build(), "8");
    const auto reply = server->Heard();
    EXPECT_EQ(reply.Type(), "ASProfilesUpdateResponse");
    EXPECT_EQ(reply.Field("TransID"), "8");
    EXPECT_EQ(reply.Field("ErrorNumber"), "0");
}

}  // namespace
}  // namespace kq::zeb
