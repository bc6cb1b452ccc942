// "ASLoginRequest": what a login delivers and every way in which it is refused.
#include <kqappsession/WebData.h>

#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

using LoginTest = ZebTest;

TEST_F(LoginTest, DeliversEverythingThatTheClientNeeds) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer(7000);
    const auto reply = Ask(LoginRequest("ana").Build());
    EXPECT_EQ(reply.Type(), "ASLoginResponse");
    EXPECT_EQ(reply.Version(), "1");
    ExpectGranted(reply);
    EXPECT_EQ(reply.Field("Port"), "7000");
    EXPECT_EQ(reply.Field("SessionID").size(), 32U);
    TranslationTable().LoadXML(reply.Field("TranslationTable"));
    Profiles().LoadXML(reply.Field("Profiles"));
}

Account Detailed() {
    Account details;
    details.first_name = "Ana";
    details.last_name = "Müller & Söhne";
    details.enterprise_id = "E1";
    details.language = "1031";
    details.tz = "CET";
    details.dst = "CEST";
    details.buid = "7";
    details.buid_union = "7|9|";
    details.privileges = "read|write";
    return details;
}

SessionInfo RecordOf(const ASLoginResponse& reply) {
    XMLMessage record;
    record.LoadXML(reply.SessionInfo);
    return SessionInfo::Read(record);
}

TEST_F(LoginTest, TheSessionRecordDescribesTheUser) {
    StartZeb();
    AddUser("ana", kPassword, Detailed());
    const auto server = RunningServer();
    const auto info = RecordOf(Login("ana"));
    EXPECT_EQ(info.LoginID, "ana");
    EXPECT_EQ(info.FirstName, "Ana");
    EXPECT_EQ(info.LastName, "Müller & Söhne");
    EXPECT_EQ(info.EnterpriseID + info.Language + info.TZ + info.DST + info.BUID, "E11031CETCEST7");
    EXPECT_EQ(info.BUIDUnionList, "7|9|");
    EXPECT_EQ(info.PrivilegeList, "read|write");
}

TEST_F(LoginTest, TheSessionRecordNamesUserOperatorAndSession) {
    StartZeb();
    const auto uid = AddUser("ana");
    const auto server = RunningServer();
    const auto reply = Login("ana");
    const auto info = RecordOf(reply);
    EXPECT_EQ(info.UserUID, std::to_string(uid));
    EXPECT_EQ(info.OperatorID, std::to_string(uid));
    EXPECT_EQ(info.SessionID, reply.SessionID);
}

TEST_F(LoginTest, DeliversTheTextsOfTheUsersLanguage) {
    StartZeb();
    Account details;
    details.language = "1031";
    AddUser("ana", kPassword, details);
    store.Use("INSERT INTO translations VALUES ('1031', 'open', 'Öffnen'), ('1033', 'open', 'Open')").Run();
    const auto server = RunningServer();
    TranslationTable table;
    table.LoadXML(Login("ana").TranslationTable);
    EXPECT_EQ(table.Language(), "1031");
    EXPECT_EQ(table.Translate("open"), "Öffnen");
}

TEST_F(LoginTest, EverySessionHasAnIdOfItsOwn) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    EXPECT_NE(Login("ana").SessionID, Login("ana").SessionID);
}

TEST_F(LoginTest, AWrongPasswordIsRefusedWithTheCodeThatClientsTranslate) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    const auto reply = Login("ana", "wrong password");
    EXPECT_EQ(OutcomeOf(reply), (Outcome{"7721", "ZEBError-132", "Unknown User/Password"}));
    EXPECT_EQ(reply.SessionID + reply.SessionInfo, "");
}

TEST_F(LoginTest, AnUnknownUserIsRefusedLikeAWrongPassword) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    EXPECT_EQ(Ask(LoginRequest("eve", "x").Build()), Ask(LoginRequest("ana", "x").Build()));
}

TEST_F(LoginTest, AnUnknownUserCostsTheSameWork) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    Login("ana", "wrong password", "another password");
    const auto known = std::pair(hasher.verified, hasher.hashed);
    hasher.verified = hasher.hashed = 0;
    Login("eve", "wrong password", "another password");
    EXPECT_EQ(std::pair(hasher.verified, hasher.hashed), known);
}

