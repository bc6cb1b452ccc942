// What the wait window says during the logins, and when it is gone.
#include "client/InteractiveFixture.h"

namespace kq {
namespace {

class WaitWindowTest : public InteractiveFixture {
 protected:
    // Notes what the window says now.
    void Look() {
        const FakeUser& window = user.Window("frmWait");
        said.push_back(window.SeesCaption() + " " + window.Sees("lblPleaseWait"));
    }
    // The server's answer, after a look at the window.
    ScriptedPeer::Reaction LookAndAnswer(const XMLMessage& reply) {
        return [this, reply](ScriptedPeer::Link& link, const XMLMessage&) {
            Look();
            link.Send(reply);
        };
    }
    // A look as soon as the procedure waits, which is for its connection.
    void LookWhileConnecting() {
        machine.loop->Post([this] { Look(); });
    }
    std::vector<std::string> said;
};

TEST_F(WaitWindowTest, SaysWhatTheSystemLoginWaitsFor) {
    user.Expect("frmLogin", [this](FakeUser& at) {
        at.Types("txtLoginID", "ann");
        at.Types("txtPassword", "secret word");
        at.Clicks("cmdOK");
        LookWhileConnecting();
    });
    zeb.Once(FakeZeb::kValidate, LookAndAnswer(FakeZeb::Validation()));
    zeb.Once(FakeZeb::kLogin, LookAndAnswer(FakeZeb::Login()));
    EXPECT_TRUE(Login());
    EXPECT_THAT(said, ElementsAre("Connecting to Login Server... Attempting to connect to the Login Server.  "
                                  "Please Wait.",
                                  "Validating Client... Validating Client.  Please wait.",
                                  "Logging In... Attempting to log in.  Please Wait."));
    EXPECT_FALSE(WaitIsShown());
}

TEST_F(WaitWindowTest, SaysWhatTheServerLoginWaitsFor) {
    LogsIn();
    ASSERT_TRUE(Login());
    LookWhileConnecting();
    app.Once(FakeAppServer::kRegister, LookAndAnswer(FakeAppServer::Registration()));
    EXPECT_TRUE(client->ServerLogin(true));
    EXPECT_THAT(said,
                ElementsAre("Connecting to Application Server... Attempting to connect to the Application "
                            "Server.  Please wait.",
                            "Registering... Attempting to register with the application server.  Please "
                            "wait."));
    EXPECT_FALSE(WaitIsShown());
}

TEST_F(WaitWindowTest, SaysThatProfilesAreUploaded) {
    LogsIn();
    ASSERT_TRUE(Login());
    client->SetSystemConnectState(FakeZeb::kAddress, FakeZeb::kPort, 4000);
    zeb.Once(FakeZeb::kUpload, LookAndAnswer(FakeZeb::Validation()));
    client->Profiles()->Add(std::make_shared<Profile>("Third"));
    EXPECT_THAT(said, ElementsAre("Updating Profiles... Updating profiles.  Please wait."));
    EXPECT_FALSE(WaitIsShown());
}

}  // namespace
}  // namespace kq
