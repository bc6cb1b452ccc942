// The silent system login against a login server that refuses, stalls, drops, lies and answers well.
#include "client/LoginFixture.h"

namespace kq {
namespace {

class SystemLoginTest : public LoginFixture {};

// --- the good way

TEST_F(SystemLoginTest, LogsInAgainstAGoodLoginServer) {
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    EXPECT_THAT(zeb.HeardTypes(), ElementsAre("ASValidateClientRequest", "ASLoginRequest"));
}

TEST_F(SystemLoginTest, KeepsWhatTheLoginDelivers) {
    SystemLogin();
    EXPECT_EQ(client->TranslationTable()->Translate("greeting"), "Hello");
    EXPECT_EQ(client->SessionInfo()->SessionID(), "S17");
    EXPECT_EQ(client->SessionInfo()->AppID(), "Demo");
    EXPECT_EQ(client->SessionInfo()->UserUID(), 55);
    EXPECT_EQ(client->SessionInfo()->Password(), "");
    EXPECT_NE(client->SessionInfo()->Client(), nullptr);
    EXPECT_EQ(client->Profiles()->Count(), 2);
    EXPECT_EQ(client->CurrentProfile()->Name(), "Main");
}

TEST_F(SystemLoginTest, RecordsWhereTheApplicationServerIs) {
    SystemLogin();
    EXPECT_EQ(client->AppServerAddress(), FakeZeb::kAddress);
    EXPECT_EQ(client->AppServerPort(), 7000);
    EXPECT_EQ(client->AppServerTimeOut(), 10'000);
}

TEST_F(SystemLoginTest, WorksByteByByte) {
    machine.network->Split(1);
    EXPECT_TRUE(SystemLogin());
}

TEST_F(SystemLoginTest, TakesItsTwoPausesAndNothingMore) {
    const auto time = TimeOf([this] { SystemLogin(); });
    EXPECT_GE(time, Milliseconds(500));
    EXPECT_LE(time, Milliseconds(550));
}

TEST_F(SystemLoginTest, CanBeDoneTwice) {
    SystemLogin();
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Open(), 1);
}

// --- the requests

TEST_F(SystemLoginTest, ValidatesWithTheThreeVersionsInOrder) {
    login.UseASServerForLogin = false;
    client->SystemLogin2(false, login);
    EXPECT_EQ(zeb.Latest(FakeZeb::kValidate).ToXML(),
              R"(<ASMessage type="ASValidateClientRequest" version="1"><AppID>Demo</AppID>)"
              R"(<InterfaceVersion>1.0</InterfaceVersion><ClientVersion>5.2.3</ClientVersion></ASMessage>)");
}

TEST_F(SystemLoginTest, AlwaysWantsTranslationTableAndProfiles) {
    SystemLogin();
    const XMLMessage request = zeb.Latest(FakeZeb::kLogin);
    EXPECT_EQ(request.Field("Request"), "T,P");
    EXPECT_EQ(request.Version(), "1");
    EXPECT_TRUE(request.HasField("NewPassword"));
    EXPECT_EQ(request.Field("NewPassword"), "");
    EXPECT_EQ(request.Field("Password"), "secret word");
}

TEST_F(SystemLoginTest, RestrictsALoginThroughTheApplicationServerToItsAddress) {
    SystemLogin();  // the stored setting is on unless it was switched off
    for (const char* type : {FakeZeb::kValidate, FakeZeb::kLogin}) {
        EXPECT_EQ(zeb.Latest(type).Field("RestrictIP"), FakeZeb::kAddress);
        EXPECT_EQ(zeb.Latest(type).Field("RestrictPort"), "7710");
    }
}

TEST_F(SystemLoginTest, SendsNoRestrictionWhenTheStoredSettingIsOff) {
    Settings().SetSetting("UseASServerForLogin", "0");
    SystemLogin();
    EXPECT_FALSE(zeb.Latest(FakeZeb::kLogin).HasField("RestrictIP"));
    EXPECT_FALSE(client->UseASServerForLogin());
}

TEST_F(SystemLoginTest, OnlySystemLogin2TakesTheFlagFromItsArguments) {
    login.UseASServerForLogin = false;
    SystemLogin();
    EXPECT_TRUE(client->UseASServerForLogin());
    client->SystemLogin2(false, login);
    EXPECT_FALSE(client->UseASServerForLogin());
}

TEST_F(SystemLoginTest, SendsEachRestrictionOfTheClientOnItsOwn) {
    client->SetRestrictIP("192.0.2.9");
    SystemLogin();
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("RestrictIP"), "192.0.2.9");
    EXPECT_FALSE(zeb.Latest(FakeZeb::kLogin).HasField("RestrictPort"));
    client->SetRestrictIP("");
    client->SetRestrictPort(-1);
    SystemLogin();
    EXPECT_FALSE(zeb.Latest(FakeZeb::kLogin).HasField("RestrictIP"));
    EXPECT_EQ(zeb.Latest(FakeZeb::kLogin).Field("RestrictPort"), "-1");
}

struct Version : AppObject {
    std::map<std::string, std::string, std::less<>> properties;
    std::optional<std::string> Property(std::string_view name) const override {
        const auto found = properties.find(name);
        return found == properties.end() ? std::nullopt : std::optional(found->second);
    }
};

TEST_F(SystemLoginTest, TakesTheClientVersionFromTheApplicationObject) {
    auto app_obj = std::make_shared<Version>();
    app_obj->properties = {{"Major", "4"}, {"Minor", "1"}, {"Revision", "7"}};
    login.AppObj = app_obj;
    login.ClientVersion = "";
    SystemLogin();
    EXPECT_EQ(zeb.Latest(FakeZeb::kValidate).Field("ClientVersion"), "4.1.7");
}

TEST_F(SystemLoginTest, RaisesAnErrorOfTheApplicationObjectUnchanged) {
    struct Raising : AppObject {
        std::optional<std::string> Property(std::string_view) const override {
            throw Error(77, "the program", "No version today");
        }
    };
    login.AppObj = std::make_shared<Raising>();
    login.ClientVersion = "";
    const Error error = SystemLoginError();
    EXPECT_EQ(error.Number(), 77);
    EXPECT_EQ(error.Source(), "the program");
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

TEST_F(SystemLoginTest, ElseTakesTheClientVersionFromTheProgramsFile) {
    machine.version_resource->blocks[machine.process->executable_path] = {
        {0x09, 0x04, 0xB0, 0x04}, {{R"(\StringFileInfo\040904B0\FileVersion)", "5.02.3"}}};
    login.ClientVersion = "";
    SystemLogin();
    EXPECT_EQ(zeb.Latest(FakeZeb::kValidate).Field("ClientVersion"), "5.2.3");
}

TEST_F(SystemLoginTest, ElseTheClientVersionIsEmpty) {
    login.ClientVersion = "";
    SystemLogin();
    EXPECT_TRUE(zeb.Latest(FakeZeb::kValidate).HasField("ClientVersion"));
    EXPECT_EQ(zeb.Latest(FakeZeb::kValidate).Field("ClientVersion"), "");
}

// --- address and credentials

TEST_F(SystemLoginTest, WithoutAnyAddressRaisesBadAddrWithTheThreeValues) {
    login.Address = "";
    ExpectFailedLogin(kqaserrLoginBadAddr,
                      "Invalid address (), port (0), or timeout value (10000) was specified.");
}

TEST_F(SystemLoginTest, WithAnAddressButNoPortOrTimeOutRaisesBadAddr) {
    login.Port = 0;
    ExpectFailedLogin(kqaserrLoginBadAddr,
                      "Invalid address (192.0.2.1), port (0), or timeout value (10000) was specified.");
    login.Port = 7710;
    login.TimeOut = 0;
    ExpectFailedLogin(kqaserrLoginBadAddr,
                      "Invalid address (192.0.2.1), port (7710), or timeout value (0) was specified.");
}

TEST_F(SystemLoginTest, WithAPortOrTimeOutThatNoConnectionHasRaisesBadAddr) {
    for (const std::int32_t port : {-1, 65'536, 99'999}) {
        login.Port = port;
        ExpectFailedLogin(kqaserrLoginBadAddr, "Invalid address (192.0.2.1), port (" + std::to_string(port) +
                                                   "), or timeout value (10000) was specified.");
    }
    login.Port = FakeZeb::kPort;
    login.TimeOut = -5;
    ExpectFailedLogin(kqaserrLoginBadAddr,
                      "Invalid address (192.0.2.1), port (7710), or timeout value (-5) was specified.");
    EXPECT_EQ(zeb.Accepted(), 0);
    login.TimeOut = 1;
    login.Port = 65'535;
    EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginNoConnect);
}

TEST_F(SystemLoginTest, ReadsAddressPortAndTimeOutFromTheSettings) {
    Settings().SetSetting("Address", FakeZeb::kAddress);
    Settings().SetSetting("Port", "7710abc");
    login.Address = "";
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(client->AppServerAddress(), FakeZeb::kAddress);
    EXPECT_EQ(client->AppServerTimeOut(), 10'000);
}

TEST_F(SystemLoginTest, WithoutLoginIdOrPasswordRaisesBadLogin) {
    login.LoginID = "";
    ExpectFailedLogin(kqaserrLoginBadLogin, "Invalid login ID () or password (secret word) was specified.");
    login.LoginID = "ann";
    login.Password = Secret();
    ExpectFailedLogin(kqaserrLoginBadLogin, "Invalid login ID (ann) or password () was specified.");
    EXPECT_EQ(zeb.Accepted(), 0);
}

TEST_F(SystemLoginTest, AStoredFlagOfTrueReadsAsTrue) {
    Settings().SetSetting("UseASServerForLogin", "True");
    SystemLogin();
    EXPECT_TRUE(client->UseASServerForLogin());
}

TEST_F(SystemLoginTest, AnErrorNeverShowsAPasswordThatNoMessageCanCarry) {
    login.Password = Secret("secret\x01word");
    EXPECT_THAT(SystemLoginError().Description(), testing::Not(testing::HasSubstr("secret")));
}

TEST_F(SystemLoginTest, DroppingTheClientObjectInsideAConnectEndsTheLoginAtOnce) {
    login.Address = "192.0.2.99";
    machine.network->BlackHole(login.Address, login.Port);
    KQAppSessClient& dying = *client;
    machine.loop->StartTimer(Milliseconds(100), [this] { client.reset(); });
    const auto time = TimeOf([&] {
        EXPECT_EQ(ErrorOf([&] { dying.SystemLogin(false, login); }).Number(),
                  static_cast<std::int32_t>(NetError::Interrupted));
    });
    EXPECT_EQ(time, Milliseconds(100));
}

TEST_F(SystemLoginTest, ReadsNoSettingThatItsArgumentsReplace) {
    Settings().SetSetting("Port", "99999999999");
    Settings().SetSetting("UseASServerForLogin", "yes");
    login.UseASServerForLogin = false;
    EXPECT_TRUE(client->SystemLogin2(false, login));
}

TEST_F(SystemLoginTest, AMalformedStoredFlagIsATypeMismatch) {
    Settings().SetSetting("UseASServerForLogin", "yes");
    EXPECT_EQ(SystemLoginError().Number(), NumberOf(RuntimeError::TypeMismatch));
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
}

// --- connecting

TEST_F(SystemLoginTest, ARefusedConnectionRaisesNoConnectWithTheReason) {
    zeb.StopListening();
    ExpectFailedLogin(kqaserrLoginNoConnect,
                      "Could not connect to login server: " + NetErrorText(10061) + ".");
}

TEST_F(SystemLoginTest, AConnectionThatNeverStandsTakesTheTimeOutAndNoLonger) {
    login.Address = "192.0.2.99";
    machine.network->BlackHole(login.Address, login.Port);
    login.TimeOut = 3000;
    const auto time = TimeOf([this] {
        ExpectFailedLogin(kqaserrLoginNoConnect,
                          "Could not connect to login server: " + NetErrorText(10060) + ".");
    });
    EXPECT_EQ(time, Milliseconds(3000));
}

TEST_F(SystemLoginTest, AnUnknownHostRaisesNoConnect) {
    login.Address = "nowhere.example";
    ExpectFailedLogin(kqaserrLoginNoConnect,
                      "Could not connect to login server: " + NetErrorText(11001) + ".");
}

// --- validation

TEST_F(SystemLoginTest, ASilentValidationRaisesNoValidateAfterTheTimeOut) {
    zeb.Once(FakeZeb::kValidate, zeb.Silence());
    const auto time = TimeOf([this] {
        ExpectFailedLogin(
            kqaserrLoginNoValidate,
            "Did not receive a validation reply from the login server: " + NetErrorText(10060) + ".");
    });
    EXPECT_EQ(time, Milliseconds(10'250));
}

TEST_F(SystemLoginTest, ADroppedValidationRaisesNoValidateAtOnce) {
    zeb.Once(FakeZeb::kValidate, zeb.Drop());
    EXPECT_LE(TimeOf([this] {
                  ExpectFailedLogin(
                      kqaserrLoginNoValidate,
                      "Did not receive a validation reply from the login server: The connection was "
                      "closed by the other side.");
              }),
              Milliseconds(300));
}

TEST_F(SystemLoginTest, AResetValidationRaisesNoValidateAtOnce) {
    zeb.Once(FakeZeb::kValidate, zeb.Reset());
    EXPECT_LE(TimeOf([this] {
                  ExpectFailedLogin(kqaserrLoginNoValidate,
                                    "Did not receive a validation reply from the login server: " +
                                        NetErrorText(10054) + ".");
              }),
              Milliseconds(300));
}

TEST_F(SystemLoginTest, HalfAValidationReplyCountsAsNone) {
    zeb.Once(FakeZeb::kValidate, zeb.HalfOf(FakeZeb::Validation()));
    EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginNoValidate);
}

TEST_F(SystemLoginTest, AnEmptyValidationReplyCountsAsNone) {
    zeb.Once(FakeZeb::kValidate, zeb.Text(""));
    EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginNoValidate);
}

TEST_F(SystemLoginTest, AValidationReplyWithoutXMLIsUnknown) {
    for (const auto& reply : {ScriptedPeer::Text("hello"), ScriptedPeer::Raw("hello")}) {
        zeb.Once(FakeZeb::kValidate, reply);
        ExpectFailedLogin(kqaserrLoginValidationFailed,
                          "Validation failed: An unknown response was received.");
    }
}

TEST_F(SystemLoginTest, AValidationReplyOfAnotherTypeIsImproper) {
    zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::Login()));
    ExpectFailedLogin(kqaserrLoginValidationFailed, "Validation failed: An improper response was received.");
}

