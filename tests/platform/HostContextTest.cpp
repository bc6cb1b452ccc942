// The loop on a context that belongs to the host, which runs it, stops it and posts to it as it likes.
#include <string>

#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <gtest/gtest.h>

#include <kqappsession/AsioEventLoop.h>

#include "platform/Patience.h"

namespace kq {
namespace {

class HostContext : public testing::TestWithParam<int> {
 protected:
    asio::io_context context_{GetParam()};
    std::shared_ptr<EventLoop> loop_ = MakeAsioEventLoop(context_);
    std::string heard_;
};

TEST_P(HostContext, RunsTheLoopsTasksAndReturnsWhenThereIsNothingLeft) {
    loop_->Post([&] { heard_ += "task "; });
    loop_->StartTimer(Milliseconds(1), [&] { heard_ += "timer"; });
    context_.run();
    EXPECT_EQ(heard_, "task timer");
}

TEST_P(HostContext, IsNotLeftStoppedByAWait) {
    EXPECT_FALSE(loop_->RunUntil([] { return false; }, loop_->Now() + Milliseconds(1)));
    asio::post(context_, [&] { heard_ = "ran"; });
    context_.run();
    EXPECT_EQ(heard_, "ran");
}

TEST_P(HostContext, CanBeWaitedOnAfterItRanOut) {
    context_.run();
    ASSERT_TRUE(context_.stopped());
    loop_->Post([&] { heard_ = "ran"; });
    EXPECT_TRUE(Await(*loop_, [&] { return heard_ == "ran"; }));
}

TEST_P(HostContext, ServesTheHostsHandlersDuringAWait) {
    asio::post(context_, [&] { heard_ = "host"; });
    EXPECT_TRUE(Await(*loop_, [&] { return heard_ == "host"; }));
}

TEST_P(HostContext, LetsAHostsHandlerWaitForWhatItHasPosted) {
    bool held = false;
    asio::post(context_, [&] {
        asio::post(context_, [&] { heard_ += "host "; });
        loop_->Post([&] { heard_ += "task"; });
        held = Await(*loop_, [&] { return heard_ == "host task"; });
    });
    context_.run();
    EXPECT_TRUE(held);
}

TEST_P(HostContext, EndsAWaitWhenTheHostStopsIt) {
    bool held = true;
    asio::post(context_, [&] {
        asio::post(context_, [&] { context_.stop(); });
        held = loop_->RunUntil([] { return false; }, loop_->Now() + kPatience);
    });
    context_.run();
    EXPECT_FALSE(held);
    EXPECT_TRUE(context_.stopped());
}

TEST_P(HostContext, OutlivesTheLoop) {
    loop_->Post([&] { heard_ = "never"; });
    loop_.reset();
    context_.run();
    EXPECT_EQ(heard_, "");
}

// With a hint of 1 asio keeps what a handler posts to itself until that handler returns.
INSTANTIATE_TEST_SUITE_P(WithAnyHint, HostContext, testing::Values(ASIO_CONCURRENCY_HINT_SAFE, 1));

}  // namespace
}  // namespace kq
