#include <csignal>
#include <initializer_list>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Platform.h>

#include "tools/program/StopSignals.h"

namespace kq {
namespace {

bool Readable(int descriptor) {
    pollfd ready{descriptor, POLLIN, 0};
    return poll(&ready, 1, 0) == 1;
}

// Lets the signals through, which an earlier test may have held back. Returns the former mask.
sigset_t Unblocked(std::initializer_list<int> signals) {
    sigset_t set;
    sigset_t former;
    sigemptyset(&set);
    for (const int signal : signals)
        sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, &former);
    return former;
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

TEST(StopSignals, LeaveIgnoredWhatTheProgramWasStartedToIgnore) {
    std::signal(SIGHUP, SIG_IGN);
    const sigset_t former = Unblocked({SIGHUP});
    StopSignals signals;
    kill(getpid(), SIGHUP);
    EXPECT_FALSE(Readable(signals.Descriptor()));
    EXPECT_EQ(0, signals.Received());
    std::signal(SIGHUP, SIG_DFL);
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

TEST(StopSignals, ReachTheLoop) {
    StopSignals signals;
    const auto platform = MakePlatform();
    int calls = 0;
    signals.Watch(*platform->Loop(), [&] { ++calls; });
    kill(getpid(), SIGTERM);
    EXPECT_TRUE(platform->Loop()->RunUntil([&] { return calls == 1; },
                                           platform->Loop()->Now() + std::chrono::seconds(10)));
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