TEST_F(SystemLoginTest, ARefusedValidationRaisesTheMappedText) {
    zeb.Once(FakeZeb::kValidate,
             zeb.Answer(FakeZeb::Refusal("ASValidateClientResponse", "7", "No", "ZEBError-131")));
    ExpectFailedLogin(kqaserrLoginValidationFailed, "Validation failed: Malformed Password.");
}

TEST_F(SystemLoginTest, OnlyTheTextZeroIsSuccess) {
    for (const char* number : {"0.0", " 0", "none", "99999999999999", "1e999"}) {
        zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("ErrorNumber", number)));
        EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginValidationFailed) << number;
    }
    XMLMessage without = FakeZeb::Validation();
    without.RemoveField("ErrorNumber");
    zeb.Once(FakeZeb::kValidate, zeb.Answer(without));
    EXPECT_TRUE(SystemLogin());
}

TEST_F(SystemLoginTest, ALoginServerOfAnotherVersionRaisesInvalidLoginVersion) {
    for (const char* version : {"2", "1.1", "", "x", "99999999999", "1e999", "-1e999"}) {
        XMLMessage reply = FakeZeb::Validation();
        reply.SetVersion(version);
        zeb.Once(FakeZeb::kValidate, zeb.Answer(reply));
        EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginInvalidLoginVersion) << version;
    }
}

