// The collection of live sessions.
#include <gtest/gtest.h>

#include "session/SessionTesting.h"

namespace kq {
namespace {

constexpr auto kInvalidCall = NumberOf(RuntimeError::InvalidProcedureCall);

struct SessionInfos : testing::Test {
    void Add(std::initializer_list<const char*> ids) {
        for (const char* id : ids)
            SessionRecords::Add(sessions, SessionNamed(id));
    }
    std::string Order() const {
        std::string ids;
        for (const auto& session : sessions.All())
            ids += session->SessionID() + " ";
        return ids;
    }

    KQAppSessionInfos sessions;
};

TEST_F(SessionInfos, FindsASessionByItsIdAndByItsPosition) {
    Add({"S1", "S2"});
    EXPECT_EQ(sessions.Session(1)->SessionID(), "S1");
    EXPECT_EQ(sessions.Session(2)->SessionID(), "S2");
    EXPECT_EQ(sessions.Session("S1"), sessions.Session(1));
}

TEST_F(SessionInfos, TakesATextForAnIdEvenWhenItIsANumber) {
    Add({"2", "1"});
    EXPECT_EQ(sessions.Session("1"), sessions.Session(2));
}

TEST_F(SessionInfos, RaisesInvalidProcedureCallForWhatItDoesNotHold) {
    Add({"S1"});
    EXPECT_EQ(NumberRaisedBy([&] { sessions.Session("S2"); }), kInvalidCall);
    EXPECT_EQ(NumberRaisedBy([&] { sessions.Session("s1"); }), kInvalidCall);
    for (const std::int32_t position : {0, 2, -1})
        EXPECT_EQ(NumberRaisedBy([&] { sessions.Session(position); }), kInvalidCall);
}

TEST_F(SessionInfos, TellsWhetherASessionExistsWithoutRaising) {
    Add({"S1"});
    EXPECT_TRUE(sessions.Exists("S1"));
    EXPECT_FALSE(sessions.Exists("S2"));
    EXPECT_FALSE(sessions.Exists(""));
}

TEST_F(SessionInfos, ForgetsARemovedSession) {
    Add({"S1", "S2"});
    SessionRecords::Remove(sessions, "S1");
    EXPECT_FALSE(sessions.Exists("S1"));
    EXPECT_EQ(sessions.Count(), 1);
    EXPECT_EQ(NumberRaisedBy([&] { sessions.Session("S1"); }), kInvalidCall);
}

TEST_F(SessionInfos, RaisesInvalidProcedureCallWhenAnUnknownSessionIsRemoved) {
    EXPECT_EQ(NumberRaisedBy([&] { SessionRecords::Remove(sessions, "S1"); }), kInvalidCall);
}

TEST_F(SessionInfos, CountsItsSessions) {
    EXPECT_EQ(sessions.Count(), 0);
    Add({"S1", "S2", "S3"});
    EXPECT_EQ(sessions.Count(), 3);
}

TEST_F(SessionInfos, ReturnsTheSessionThatWasAdded) {
    const auto session = SessionNamed("S1");
    EXPECT_EQ(SessionRecords::Add(sessions, session), session);
}

TEST_F(SessionInfos, RaisesDuplicateKeyForASecondSessionOfAnIdAndKeepsTheFirst) {
    const auto first = SessionRecords::Add(sessions, SessionNamed("S1"));
    EXPECT_EQ(NumberRaisedBy([&] { Add({"S1"}); }), NumberOf(RuntimeError::DuplicateKey));
    EXPECT_EQ(sessions.Session("S1"), first);
    EXPECT_EQ(sessions.Count(), 1);
}

TEST_F(SessionInfos, TakesNoSessionWithoutARecord) {
    constexpr auto kNotSet = NumberOf(RuntimeError::ObjectNotSet);
    EXPECT_EQ(NumberRaisedBy([&] { SessionRecords::Add(sessions, std::make_shared<KQAppSessionInfo>()); }),
              kNotSet);
    EXPECT_EQ(NumberRaisedBy([&] { SessionRecords::Add(sessions, nullptr); }), kNotSet);
    EXPECT_EQ(sessions.Count(), 0);
}

TEST_F(SessionInfos, KeepTheOrderOfTheirComing) {
    Add({"S3", "S1", "S2"});
    EXPECT_EQ(Order(), "S3 S1 S2 ");
    SessionRecords::Remove(sessions, "S1");
    Add({"S1"});
    EXPECT_EQ(Order(), "S3 S2 S1 ");
    EXPECT_EQ(sessions.Session(2)->SessionID(), "S2");
}

TEST_F(SessionInfos, CountPositionsAnewAfterEveryChange) {
    Add({"S1", "S2"});
    EXPECT_EQ(sessions.Session(2)->SessionID(), "S2");
    Add({"S3"});
    EXPECT_EQ(sessions.Session(3)->SessionID(), "S3");
    SessionRecords::Remove(sessions, "S1");
    EXPECT_EQ(sessions.Session(1)->SessionID(), "S2");
    EXPECT_EQ(NumberRaisedBy([&] { sessions.Session(3); }), kInvalidCall);
}

TEST_F(SessionInfos, KeepTheIdThatASessionWasAddedUnder) {
    const auto session = SessionRecords::Add(sessions, SessionNamed("S1"));
    session->Export()->SetField("SessionID", "S2");
    EXPECT_TRUE(sessions.Exists("S1"));
    SessionRecords::Remove(sessions, "S1");
    EXPECT_EQ(sessions.Count(), 0);
}

TEST_F(SessionInfos, CanBeWalkedWhileSessionsComeAndGo) {
    Add({"S1", "S2", "S3"});
    std::string walked;
    for (const auto& session : sessions.All()) {
        walked += session->SessionID() + " ";
        SessionRecords::Remove(sessions, session->SessionID());
        SessionRecords::Add(sessions, SessionNamed("N" + session->SessionID()));
    }
    EXPECT_EQ(walked, "S1 S2 S3 ");
    EXPECT_EQ(Order(), "NS1 NS2 NS3 ");
}

TEST_F(SessionInfos, LetGoOfARemovedSession) {
    const std::weak_ptr<KQAppSessionInfo> session = SessionRecords::Add(sessions, SessionNamed("S1"));
    EXPECT_EQ(sessions.All().size(), 1U);
    SessionRecords::Remove(sessions, "S1");
    EXPECT_TRUE(session.expired());
}

TEST_F(SessionInfos, HoldTenThousandInOrder) {
    for (int i = 0; i < 10'000; ++i)
        SessionRecords::Add(sessions, SessionNamed("S" + std::to_string(i)));
    for (int i = 0; i < 10'000; i += 2)
        SessionRecords::Remove(sessions, "S" + std::to_string(i));
    EXPECT_EQ(sessions.Count(), 5'000);
    for (int i = 0; i < 5'000; ++i)
        ASSERT_EQ(sessions.Session(i + 1), sessions.Session("S" + std::to_string(2 * i + 1)));
}

}  // namespace
}  // namespace kq