TEST_F(LoginTest, AnIdThatNoAccountCanHaveCostsTheSameWorkEveryTimeAndIsNotRemembered) {
    StartZeb();
    const auto server = RunningServer();
    const std::string huge(500'000, 'x');
    for (int i = 1; i <= 10; ++i) {
        ExpectRefused(Login(huge), Refusal::UnknownUser);
        EXPECT_EQ(hasher.verified, i);
    }
}

TEST_F(LoginTest, AnIdWhoseFirstCharactersAreAnAccountsIsAnother) {
    StartZeb();
    const std::string longest(64, 'x');
    AddUser(longest);
    const auto server = RunningServer();
    ExpectRefused(Login(longest + "x"), Refusal::UnknownUser);
    ExpectGranted(Login(longest));
}

TEST_F(LoginTest, APasswordIsComparedToItsLastCharacter) {
    StartZeb();
    const std::string longest(64, 'p');
    AddUser("ana", longest);
    const auto server = RunningServer();
    ExpectRefused(Login("ana", longest + "p"), Refusal::UnknownUser);
    ExpectGranted(Login("ana", longest));
}

TEST_F(LoginTest, WhatWaitsForAPasswordCheckIsSmall) {
    StartZeb();
    const auto server = RunningServer();
    Login(std::string(500'000, 'x'), std::string(500'000, 'y'));
    EXPECT_LE(hasher.longest, 65U);
}

TEST_F(LoginTest, NobodyLogsInWithThePasswordThatStandsInForUnknownUsers) {
    StartZeb();
    const auto server = RunningServer();
    ExpectRefused(Login("", ""), Refusal::UnknownUser);
}

TEST_F(LoginTest, LoginIdsAreComparedExactly) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    ExpectRefused(Login("Ana"), Refusal::UnknownUser);
}

TEST_F(LoginTest, ADisabledUserIsToldSoOnlyWithTheRightPassword) {
    StartZeb();
    Account details;
    details.disabled = true;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer();
    ExpectRefused(Login("ana", "wrong password"), Refusal::UnknownUser);
    ExpectRefused(Login("ana"), Refusal::Disabled);
}

TEST_F(LoginTest, APasswordThatMustBeChangedIsAskedForAndChangedByTheNextLogin) {
    StartZeb();
    Account details;
    details.must_change = true;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer();
    ExpectRefused(Login("ana"), Refusal::MustChangePassword);
    ExpectGranted(Login("ana", kPassword, "battery staple"));
    ExpectRefused(Login("ana"), Refusal::UnknownUser);
    ExpectGranted(Login("ana", "battery staple"));
}

TEST_F(LoginTest, ANewPasswordThatBreaksARuleIsRefusedAndNotStored) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    ExpectRefused(Login("ana", kPassword, "short"), Refusal::PasswordLength);
    ExpectGranted(Login("ana"));
}

TEST_F(LoginTest, WithoutAServerForTheApplicationThereIsNoLogin) {
    StartZeb();
    AddUser("ana");
    const auto other = RunningServer(7000, "Other");
    ExpectRefused(Login("ana"), Refusal::NoServer);
}

TEST_F(LoginTest, ARefusedLoginKeepsTheOldPassword) {
    StartZeb();
    AddUser("ana");
    ExpectRefused(Login("ana", kPassword, "battery staple"), Refusal::NoServer);
    const auto server = RunningServer();
    ExpectGranted(Login("ana"));
}

TEST_F(LoginTest, ALoginThatFailsForTextsThatNoMessageCanCarryKeepsTheOldPassword) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    store.Use("INSERT INTO translations VALUES ('1033', 'open', char(1))").Run();
    ExpectRefused(Login("ana", kPassword, "battery staple"), Refusal::Failed);
    store.Use("DELETE FROM translations").Run();
    ExpectGranted(Login("ana"));
}

TEST_F(LoginTest, ATranslationTableThatNoAnswerCanCarryFailsTheLoginAndTheLogSaysWhy) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    store.Use("INSERT INTO translations VALUES ('1033', 'long', ?1)")
        .Bind(1, std::string(9'000'000, 'x'))
        .Run();
    ExpectRefused(Login("ana"), Refusal::Failed);
    EXPECT_NE(Log().find("answer too large: translation table of language 1033"), std::string::npos);
}

TEST_F(LoginTest, TheLeastBusyServerIsChosen) {
    StartZeb();
    AddUser("ana");
    const auto busy = NewServer(7000);
    busy->Announce({"a", "b", "c"});
    const auto idle = NewServer(7001);
    idle->Announce({"d"});
    EXPECT_EQ(Login("ana").Port, "7001");
    EXPECT_EQ(Login("ana").Port, "7001");
    EXPECT_EQ(Login("ana").Port, "7000") << "two logins are on their way to 7001";
}

TEST_F(LoginTest, ARestrictedLoginGetsThatServer) {
    StartZeb();
    AddUser("ana");
    const auto idle = RunningServer(7000);
    const auto busy = NewServer(7001);
    busy->Announce({"a", "b"});
    auto request = LoginRequest("ana");
    request.RestrictIP = "127.0.0.1";
    request.RestrictPort = "7001";
    EXPECT_EQ(Login(request).Port, "7001");
    request.RestrictPort = "7002";
    ExpectRefused(Login(request), Refusal::NoServer);
}

TEST_F(LoginTest, ARelayedLoginIsAnsweredWithItsTransID) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    server->Relay(LoginRequest("ana").Build(), "42");
    const auto reply = server->ExpectHeard();
    EXPECT_EQ(reply.Type(), "ASLoginResponse");
    EXPECT_EQ(reply.Field("TransID"), "42");
    EXPECT_EQ(reply.Root().TextOf("SessionInfo/LoginID"), "ana");
}