TEST_F(SystemLoginTest, VersionOnePointZeroIsVersionOne) {
    XMLMessage reply = FakeZeb::Validation();
    reply.SetVersion("1.0");
    zeb.Once(FakeZeb::kValidate, zeb.Answer(reply));
    EXPECT_TRUE(SystemLogin());
}

TEST_F(SystemLoginTest, WithoutAnInterfaceRaisesInvalidIntfVersion) {
    for (const char* available : {"False", "true", "", "1"}) {
        zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("InterfaceAvailable", available)));
        ExpectFailedLogin(kqaserrLoginInvalidIntfVersion, "No servers available for this client.");
    }
}

TEST_F(SystemLoginTest, DoesNotOfferANewerClientToNobody) {
    zeb.Once(FakeZeb::kValidate, zeb.Answer(FakeZeb::ValidationWith("ClientAvailable", "True")));
    EXPECT_TRUE(SystemLogin());
}

TEST_F(SystemLoginTest, ANewerClientDoesNotHelpASilentLogin) {
    XMLMessage reply = FakeZeb::ValidationWith("ClientAvailable", "True");
    reply.SetField("InterfaceAvailable", "False");
    zeb.Once(FakeZeb::kValidate, zeb.Answer(reply));
    EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginInvalidIntfVersion);
    reply.SetVersion("2");
    zeb.Once(FakeZeb::kValidate, zeb.Answer(reply));
    EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginInvalidLoginVersion);
}

