// Events: order, what handlers may do to the signal while it calls them, and the end of owners.
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <kqappsession/Signal.h>

namespace kq {
namespace {

TEST(Signal, CallsHandlersInTheOrderOfConnection) {
    Signal<int> signal;
    Owner owner;
    std::string heard;
    signal.Connect(owner, [&](int n) { heard += "a" + std::to_string(n); });
    signal.Connect(owner, [&](int n) { heard += "b" + std::to_string(n); });
    signal(1);
    EXPECT_EQ(heard, "a1b1");
}

TEST(Signal, HandsTheSameObjectToEveryHandler) {
    Signal<int&> signal;
    Owner owner;
    signal.Connect(owner, [](int& n) { n += 1; });
    signal.Connect(owner, [](int& n) { n *= 10; });
    int value = 1;
    signal(value);
    EXPECT_EQ(value, 20);
}

TEST(Signal, CallsNothingThatBelongsToAnOwnerThatIsGone) {
    Signal<> signal;
    int calls = 0;
    {
        Owner owner;
        signal.Connect(owner, [&] { ++calls; });
        EXPECT_TRUE(signal.HasHandlers());
    }
    signal();
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(signal.HasHandlers());
}

TEST(Signal, SkipsALaterHandlerWhoseOwnerAnEarlierOneEnded) {
    Signal<> signal;
    Owner first;
    std::optional<Owner> second(std::in_place);
    int calls = 0;
    signal.Connect(first, [&] { second.reset(); });
    signal.Connect(*second, [&] { ++calls; });
    signal();
    EXPECT_EQ(calls, 0);
}

TEST(Signal, DoesNotCallAnOwnersHandlerAgainInsideTheHandlerThatEndedIt) {
    Signal<> signal;
    std::optional<Owner> owner(std::in_place);
    int calls = 0;
    signal.Connect(*owner, [&] {
        ++calls;
        owner.reset();
        signal();
    });
    signal();
    EXPECT_EQ(calls, 1);
}

TEST(Signal, CallsAHandlerConnectedInAHandlerAtTheNextEvent) {
    Signal<> signal;
    Owner owner;
    int late = 0;
    bool connected = false;
    signal.Connect(owner, [&] {
        if (!std::exchange(connected, true)) signal.Connect(owner, [&] { ++late; });
    });
    signal();
    EXPECT_EQ(late, 0);
    signal();
    EXPECT_EQ(late, 1);
}

TEST(Signal, SurvivesAHandlerThatDestroysIt) {
    std::optional<Signal<>> signal(std::in_place);
    Owner owner;
    int calls = 0;
    signal->Connect(owner, [&] { signal.reset(); });
    signal->Connect(owner, [&] { ++calls; });
    (*signal)();
    EXPECT_EQ(calls, 1);
}

TEST(Signal, DisconnectEndsOnlyThatOwnersHandlers) {
    Signal<> signal;
    Owner one;
    Owner two;
    std::string heard;
    signal.Connect(one, [&] { heard += "1"; });
    signal.Connect(two, [&] { heard += "2"; });
    signal.Disconnect(one);
    signal();
    EXPECT_EQ(heard, "2");
}

TEST(Signal, ReportsAThrowingHandlerAndCallsTheNext) {
    int reported = 0;
    auto before = SetStrayExceptionHandler([&](std::exception_ptr) { ++reported; });
    Signal<> signal;
    Owner owner;
    int calls = 0;
    signal.Connect(owner, [] { throw std::runtime_error("broken"); });
    signal.Connect(owner, [&] { ++calls; });
    EXPECT_NO_THROW(signal());
    SetStrayExceptionHandler(std::move(before));
    EXPECT_EQ(reported, 1);
    EXPECT_EQ(calls, 1);
}

TEST(StrayExceptions, AreDroppedWithoutAHandlerOrWhenTheHandlerThrows) {
    const auto broken = std::make_exception_ptr(std::runtime_error("broken"));
    auto before = SetStrayExceptionHandler({});
    ReportStrayException(broken);
    int asked = 0;
    SetStrayExceptionHandler([&](std::exception_ptr e) {
        ++asked;
        std::rethrow_exception(e);
    });
    ReportStrayException(broken);
    SetStrayExceptionHandler(std::move(before));
    EXPECT_EQ(asked, 1);
}

TEST(Owner, CancelEndsWhatWasBoundSoFarOnly) {
    Owner owner;
    int calls = 0;
    auto old_one = owner.Bind([&](int n) { calls += n; });
    owner.Cancel();
    auto new_one = owner.Bind([&](int n) { calls += n; });
    old_one(1);
    new_one(10);
    EXPECT_EQ(calls, 10);
}

}  // namespace
}  // namespace kq
