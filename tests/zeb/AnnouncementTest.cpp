// What the login server learns from announcements, and when it asks for them.
#include "base/Convert.h"
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class Announcement : public ZebTest {
 protected:
    ASLoginResponse LoginOfAna() {
        if (!Accounts(store).Find("ana")) AddUser("ana");
        return Login("ana");
    }
    void ExpectServer() { ExpectGranted(LoginOfAna()); }
    void ExpectNoServer() { ExpectRefused(LoginOfAna(), Refusal::NoServer); }
    int TimesInLog(const std::string& text) const {
        const std::string log = Log();
        int times = 0;
        for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
            ++times;
        return times;
    }
};

TEST_F(Announcement, AtItsStartTheLoginServerAsksForAll) {
    const auto server = NewServer();
    StartZeb();
    ASSERT_EQ(server->announcement_requests.size(), 1U);
    const auto& request = server->announcement_requests[0];
    EXPECT_EQ(request.Type(), "RequestBroadcastAS");
    EXPECT_EQ(request.Schema(), "ZEBSchemas");
    EXPECT_EQ(request.Destination(), (BusAddress{"AS", "Broadcast"}));
}

TEST_F(Announcement, ItAsksAgainForServersThatComeBackToTheBusLate) {
    StartZeb();
    const auto server = NewServer();
    Pass(std::chrono::seconds(30));
    EXPECT_FALSE(server->announcement_requests.empty());
    server->announcement_requests.clear();
    Pass(std::chrono::minutes(10));
    EXPECT_TRUE(server->announcement_requests.empty());
}

TEST_F(Announcement, AServerWithoutAnIntervalIsAskedAndStaysAsLongAsItAnswers) {
    StartZeb();
    const auto server = NewServer();
    server->interval = "0";
    server->Announce();
    for (int minute = 0; minute < 10; ++minute) {
        server->announcement_requests.clear();
        Pass(std::chrono::minutes(1));
        EXPECT_FALSE(server->announcement_requests.empty());
        server->Announce();
    }
    ExpectServer();
    Pass(std::chrono::minutes(4));
    ExpectNoServer();
}

TEST_F(Announcement, AServerThatSaysItStopsIsGone) {
    StartZeb();
    const auto server = RunningServer();
    ExpectServer();
    server->Say(server->Info("D", {}));
    ExpectNoServer();
}

TEST_F(Announcement, AnEndAfterTheStopIsNoSignOfLife) {
    StartZeb();
    const auto server = RunningServer();
    server->Say(server->Info("D", {}));
    server->Say(server->Info("E", {"a"}));
    ExpectNoServer();
}

TEST_F(Announcement, AServerThatIsSilentForThreeIntervalsIsGone) {
    StartZeb();
    const auto server = RunningServer();
    Pass(std::chrono::seconds(90));
    ExpectServer();
    Pass(std::chrono::seconds(10));
    ExpectNoServer();
}

TEST_F(Announcement, AListWithoutASessionEndsIt) {
    StartZeb();
    Account details;
    details.max_sessions = 1;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer();
    const auto id = ExpectRegistered("ana", *server);
    server->Announce({id});
    ExpectRefused(Login("ana"), Refusal::TooManySessions, "ana");
    Pass(std::chrono::seconds(61));
    server->Announce({});
    ExpectGranted(Login("ana"));
}

TEST_F(Announcement, AListThatCrossedTheRegistrationDoesNotEndTheSession) {
    StartZeb();
    Account details;
    details.max_sessions = 1;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer();
    ExpectRegistered("ana", *server);
    server->Announce({});
    ExpectRefused(Login("ana"), Refusal::TooManySessions, "ana");
}

TEST_F(Announcement, AnAnnouncementWithoutAListKeepsTheSessions) {
    StartZeb();
    AddUser("ana");
    const auto busy = NewServer(7000);
    busy->Announce({"a", "b"});
    auto info = busy->Info("C", {});
    info.ApplicationInfos->ApplicationInfo->Sessions.reset();
    busy->Say(info);
    const auto idle = NewServer(7001);
    idle->Announce({"c"});
    EXPECT_EQ(Login("ana").Port, "7001");
}

