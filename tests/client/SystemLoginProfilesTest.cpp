// How a silent system login chooses the profile, and when it uploads the profiles.
#include "client/LoginFixture.h"
#include "support/StrayErrors.h"

namespace kq {
namespace {

class SystemLoginProfilesTest : public LoginFixture {
 protected:
    void Delivers(const std::vector<std::string>& names, const std::string& last_used) {
        Profiles profiles;
        for (const auto& name : names)
            profiles.Add(std::make_shared<Profile>(name));
        profiles.SetLastUsed(last_used);
        zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithProfiles(profiles)));
    }
    bool Uploaded() { return zeb.Latest(FakeZeb::kUpload).Type() == FakeZeb::kUpload; }
};

TEST_F(SystemLoginProfilesTest, TakesTheLastUsedProfileWithoutUpload) {
    Delivers({"A", "B"}, "B");
    SystemLogin();
    EXPECT_EQ(client->CurrentProfile()->Name(), "B");
    EXPECT_FALSE(Uploaded());
}

TEST_F(SystemLoginProfilesTest, TakesTheFirstWhenTheLastUsedIsGoneAndUploadsThatChoiceOnce) {
    Delivers({"A", "B"}, "C");
    SystemLogin();
    EXPECT_EQ(client->CurrentProfile()->Name(), "A");
    Profiles sent;
    sent.LoadXML(zeb.Latest(FakeZeb::kUpload).Field("Profiles"));
    EXPECT_EQ(sent.LastUsed(), "A");
    EXPECT_EQ(std::ranges::count(zeb.HeardTypes(), FakeZeb::kUpload), 1);
}

TEST_F(SystemLoginProfilesTest, HasNoProfileWhenNoneIsDelivered) {
    Delivers({}, "");
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(client->CurrentProfile(), nullptr);
    EXPECT_FALSE(Uploaded());
}

TEST_F(SystemLoginProfilesTest, TakesUnreadableProfilesAsAnEmptyCollection) {
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWith("Profiles", "broken")));
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(client->Profiles()->Count(), 0);
}

TEST_F(SystemLoginProfilesTest, WithoutUseProfilesTheCurrentProfileIsAlwaysDefault) {
    client->SetUseProfiles(false);
    Delivers({"A", "Default"}, "A");
    SystemLogin();
    EXPECT_EQ(client->CurrentProfile()->Name(), "Default");
    EXPECT_FALSE(Uploaded());
}

TEST_F(SystemLoginProfilesTest, WithoutUseProfilesAMissingDefaultIsMadeAndUploadedOnce) {
    client->SetUseProfiles(false);
    Delivers({"A"}, "A");
    SystemLogin();
    EXPECT_EQ(client->CurrentProfile(), client->Profiles()->Item("Default"));
    EXPECT_EQ(std::ranges::count(zeb.HeardTypes(), FakeZeb::kUpload), 1);
}

TEST_F(SystemLoginProfilesTest, AProfileOfTheCommandLineGoesBeforeTheLastUsed) {
    login.CommandStr = R"(/x /profile "B" /y)";
    Delivers({"A", "B"}, "A");
    SystemLogin();
    EXPECT_EQ(client->CurrentProfile()->Name(), "B");
}

TEST_F(SystemLoginProfilesTest, AnUnknownProfileOfTheCommandLineIsIgnored) {
    login.CommandStr = "/Profile Nobody";
    Delivers({"A", "B"}, "B");
    SystemLogin();
    EXPECT_EQ(client->CurrentProfile()->Name(), "B");
}

TEST_F(SystemLoginProfilesTest, AnUploadThatCannotConnectIsReportedAndDoesNotCostTheLogin) {
    const StrayErrors stray;
    zeb.Once(FakeZeb::kLogin, [this](ScriptedPeer::Link& link, const XMLMessage&) {
        zeb.StopListening();
        Profiles one;
        one.Add(std::make_shared<Profile>("A"));
        link.Send(FakeZeb::LoginWithProfiles(one));
    });
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(client->CurrentProfile()->Name(), "A");
    EXPECT_THAT(stray.Numbers(), ElementsAre(kqaserrLoginNoConnect));
}

TEST_F(SystemLoginProfilesTest, AnUploadWithoutAnAnswerDoesNotCostTheLoginEither) {
    const StrayErrors stray;
    Delivers({"A"}, "");
    zeb.Once(FakeZeb::kUpload, zeb.Silence());
    Delivers({"A"}, "");
    zeb.Once(FakeZeb::kUpload, zeb.Text("not a message"));
    EXPECT_TRUE(SystemLogin());
    EXPECT_TRUE(SystemLogin());
    EXPECT_THAT(stray.Numbers(),
                ElementsAre(static_cast<std::int32_t>(NetError::TimedOut), XMLMessage::kNotAMessage));
}

TEST_F(SystemLoginProfilesTest, TerminateClientInsideTheUploadEndsTheLogin) {
    Delivers({"A"}, "");
    zeb.Once(FakeZeb::kUpload, [this](ScriptedPeer::Link&, const XMLMessage&) { client->TerminateClient(); });
    EXPECT_EQ(SystemLoginError().Number(), static_cast<std::int32_t>(NetError::Interrupted));
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

}  // namespace
}  // namespace kq
