// The ways between connections and sessions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "server/SessionIndex.h"
#include "session/SessionTesting.h"
#include "support/FakePlatform.h"

namespace kq {
namespace {

TEST(SessionIndex, KeepsTheSessionsInTheOrderOfTheirComing) {
    SessionIndex index;
    const auto b = SessionNamed("B"), a = SessionNamed("A"), c = SessionNamed("C");
    index.AddSession("1", b);
    index.AddSession("2", a);
    index.AddSession("3", c);
    index.RemoveSession("2");
    EXPECT_THAT(index.Sessions(), testing::ElementsAre(b, c));
}

TEST(SessionIndex, LeavesTheEarlierSessionOfAConnectionInPlace) {
    SessionIndex index;
    const auto first = SessionNamed("A");
    index.AddSession("1", first);
    EXPECT_EQ(NumberRaisedBy([&] { index.AddSession("1", SessionNamed("B")); }),
              NumberOf(RuntimeError::DuplicateKey));
    EXPECT_THAT(index.Sessions(), testing::ElementsAre(first));
}

TEST(SessionIndex, LeavesTheEarlierConnectionOfASessionInPlace) {
    FakePlatform machine;
    SessionIndex index;
    const auto first = APClient::Create(machine.platform), second = APClient::Create(machine.platform);
    index.AddClient("A", first);
    EXPECT_EQ(NumberRaisedBy([&] { index.AddClient("A", second); }), NumberOf(RuntimeError::DuplicateKey));
    EXPECT_EQ(index.ClientOf("A"), first);
}

TEST(SessionIndex, RefusesToRemoveWhatIsNotThere) {
    SessionIndex index;
    EXPECT_EQ(NumberRaisedBy([&] { index.RemoveSession("1"); }),
              NumberOf(RuntimeError::InvalidProcedureCall));
    EXPECT_EQ(NumberRaisedBy([&] { index.RemoveClient("A"); }), NumberOf(RuntimeError::InvalidProcedureCall));
    EXPECT_EQ(index.SessionOf("1"), nullptr);
    EXPECT_EQ(index.ClientOf("A"), nullptr);
}

TEST(SessionIndex, HoldsNothingAfterClear) {
    SessionIndex index;
    index.AddSession("1", SessionNamed("A"));
    index.AddClient("A", nullptr);
    index.Clear();
    EXPECT_TRUE(index.Sessions().empty());
    EXPECT_EQ(index.SessionOf("1"), nullptr);
    index.AddSession("1", SessionNamed("A"));
    index.AddClient("A", nullptr);
}

}  // namespace
}  // namespace kq