TEST_F(Announcement, AnEndedSessionLightensTheServer) {
    StartZeb();
    AddUser("ana");
    const auto first = NewServer(7000);
    first->Announce({"a", "b"});
    const auto second = NewServer(7001);
    second->Announce({"c"});
    first->Say(first->Info("E", {"a"}));
    first->Say(first->Info("E", {"b"}));
    EXPECT_EQ(Login("ana").Port, "7000");
}

TEST_F(Announcement, WhatIsNoAnnouncementIsDropped) {
    StartZeb();
    const auto server = NewServer();
    const auto say_without = [&](const auto& remove) {
        auto info = server->Info("C", {});
        remove(info);
        server->Say(info);
        ExpectNoServer();
    };
    say_without([](auto& info) { info.ApplicationInfos.reset(); });
    say_without([](auto& info) { info.ApplicationInfos->ApplicationInfo.reset(); });
    say_without([](auto& info) { info.ASRequestInfo.reset(); });
    say_without([](auto& info) { info.ASRequestInfo->ReturnMsgType.clear(); });
    say_without([](auto& info) { info.ApplicationInfos->ApplicationInfo->AppID.clear(); });
    EXPECT_EQ(TimesInLog("is ignored"), 5);
    server->Announce();
    ExpectServer();
}

TEST_F(Announcement, AServerWithAnInvalidPortIsNotUsed) {
    StartZeb();
    const auto server = NewServer();
    for (const char* port : {"-5", "0", "65536", "70000", "99999999999", "", "http", "7000x", "7e3", "1.5"}) {
        auto info = server->Info("C", {});
        info.ApplicationInfos->ApplicationInfo->Port = port;
        server->Say(info);
        SCOPED_TRACE(port);
        ExpectNoServer();
    }
    for (const char* port : {"1", " 7000 ", "65535"}) {
        auto info = server->Info("C", {});
        info.ApplicationInfos->ApplicationInfo->Port = port;
        server->Say(info);
        EXPECT_EQ(Login("ana").Port, Trim(port));
    }
}