// --- login

TEST_F(SystemLoginTest, AMissingLoginReplyRaisesBadLoginWithoutThePassword) {
    for (const auto& end : {ScriptedPeer::Silence(), ScriptedPeer::Drop(), ScriptedPeer::Text("")}) {
        zeb.Once(FakeZeb::kLogin, end);
        ExpectFailedLogin(kqaserrLoginBadLogin, "Invalid login ID (ann) or password () was specified.");
    }
}

TEST_F(SystemLoginTest, ASilentLoginServerTakesTheTimeOutAndNoLonger) {
    zeb.Once(FakeZeb::kLogin, zeb.Silence());
    EXPECT_EQ(TimeOf([this] { SystemLoginError(); }), Milliseconds(10'500));
}

TEST_F(SystemLoginTest, ALoginReplyThatIsNoneOrAnotherRaisesLoginFailed) {
    zeb.Once(FakeZeb::kLogin, zeb.Text("<html/>"));
    ExpectFailedLogin(kqaserrLoginLoginFailed, "Login failed: An unknown response was received.");
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::Validation()));
    ExpectFailedLogin(kqaserrLoginLoginFailed, "Login failed: An improper response was received.");
}

TEST_F(SystemLoginTest, Code7721RaisesLoginFailedWithTheServersOwnText) {
    zeb.RefusesLogin("7721", "Who are you?", "ZEBError-132");
    ExpectFailedLogin(kqaserrLoginLoginFailed, "Login failed: Who are you?.");
}

