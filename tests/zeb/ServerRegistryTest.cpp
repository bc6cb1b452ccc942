// The application servers that the login server knows: how long, how many, and which of them is chosen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "zeb/store/ServerRegistry.h"

namespace kq::zeb {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using Ids = std::vector<std::string>;

class Registry : public testing::Test {
 protected:
    static BusAddress ReplyOf(int server) { return {"Reply", std::to_string(server)}; }
    // The server announces itself at a place of its own.
    ServerRegistry::Arrival Announces(int server, const std::optional<Ids>& sessions = Ids(),
                                      const std::string& interval = "30") {
        ApplicationInfo application;
        application.AppID = "Demo";
        application.Address = "192.0.2.10";
        application.BroadcastInterval = interval;
        application.Sessions = sessions;
        return servers.Announced(ReplyOf(server), application, 7000 + server);
    }
    bool Live(int server) const { return servers.IsLive(ReplyOf(server), "Demo"); }
    // The number of the server that a login is sent to.
    int Chosen() { return servers.ChoosePort("Demo", {}).value_or(6999) - 7000; }
    void Pass(Milliseconds time) { machine.loop->Advance(time); }

    FakePlatform machine;
    ServerRegistry servers{machine.loop};
};

TEST_F(Registry, KeepsAServerForThreeIntervalsAndFiveSeconds) {
    Announces(1);
    Pass(Milliseconds(95'000));
    EXPECT_TRUE(Live(1));
    EXPECT_THAT(servers.DropSilent(), IsEmpty());
    Pass(Milliseconds(1));
    EXPECT_FALSE(Live(1));
    EXPECT_THAT(servers.DropSilent(), SizeIs(1));
    EXPECT_EQ(servers.Count(), 0U);
}

TEST_F(Registry, KeepsAServerThatHasToBeAskedForThreeMinutesAndFiveSeconds) {
    Announces(1, Ids(), "0");
    EXPECT_TRUE(servers.SomeMustBeAsked());
    Pass(Milliseconds(185'000));
    EXPECT_TRUE(Live(1));
    Pass(Milliseconds(1));
    EXPECT_FALSE(Live(1));
}

TEST_F(Registry, AsksNobodyWhoAnnouncesItself) {
    Announces(1, Ids(), "1");
    EXPECT_FALSE(servers.SomeMustBeAsked());
}

TEST_F(Registry, TakesTheEndOfASessionAsASignOfLife) {
    Announces(1, Ids{"a"});
    Pass(Milliseconds(60'000));
    servers.SessionEnded(ReplyOf(1), "Demo", "a");
    Pass(Milliseconds(60'000));
    EXPECT_TRUE(Live(1));
}

TEST_F(Registry, DoesNotLearnOfAServerFromTheEndOfASession) {
    servers.SessionEnded(ReplyOf(1), "Demo", "a");
    EXPECT_EQ(servers.Count(), 0U);
}

TEST_F(Registry, ChoosesAServerNoLongerOnceItsLoadIsLarger) {
    Announces(1, Ids{"a"});
    Announces(2, Ids{"b", "c"});
    EXPECT_EQ(Chosen(), 1);
    EXPECT_EQ(Chosen(), 1) << "of equals the first";
    EXPECT_EQ(Chosen(), 2);
}

TEST_F(Registry, CountsLoginsOnTheirWayUntilTheNextListOfSessions) {
    Announces(1);
    Announces(2, Ids{"a"});
    EXPECT_EQ(Chosen(), 1);
    EXPECT_EQ(Chosen(), 1);
    Announces(1, std::nullopt);
    EXPECT_EQ(Chosen(), 2) << "an announcement without a list changes nothing";
    Announces(1, Ids());
    EXPECT_EQ(Chosen(), 1);
    EXPECT_EQ(Chosen(), 1);
}

TEST_F(Registry, ChoosesNobodyWhoIsSilentOrOffTheBus) {
    Announces(1);
    servers.Reachable(ReplyOf(1), false);
    EXPECT_EQ(Chosen(), -1);
    servers.Reachable(ReplyOf(1), true);
    EXPECT_EQ(Chosen(), 1);
    Pass(Milliseconds(95'001));
    EXPECT_EQ(Chosen(), -1);
    EXPECT_FALSE(servers.HasServerFor("Demo", {}));
}

TEST_F(Registry, ReportsALossAndAReturnOnce) {
    Announces(1);
    Announces(2);
    EXPECT_THAT(servers.Reachable(ReplyOf(1), true), IsEmpty());
    EXPECT_THAT(servers.Reachable(ReplyOf(1), false), SizeIs(1));
    EXPECT_THAT(servers.Reachable(ReplyOf(1), false), IsEmpty());
    EXPECT_THAT(servers.Reachable(ReplyOf(1), true), SizeIs(1));
}

TEST_F(Registry, BelievesAnAnnouncementAMinuteAfterTheLoss) {
    servers.Reachable(ReplyOf(1), false);
    Pass(ServerRegistry::kOnTheWay);
    servers.DropSilent();
    Announces(1);
    EXPECT_FALSE(Live(1));
    Pass(Milliseconds(1));
    servers.DropSilent();
    Announces(1);
    EXPECT_TRUE(Live(1));
}

TEST_F(Registry, KnowsNoMoreServersThanItsLimitAndKeepsThoseItKnows) {
    const int most = static_cast<int>(ServerRegistry::kMaxServers);
    for (int server = 1; server <= most; ++server)
        EXPECT_TRUE(Announces(server).fresh);
    EXPECT_FALSE(Announces(most + 1).fresh);
    EXPECT_FALSE(Live(most + 1));
    EXPECT_FALSE(Announces(1).fresh);
    EXPECT_TRUE(Live(1));
    EXPECT_EQ(servers.Count(), ServerRegistry::kMaxServers);
}

TEST_F(Registry, RemembersNoMoreLossesThanItsLimit) {
    const int most = static_cast<int>(ServerRegistry::kMaxServers);
    for (int server = 1; server <= most + 1; ++server)
        servers.Reachable(ReplyOf(server), false);
    Announces(most);
    Announces(most + 1);
    EXPECT_FALSE(Live(most));
    EXPECT_TRUE(Live(most + 1));
}

}  // namespace
}  // namespace kq::zeb
