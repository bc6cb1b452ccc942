#include <csignal>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Platform.h>

#include "tools/StopSignals.h"

namespace kq {
namespace {

bool Readable(int descriptor) {
    pollfd ready{descriptor, POLLIN, 0};
    return poll(&ready, 1, 0) == 1;
}

TEST(StopSignals, HaveReceivedNothingAtFirst) {
    StopSignals signals;
    EXPECT_FALSE(Readable(signals.Descriptor()));
    EXPECT_EQ(0, signals.Received());
}

TEST(StopSignals, EachOfTheThreeIsTakenInsteadOfEndingTheProgram) {
    StopSignals signals;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        kill(getpid(), signal);
        EXPECT_TRUE(Readable(signals.Descriptor())) << signal;
        EXPECT_EQ(signal, signals.Received());
    }
}

TEST(StopSignals, ReachTheLoop) {
    StopSignals signals;
    const auto platform = MakePlatform();
    int calls = 0;
    signals.Watch(*platform->loop, [&] { ++calls; });
    kill(getpid(), SIGTERM);
    EXPECT_TRUE(platform->loop->RunUntil([&] { return calls == 1; },
                                         platform->loop->Now() + std::chrono::seconds(10)));
    EXPECT_EQ(SIGTERM, signals.Received());
}

TEST(StopSignals, ABrokenPipeIsAFailedWrite) {
    StopSignals signals;
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    close(ends[0]);
    EXPECT_EQ(-1, write(ends[1], "x", 1));
    close(ends[1]);
}

}  // namespace
}  // namespace kq
