// The sessions that the login server has issued: how long they are good, where they are, and what outlives a
// restart.
#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "zeb/store/Accounts.h"
#include "zeb/store/Sessions.h"

namespace kq::zeb {
namespace {

using std::chrono::seconds;

const BusAddress kServer{"Reply", "1"};
const BusAddress kOtherServer{"Reply", "2"};

class SessionsTest : public testing::Test {
 protected:
    SessionsTest() {
        Account account;
        account.login = "ana";
        uid = Accounts(store).Add(account);
        Restart();
    }
    void Restart() { sessions = std::make_unique<Sessions>(store, machine.platform, Sessions::Rule()); }
    std::string Issued(const std::string& app_id = "Demo") {
        auto session = sessions->Issue(uid, app_id);
        sessions->Add(session);
        return session.id;
    }
    std::string Registered(const BusAddress& server = kServer, const std::string& app_id = "Demo") {
        const auto id = Issued(app_id);
        sessions->Register(id, server, "connection 1");
        return id;
    }
    bool Good(const std::string& id) const { return sessions->Find(id) != nullptr; }
    BusAddress PlaceOf(const std::string& id) const {
        const auto* session = sessions->Find(id);
        return session != nullptr ? session->server : BusAddress{"no session", ""};
    }
    int LiveBut(const std::string& except) const {
        return sessions->CountLive(uid, except, [](const Session&) { return true; });
    }
    std::int64_t InStore() {
        auto query = store.Use("SELECT count(*) FROM sessions");
        return query.Next() ? query.Number(0) : -1;
    }
    void Pass(Milliseconds time) { machine.loop->Advance(time); }