TEST_F(LoginTest, AUserWithAllSessionsInUseIsRefusedByName) {
    StartZeb();
    Account details;
    details.max_sessions = 1;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer();
    ExpectRegistered("ana", *server);
    ExpectRefused(Login("ana"), Refusal::TooManySessions, "ana");
}

TEST_F(LoginTest, SessionsOfAServerThatIsGoneAreNotInUse) {
    StartZeb();
    Account details;
    details.max_sessions = 1;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer(7000);
    ExpectRegistered("ana", *server);
    Pass(std::chrono::minutes(2));
    const auto another = RunningServer(7001);
    ExpectGranted(Login("ana"));
}

TEST_F(LoginTest, TooManyWaitingChecksAreRefusedAndDoNotCountAsFailures) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    executor.full = true;
    for (int i = 0; i < 10; ++i)
        ExpectRefused(Login("ana"), Refusal::Busy);
    executor.full = false;
    ExpectGranted(Login("ana"));
}

// A user who may try once, as there were failures before.
class OneAttempt : public ZebTest {
 protected:
    void SetUp() override {
        StartZeb();
        uid = AddUser("ana");
        server = RunningServer();
        Guesses(5);
        Pass(std::chrono::seconds(1));
    }
    void Guesses(int times) {
        for (int i = 0; i < times; ++i)
            ExpectRefused(Login("ana", "a guess"), Refusal::UnknownUser);
    }
    std::int32_t uid = 0;
    std::unique_ptr<TestAppServer> server;
};

TEST_F(OneAttempt, IsNotUsedUpWhileTheServerIsBusy) {
    executor.full = true;
    ExpectRefused(Login("ana"), Refusal::Busy);
    executor.full = false;
    ExpectGranted(Login("ana"));
}

TEST_F(OneAttempt, IsNotUsedUpByAHashThatCannotBeComputed) {
    hasher.out_of_memory = true;
    ExpectRefused(Login("ana"), Refusal::Failed);
    hasher.out_of_memory = false;
    ExpectGranted(Login("ana"));
}

TEST_F(OneAttempt, IsUsedUpByAFailure) {
    Guesses(1);
    ExpectRefused(Login("ana"), Refusal::TooManyAttempts);
}

TEST_F(OneAttempt, WithTheRightPasswordForgetsTheFailuresAlsoWhenTheLoginIsRefused) {
    Accounts(store).SetDisabled(uid, true);
    ExpectRefused(Login("ana"), Refusal::Disabled);
    Guesses(4);
    ExpectRefused(Login("ana"), Refusal::Disabled);
    Accounts(store).SetDisabled(uid, false);
    server->Say(server->Info("D", {}));
    Guesses(4);
    ExpectRefused(Login("ana"), Refusal::NoServer);
    Guesses(4);
    ExpectRefused(Login("ana"), Refusal::NoServer);
}

TEST_F(LoginTest, AHashThatCannotBeComputedIsAFailureAndNotAWrongPassword) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    hasher.out_of_memory = true;
    ExpectRefused(Login("ana"), Refusal::Failed);
}

TEST_F(LoginTest, GuessingIsSlowedDown) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    for (int i = 0; i < 5; ++i)
        ExpectRefused(Login("ana", "a guess"), Refusal::UnknownUser);
    hasher.verified = 0;
    ExpectRefused(Login("ana"), Refusal::TooManyAttempts);
    EXPECT_EQ(hasher.verified, 0);
    Pass(std::chrono::seconds(2));
    ExpectGranted(Login("ana"));
}

TEST_F(LoginTest, APasswordThatChangesDuringTheCheckIsNotAccepted) {
    StartZeb();
    const auto uid = AddUser("ana");
    const auto server = RunningServer();
    executor.hold = true;
    const auto client = NewClient();
    client->Send(LoginRequest("ana").Build());
    machine.loop->RunReady();
    Accounts(store).ChangePassword(uid, std::string("hash of ") + kPassword, "hash of battery staple");
    executor.RunHeld();
    XMLMessage reply;
    reply.LoadXML(client->TakeBlock(0).data);
    ExpectRefused(reply, Refusal::UnknownUser);
}

TEST_F(LoginTest, AClientThatLeavesDuringTheCheckHarmsNobody) {
    StartZeb();
    AddUser("ana");
    const auto server = RunningServer();
    executor.hold = true;
    auto client = NewClient();
    client->Send(LoginRequest("ana").Build());
    machine.loop->RunReady();
    client->Disconnect();
    Pass(std::chrono::seconds(2));
    executor.RunHeld();
    machine.loop->RunReady();
    executor.hold = false;
    ExpectGranted(Login("ana"));
}

TEST_F(LoginTest, AServerThatStopsDuringTheCheckAnswersNothing) {
    StartZeb();
    AddUser("ana");
    executor.hold = true;
    const auto client = NewClient();
    client->Send(LoginRequest("ana").Build());
    machine.loop->RunReady();
    zeb.reset();
    executor.RunHeld();
    machine.loop->RunReady();
    EXPECT_THROW(client->TakeBlock(100), Error);
}

}  // namespace
}  // namespace kq::zeb