TEST_F(Announcement, AnInvalidPortIsLoggedOnceUntilItIsCorrected) {
    StartZeb();
    NewServer(-5)->Announce();
    const auto server = NewServer(70'000);
    auto corrected = server->Info("C", {});
    corrected.ApplicationInfos->ApplicationInfo->Port = "7000";
    server->Announce();
    server->Announce();
    EXPECT_EQ(TimesInLog("70000 is not a port"), 1);
    EXPECT_EQ(TimesInLog("-5 is not a port"), 1);
    server->Say(corrected);
    server->Announce();
    EXPECT_EQ(TimesInLog("70000 is not a port"), 2);
}

TEST_F(Announcement, AnInvalidIntervalIsNoReasonToIgnoreAServer) {
    StartZeb();
    for (const char* interval : {"-5", "", "x", "99999999999", "1e999", "-1e999"}) {
        const auto server = NewServer();
        server->interval = interval;
        server->Announce();
        SCOPED_TRACE(interval);
        ExpectServer();
        server->Say(server->Info("D", {}));
    }
}

TEST_F(Announcement, AServerWithAnIntervalBeyondAllNumbersIsSilentAfterThreeDays) {
    StartZeb();
    const auto server = NewServer();
    server->interval = "1e999";
    server->Announce();
    Pass(std::chrono::hours(71));
    ExpectServer();
    Pass(std::chrono::hours(2));
    ExpectNoServer();
}

// Of a user who may have one session, and an application server with it.
class LostServer : public Announcement {
 protected:
    void SetUp() override {
        StartZeb();
        Account details;
        details.max_sessions = 1;
        AddUser("ana", kPassword, details);
        server = RunningServer();
        session = ExpectRegistered("ana", *server);
    }
    // As the hub says it.
    void LosesTheBus() {
        zeb->Reachable(server->Reply(), false);
        machine.loop->RunReady();
    }
    void IsBackOnTheBus() {
        zeb->Reachable(server->Reply(), true);
        machine.loop->RunReady();
    }
    void ExpectSessionInUse() { ExpectRefused(Login("ana"), Refusal::TooManySessions, "ana"); }
    void ExpectSessionFree() { ExpectGranted(Login("ana")); }

    std::unique_ptr<TestAppServer> server;
    std::string session;
};

TEST_F(LostServer, IsNotUsedFromTheMomentItLosesTheBus) {
    ExpectSessionInUse();
    LosesTheBus();
    ExpectNoServer();
    EXPECT_EQ(TimesInLog("has lost its bus connection"), 1);
}

TEST_F(LostServer, ThatStoppedAndCameBackHasNoneOfItsSessions) {
    server->Say(server->Info("D", {}));
    server->Announce({});
    ExpectSessionFree();
}

TEST_F(LostServer, LeavesItsUsersToTheOtherServers) {
    const auto other = NewServer(7001);
    other->Announce({"a", "b", "c"});
    LosesTheBus();
    EXPECT_EQ(Login("ana").Port, "7001");
}

TEST_F(LostServer, GetsNoOrderToLogOutWhileItIsGone) {
    const auto other = RunningServer(7001);
    LosesTheBus();
    other->AskToRegister(session);
    EXPECT_FALSE(other->ExpectHeard().HasField("ErrorResponse"));
    EXPECT_TRUE(server->heard.empty());
}

TEST_F(LostServer, IsUsedWithItsSessionsAsSoonAsItIsBack) {
    LosesTheBus();
    server->announcement_requests.clear();
    IsBackOnTheBus();
    ExpectSessionInUse();
    ASSERT_EQ(server->announcement_requests.size(), 1U);
    EXPECT_EQ(server->announcement_requests[0].Destination(), server->Reply());
}

TEST_F(LostServer, ThatIsBackWithoutASessionFreesItForItsUser) {
    Pass(std::chrono::seconds(61));
    LosesTheBus();
    IsBackOnTheBus();
    server->Announce({});
    ExpectSessionFree();
}

TEST_F(LostServer, StaysGoneWhenItsLastAnnouncementArrivesLate) {
    LosesTheBus();
    server->Announce({session});
    ExpectNoServer();
    IsBackOnTheBus();
    ExpectSessionInUse();
}

TEST_F(LostServer, StaysGoneWhenItsFirstAnnouncementArrivesLate) {
    const auto unknown = NewServer(7001);
    LosesTheBus();
    zeb->Reachable(unknown->Reply(), false);
    unknown->Announce();
    ExpectNoServer();
}

TEST_F(LostServer, IsBackWhenItAnnouncesItselfByAnotherWayLater) {
    LosesTheBus();
    Pass(std::chrono::seconds(70));
    server->Announce({});
    ExpectSessionFree();
}

TEST_F(LostServer, IsReplacedByTheNextProcessAtItsPlace) {
    const auto next = NewServer(7000);
    ExpectSessionInUse();
    next->Announce({});
    ExpectSessionFree();
    server->Say(server->Info("E", {session}));
    EXPECT_EQ(TimesInLog("was replaced by another process"), 1);
}

TEST_F(LostServer, LeavesTheSessionsThatTheNextProcessNames) {
    const auto next = NewServer(7000);
    next->Announce({session});
    ExpectSessionInUse();
    next->Say(next->Info("E", {session}));
    ExpectSessionFree();
}

TEST_F(LostServer, DoesNotDisplaceTheNextProcessByItsLastWords) {
    const auto next = RunningServer(7000);
    const auto id = ExpectRegistered("ana", *next, "2");
    zeb->Reachable(server->Reply(), false);
    server->Announce({});
    ExpectSessionInUse();  // on the next process
}

TEST_F(LostServer, IsNotReplacedByServersElsewhere) {
    const auto other_port = RunningServer(7001);
    const auto other_application = RunningServer(7000, "Other");
    const auto other_address = NewServer(7000);
    other_address->address = "192.0.2.11";
    other_address->Announce();
    ExpectSessionInUse();
}

TEST_F(LostServer, IsReplacedByAServerThatMovesToItsPlace) {
    const auto other = RunningServer(7001);
    auto info = other->Info("C", {});
    info.ApplicationInfos->ApplicationInfo->Port = "7000";
    other->Say(info);
    ExpectSessionFree();
}

TEST_F(LostServer, HasNoPlaceToTakeWithoutAnAddress) {
    const auto one = NewServer(7001);
    const auto other = NewServer(7001);
    one->address = other->address = "";
    one->Announce({"a"});
    other->Announce({"b"});
    EXPECT_EQ(TimesInLog("was replaced"), 0);
}

}  // namespace
}  // namespace kq::zeb