TEST_F(SystemLoginTest, Code7722RaisesBadPassword) {
    zeb.RefusesLogin("7722");
    ExpectFailedLogin(kqaserrLoginBadPassword, "Password must be changed before login may be completed.");
}

TEST_F(SystemLoginTest, Code7724RaisesBadPasswordHoweverManyDaysAreLeft) {
    for (const char* days : {"5", "0", "-1", ""}) {
        XMLMessage reply = FakeZeb::LoginWith("ErrorNumber", "7724");
        reply.SetField("DaysToExpirePassword", days);
        zeb.Once(FakeZeb::kLogin, zeb.Answer(reply));
        ExpectFailedLogin(kqaserrLoginBadPassword, "Password must be changed before login may be completed.");
    }
}

TEST_F(SystemLoginTest, Code7790RaisesTooManyUsersWithTheUser) {
    zeb.RefusesLogin("7790", "", "ann");
    ExpectFailedLogin(kqaserrLoginTooManyUsers,
                      "Too many concurrent sessions for user ann.  Please close any unneeded sessions.");
}

TEST_F(SystemLoginTest, AnyOtherCodeRaisesLoginFailedWithTheFirstTextThatIsKnown) {
    zeb.RefusesLogin("9", "ZEBError-305", "unknown");
    ExpectFailedLogin(kqaserrLoginLoginFailed, "Login failed: Password Must Differ from Login ID.");
    zeb.RefusesLogin("9", "Closed today", "CODE-1");
    ExpectFailedLogin(kqaserrLoginLoginFailed, "Login failed: Closed today.");
    zeb.RefusesLogin("none", "", "CODE-1");
    ExpectFailedLogin(kqaserrLoginLoginFailed, "Login failed: CODE-1.");
}

