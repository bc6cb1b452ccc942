// What the login server learns from announcements, and when it asks for them.
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class Announcement : public ZebTest {
 protected:
    bool ServerThere() {
        if (!Accounts(store).Find("ana")) AddUser("ana");
        return Login("ana").ErrorNumber == "0";
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
    EXPECT_TRUE(ServerThere());
    Pass(std::chrono::minutes(4));
    EXPECT_FALSE(ServerThere());
}

TEST_F(Announcement, AServerThatSaysItStopsIsGone) {
    StartZeb();
    const auto server = RunningServer();
    EXPECT_TRUE(ServerThere());
    server->Say(server->Info("D", {}));
    EXPECT_FALSE(ServerThere());
}

TEST_F(Announcement, AnEndAfterTheStopIsNoSignOfLife) {
    StartZeb();
    const auto server = RunningServer();
    server->Say(server->Info("D", {}));
    server->Say(server->Info("E", {"a"}));
    EXPECT_FALSE(ServerThere());
}

TEST_F(Announcement, AServerThatIsSilentForThreeIntervalsIsGone) {
    StartZeb();
    const auto server = RunningServer();
    Pass(std::chrono::seconds(90));
    EXPECT_TRUE(ServerThere());
    Pass(std::chrono::seconds(10));
    EXPECT_FALSE(ServerThere());
}

TEST_F(Announcement, AListWithoutASessionEndsIt) {
    StartZeb();
    Account details;
    details.max_sessions = 1;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer();
    const auto id = LoginAndRegister("ana", *server);
    server->Announce({id});
    EXPECT_EQ(Login("ana").ErrorNumber, "7790");
    Pass(std::chrono::seconds(61));
    server->Announce({});
    EXPECT_EQ(Login("ana").ErrorNumber, "0");
}

TEST_F(Announcement, AListThatCrossedTheRegistrationDoesNotEndTheSession) {
    StartZeb();
    Account details;
    details.max_sessions = 1;
    AddUser("ana", kPassword, details);
    const auto server = RunningServer();
    LoginAndRegister("ana", *server);
    server->Announce({});
    EXPECT_EQ(Login("ana").ErrorNumber, "7790");
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
    auto info = server->Info("C", {});
    info.ApplicationInfos.reset();
    server->Say(info);
    info = server->Info("C", {});
    info.ApplicationInfos->ApplicationInfo->Port = "99999999999";
    server->Say(info);
    EXPECT_FALSE(ServerThere());
    server->Announce();
    EXPECT_TRUE(ServerThere());
}

}  // namespace
}  // namespace kq::zeb
