// Interactive procedures in a program without dialogs: nothing is shown, and only what would have to be asked
// is an error.
#include "client/LoginFixture.h"
#include "support/StrayErrors.h"

namespace kq {
namespace {

class NoDialogsTest : public LoginFixture {
 protected:
    void SetUp() override {
        ASSERT_TRUE(SystemLogin());
        client->SetSystemConnectState(FakeZeb::kAddress, FakeZeb::kPort, 4000);
    }
    // What the latest upload carried.
    std::shared_ptr<Profiles> Uploaded() {
        auto profiles = std::make_shared<Profiles>();
        if (const XMLMessage sent = zeb.Latest(FakeZeb::kUpload); sent.HasField("Profiles"))
            profiles->LoadXML(sent.Field("Profiles"));
        return profiles;
    }
    // Error 5, which ends with the question that could not be asked.
    void ExpectUnasked(const Error& error, const std::string& question) {
        ExpectError(error, NumberOf(RuntimeError::InvalidProcedureCall),
                    "This program has no dialogs, so the user cannot be asked: " + question);
    }

    static constexpr const char* kNoConnect =
        "Could not connect to login server.  Would you like to try again?";
};

TEST_F(NoDialogsTest, UpdateProfilesSendsThem) {
    client->UpdateProfiles();
    EXPECT_EQ(Uploaded()->Count(), 2);
    EXPECT_TRUE(client->UpdateProfilesEx(true, login.Address, login.Port, login.TimeOut));
}

TEST_F(NoDialogsTest, AddReplaceProfileSendsTheChange) {
    client->AddReplaceProfile(std::make_shared<Profile>("Third"));
    EXPECT_TRUE(Uploaded()->Exists("Third"));
}

TEST_F(NoDialogsTest, AProfileAddedByTheProgramIsSent) {
    client->Profiles()->Add(std::make_shared<Profile>("Third"));
    EXPECT_TRUE(Uploaded()->Exists("Third"));
    client->Profiles()->Remove("Main");
    EXPECT_FALSE(Uploaded()->Exists("Main"));
}

TEST_F(NoDialogsTest, WhatAnEventCouldNotSendIsReportedAndGoesWithTheNextUpload) {
    const StrayErrors stray;
    client->SetSystemConnectState(FakeZeb::kAddress, 1, 4000);
    client->Profiles()->Add(std::make_shared<Profile>("Third"));
    EXPECT_THAT(stray.Numbers(), ElementsAre(NumberOf(RuntimeError::InvalidProcedureCall)));
    client->SetSystemConnectState(FakeZeb::kAddress, FakeZeb::kPort, 4000);
    client->UpdateProfiles();
    EXPECT_TRUE(Uploaded()->Exists("Third"));
}

TEST_F(NoDialogsTest, AnUploadThatWouldHaveToAskRaisesTheQuestion) {
    zeb.StopListening();
    ExpectUnasked(ErrorOf([this] { client->UpdateProfiles(); }), kNoConnect);
    ExpectUnasked(ErrorOf([this] { client->AddReplaceProfile(std::make_shared<Profile>("Third")); }),
                  kNoConnect);
    EXPECT_TRUE(client->Profiles()->Exists("Third"));
}

TEST_F(NoDialogsTest, AnInteractiveServerLoginRegisters) {
    EXPECT_TRUE(client->ServerLogin(true));
    EXPECT_EQ(client->LoginState(), kqaslsServerLogin);
}

TEST_F(NoDialogsTest, AServerLoginThatWouldHaveToAskRaisesTheQuestion) {
    app.Once(FakeAppServer::kRegister, app.Answer(FakeAppServer::Registration("7", "Not here")));
    ExpectUnasked(ErrorOf([this] { client->ServerLogin(true); }),
                  "Registration failed:  Not here.  Would you like to login again?");
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(client->SessionClient(), nullptr);
}

TEST_F(NoDialogsTest, AnErrorThatNoStepExpectsIsRaisedAsItIs) {
    zeb.Once(FakeZeb::kUpload, zeb.Silence());
    EXPECT_EQ(ErrorOf([this] { client->UpdateProfiles(); }).Number(),
              static_cast<std::int32_t>(NetError::TimedOut));
}

TEST_F(NoDialogsTest, LoginAlwaysAsksSoItIsRefusedBeforeAnythingChanges) {
    EXPECT_EQ(ErrorOf([this] { client->Login("Demo", "1.0", nullptr); }).Number(),
              NumberOf(RuntimeError::InvalidProcedureCall));
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_EQ(ErrorOf([this] { client->ChangeConfiguration(); }).Number(),
              NumberOf(RuntimeError::InvalidProcedureCall));
}

}  // namespace
}  // namespace kq
