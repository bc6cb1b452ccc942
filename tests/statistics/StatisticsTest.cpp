// Named figures: counters, gauges, durations and their text.
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/Statistics.h>

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

void ExpectRefused(double milliseconds) {
    Statistics statistics;
    try {
        statistics.Record("login", milliseconds);
        ADD_FAILURE() << "recorded";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), NumberOf(RuntimeError::InvalidProcedureCall));
    }
    EXPECT_THAT(statistics.DurationNames(), IsEmpty());
}

TEST(Statistics, ReadsAnUnknownNameAsZero) {
    const Statistics statistics;
    EXPECT_EQ(statistics.Value("logins"), 0);
    EXPECT_EQ(statistics.DurationOf("login").count, 0);
    EXPECT_EQ(statistics.DurationOf("login").Mean(), 0);
}

TEST(Statistics, CountsByOneUnlessToldOtherwise) {
    Statistics statistics;
    statistics.Increment("logins");
    statistics.Increment("logins");
    statistics.Increment("logins", -5);
    EXPECT_EQ(statistics.Value("logins"), -3);
}

TEST(Statistics, StopsACounterAtTheEndsOf64Bits) {
    Statistics statistics;
    statistics.Set("up", kMost - 1);
    statistics.Increment("up", 2);
    statistics.Set("down", kLeast + 1);
    statistics.Increment("down", kLeast);
    EXPECT_EQ(statistics.Value("up"), kMost);
    EXPECT_EQ(statistics.Value("down"), kLeast);
}

TEST(Statistics, ReplacesAGaugeByItsNewValue) {
    Statistics statistics;
    statistics.Set("sessions", 7);
    statistics.Set("sessions", 3);
    EXPECT_EQ(statistics.Value("sessions"), 3);
}

TEST(Statistics, GathersCountTotalExtremesAndMeanOfADuration) {
    Statistics statistics;
    for (const double milliseconds : {4.0, 1.0, 10.0})
        statistics.Record("login", milliseconds);
    const auto login = statistics.DurationOf("login");
    EXPECT_EQ(login.count, 3);
    EXPECT_EQ(login.total, 15.0);
    EXPECT_EQ(login.minimum, 1.0);
    EXPECT_EQ(login.maximum, 10.0);
    EXPECT_EQ(login.Mean(), 5.0);
}

TEST(Statistics, RecordsADurationOfZero) {
    Statistics statistics;
    statistics.Record("login", 0);
    EXPECT_EQ(statistics.DurationOf("login").count, 1);
}

TEST(Statistics, RefusesANegativeDuration) {
    ExpectRefused(-0.001);
}

TEST(Statistics, RefusesADurationThatIsNoFiniteNumber) {
    ExpectRefused(std::numeric_limits<double>::quiet_NaN());
    ExpectRefused(std::numeric_limits<double>::infinity());
}

TEST(Statistics, ListsNamesInOrder) {
    Statistics statistics;
    statistics.Increment("b");
    statistics.Set("a", 1);
    statistics.Record("d", 1);
    statistics.Record("c", 1);
    EXPECT_THAT(statistics.Names(), ElementsAre("a", "b"));
    EXPECT_THAT(statistics.DurationNames(), ElementsAre("c", "d"));
}

TEST(Statistics, KeepsNamesApartByCase) {
    Statistics statistics;
    statistics.Increment("Logins");
    EXPECT_EQ(statistics.Value("logins"), 0);
}

TEST(Statistics, KeepsACounterAndADurationOfOneNameApart) {
    Statistics statistics;
    statistics.Increment("login", 2);
    statistics.Record("login", 8);
    EXPECT_EQ(statistics.Value("login"), 2);
    EXPECT_EQ(statistics.DurationOf("login").maximum, 8.0);
}

TEST(Statistics, ForgetsEverythingWhenCleared) {
    Statistics statistics;
    statistics.Increment("logins");
    statistics.Record("login", 1);
    statistics.Clear();
    EXPECT_THAT(statistics.Names(), IsEmpty());
    EXPECT_THAT(statistics.DurationNames(), IsEmpty());
    EXPECT_EQ(statistics.Text(), "");
}

TEST(Statistics, WritesOneLineAFigureInOrderOfNames) {
    Statistics statistics;
    statistics.Increment("sessions", 12);
    statistics.Record("login", 1);
    statistics.Record("login", 2.5);
    statistics.Set("accounts", -1);
    statistics.Record("upload", 0.25);
    EXPECT_EQ(statistics.Text(),
              "accounts -1\nlogin 2 1.000 1.750 2.500\nsessions 12\nupload 1 0.250 0.250 0.250\n");
}

TEST(Statistics, WritesTheLargestDurationInFull) {
    Statistics statistics;
    statistics.Record("login", std::numeric_limits<double>::max());
    EXPECT_GT(statistics.Text().size(), 900U);
}

TEST(Statistics, WritesBlanksAndLineBreaksOfANameAsUnderlines) {
    Statistics statistics;
    statistics.Set("open sessions\nnow", 3);
    EXPECT_EQ(statistics.Text(), "open_sessions_now 3\n");
    EXPECT_EQ(statistics.Value("open sessions\nnow"), 3);
}

}  // namespace
}  // namespace kq