TEST_F(SystemLoginTest, WithoutTranslationTableRaisesNoTranslate) {
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithout("TranslationTable")));
    ExpectFailedLogin(kqaserrLoginNoTranslate,
                      "The translation table was not found in the response from the Login Server.");
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWith("TranslationTable", "a text")));
    EXPECT_EQ(SystemLoginError().Number(), kqaserrLoginNoTranslate);
}

TEST_F(SystemLoginTest, WithoutSessionRecordRaisesNoSessionInfo) {
    zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWithout("SessionInfo")));
    ExpectFailedLogin(kqaserrLoginNoSessionInfo,
                      "Session information was not returned properly by the login.");
}

TEST_F(SystemLoginTest, AFailedLoginLeavesNoConnectionOpen) {
    zeb.RefusesLogin("7721");
    SystemLoginError();
    machine.loop->Advance(Milliseconds(2000));
    EXPECT_EQ(zeb.Open(), 0);
    EXPECT_EQ(machine.network->OpenStreams(), 0U);
}

// --- around it

TEST_F(SystemLoginTest, DeletesTheClientThatWasDownloadedLast) {
    machine.folders->files.insert("/tmp/HLX1.exe");
    Settings().SetSetting("LastDownloadedClient", "/tmp/HLX1.exe");
    SystemLogin();
    EXPECT_FALSE(machine.folders->FileExists("/tmp/HLX1.exe"));
    EXPECT_EQ(Settings().Setting("LastDownloadedClient", "none"), "none");
}

TEST_F(SystemLoginTest, AProcedureInsideAProcedureRaisesInvalidProcedureCall) {
    std::int32_t inner = 0;
    zeb.Once(FakeZeb::kValidate, [&](ScriptedPeer::Link& link, const XMLMessage&) {
        inner = ErrorOf([this] { SystemLogin(); }).Number();
        link.Send(FakeZeb::Validation());
    });
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(inner, NumberOf(RuntimeError::InvalidProcedureCall));
}

TEST_F(SystemLoginTest, TerminateClientInsideEndsTheLoginAtOnce) {
    zeb.Once(FakeZeb::kLogin, [this](ScriptedPeer::Link&, const XMLMessage&) { client->TerminateClient(); });
    const auto time = TimeOf(
        [this] { EXPECT_EQ(SystemLoginError().Number(), static_cast<std::int32_t>(NetError::Interrupted)); });
    EXPECT_LT(time, Milliseconds(500));
    EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    EXPECT_EQ(zeb.Accepted(), 1);
}

TEST_F(SystemLoginTest, DroppingTheClientObjectInsideEndsTheLoginAtOnce) {
    zeb.Once(FakeZeb::kValidate, [this](ScriptedPeer::Link&, const XMLMessage&) { client.reset(); });
    KQAppSessClient& dying = *client;
    const auto time = TimeOf([&] {
        EXPECT_EQ(ErrorOf([&] { dying.SystemLogin(false, login); }).Number(),
                  static_cast<std::int32_t>(NetError::Interrupted));
    });
    EXPECT_LT(time, Milliseconds(250));
}

TEST_F(SystemLoginTest, AnInteractiveLoginNeedsDialogsAndLeavesAnEarlierLoginWithoutThem) {
    EXPECT_TRUE(SystemLogin());
    EXPECT_EQ(ErrorOf([this] { client->SystemLogin(true, login); }).Number(),
              NumberOf(RuntimeError::InvalidProcedureCall));
    EXPECT_EQ(client->LoginState(), kqaslsSystemLogin);
}

}  // namespace
}  // namespace kq