    FakePlatform machine;
    Store store{":memory:"};
    std::int32_t uid = 0;
    std::unique_ptr<Sessions> sessions;
};

TEST_F(SessionsTest, MayBeRegisteredForTenMinutes) {
    const auto id = Issued();
    Pass(seconds(600));
    EXPECT_TRUE(Good(id));
    Pass(seconds(1));
    EXPECT_FALSE(Good(id));
}

TEST_F(SessionsTest, MayBeRegisteredForTenMinutesAfterTheyEnded) {
    const auto id = Registered();
    Pass(seconds(3'000));
    sessions->End(id, kServer);
    EXPECT_EQ(PlaceOf(id), BusAddress());
    Pass(seconds(600));
    EXPECT_TRUE(Good(id));
    Pass(seconds(1));
    EXPECT_FALSE(Good(id));
}

TEST_F(SessionsTest, AreGivenUpADayAfterTheirServerSaidSomething) {
    const auto id = Registered();
    Pass(seconds(80'000));
    sessions->Announced(kServer, "Demo", {id});
    Pass(seconds(86'400));
    EXPECT_TRUE(Good(id));
    Pass(seconds(1));
    EXPECT_FALSE(Good(id));
}

TEST_F(SessionsTest, AreRemovedWhenTheyAreGoneAndNoSooner) {
    const auto gone = Issued();
    const auto registered = Registered();
    sessions->Purge();
    EXPECT_EQ(sessions->Count(), 2U);
    Pass(seconds(601));
    sessions->Purge();
    EXPECT_EQ(sessions->Count(), 1U);
    EXPECT_EQ(InStore(), 1);
    EXPECT_FALSE(Good(gone));
    EXPECT_EQ(PlaceOf(registered), kServer);
}

TEST_F(SessionsTest, AreRemovedWithTheirPlaceOnAServer) {
    Registered();
    Pass(seconds(86'401));
    sessions->Purge();
    EXPECT_EQ(sessions->Count(), 0U);
    EXPECT_EQ(LiveBut(""), 0);
    sessions->EndAll(kServer, "Demo");
    EXPECT_EQ(InStore(), 0);
}

TEST_F(SessionsTest, OutliveARestartWithTheirPlaceAndConnection) {
    const auto id = Registered();
    Pass(seconds(80'000));
    Restart();
    Pass(seconds(80'000));
    const auto* session = sessions->Find(id);
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->user_uid, uid);
    EXPECT_EQ(session->app_id, "Demo");
    EXPECT_EQ(session->server, kServer);
    EXPECT_EQ(session->connection, "connection 1");
    EXPECT_EQ(LiveBut(""), 1);
    sessions->EndAll(kServer, "Demo");
    EXPECT_EQ(LiveBut(""), 0);
}

TEST_F(SessionsTest, KeepTheirTimeToRegisterOverARestart) {
    const auto id = Issued();
    Pass(seconds(400));
    Restart();
    Pass(seconds(200));
    EXPECT_TRUE(Good(id));
    Pass(seconds(1));
    EXPECT_FALSE(Good(id));
}

TEST_F(SessionsTest, MoveToTheirNextServer) {
    const auto id = Registered();
    sessions->Register(id, kOtherServer, "connection 2");
    EXPECT_EQ(PlaceOf(id), kOtherServer);
    EXPECT_EQ(sessions->Find(id)->connection, "connection 2");
    sessions->EndAll(kServer, "Demo");
    EXPECT_EQ(PlaceOf(id), kOtherServer);
    Restart();
    EXPECT_EQ(PlaceOf(id), kOtherServer);
}

TEST_F(SessionsTest, EndOnTheirServerOnly) {
    const auto id = Registered();
    sessions->End(id, kOtherServer);
    sessions->End(id, {});
    sessions->End("unknown", kServer);
    EXPECT_EQ(PlaceOf(id), kServer);
}

TEST_F(SessionsTest, EndWithTheirApplicationOnly) {
    const auto demo = Registered(kServer, "Demo");
    const auto other = Registered(kServer, "Other");
    sessions->EndAll(kServer, "Demo");
    EXPECT_EQ(PlaceOf(demo), BusAddress());
    EXPECT_EQ(PlaceOf(other), kServer);
}

TEST_F(SessionsTest, EndWhenAListLacksThemAMinuteAfterTheyWereRegistered) {
    const auto id = Registered();
    Pass(seconds(60));
    sessions->Announced(kServer, "Demo", {});
    EXPECT_EQ(PlaceOf(id), kServer);
    Pass(seconds(1));
    sessions->Announced(kServer, "Demo", {});
    EXPECT_EQ(PlaceOf(id), BusAddress());
}

TEST_F(SessionsTest, DoNotEndByAListOfAnotherApplicationOrServer) {
    const auto id = Registered();
    Pass(seconds(61));
    sessions->Announced(kServer, "Other", {});
    sessions->Announced(kOtherServer, "Demo", {});
    sessions->Announced({}, "Demo", {});
    EXPECT_EQ(PlaceOf(id), kServer);
}

TEST_F(SessionsTest, AreRegisteredByAListThatNamesThem) {
    const auto waiting = Issued();
    const auto elsewhere = Registered(kOtherServer);
    const auto foreign = Issued("Other");
    sessions->Announced(kServer, "Demo", {waiting, elsewhere, foreign, "unknown"});
    EXPECT_EQ(PlaceOf(waiting), kServer);
    EXPECT_EQ(PlaceOf(elsewhere), kOtherServer);
    EXPECT_EQ(PlaceOf(foreign), BusAddress());
}

TEST_F(SessionsTest, AreCountedWhileRegisteredAndLiveApartFromOne) {
    const auto one = Registered();
    Registered();
    Issued();
    EXPECT_EQ(LiveBut(""), 2);
    EXPECT_EQ(LiveBut(one), 1);
    EXPECT_EQ(sessions->CountLive(uid, "", [&](const Session& session) { return session.id == one; }), 1);
    EXPECT_EQ(sessions->CountLive(uid + 1, "", [](const Session&) { return true; }), 0);
}

}  // namespace
}  // namespace kq::zeb
