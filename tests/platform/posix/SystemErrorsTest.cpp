// How a connection takes what the system itself refuses: a reset by its number, no more file handles.
#include <optional>
#include <sys/resource.h>

#include "platform/PortTesting.h"
#include "platform/SocketTesting.h"

namespace kq {
namespace {

TEST_F(Sockets, TellAResetByItsNumber) {
    listener_ = network_->Listen("127.0.0.1", 0);
    listener_->SetHandler([this] { server_.Take(listener_->Accept(nullptr)); });
    RudePeer peer(listener_->LocalPort());
    ASSERT_TRUE(Wait([&] { return server_.stream != nullptr; }));
    peer.Reset();
    EXPECT_TRUE(Wait([&] { return server_.failed; }));
    EXPECT_EQ(server_.error, 10054);
}

// Takes all file handles that this process may have, and gives them back.
class NoHandlesLeft {
 public:
    NoHandlesLeft() {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        rlimit few = before_;
        few.rlim_cur = 0;
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    NoHandlesLeft(const NoHandlesLeft&) = delete;
    NoHandlesLeft& operator=(const NoHandlesLeft&) = delete;
    ~NoHandlesLeft() { ::setrlimit(RLIMIT_NOFILE, &before_); }

 private:
    rlimit before_{};
};

// The sanitizer needs handles to judge an object of a kind that it has not seen before, and takes it for
// broken when there are none: every kind that a shortage meets is shown to it first.
void ShowTimersAndWatches(EventLoop& loop, Network& network) {
    bool ticked = false;
    loop.CancelTimer(loop.StartTimer(Milliseconds(1), [] {}));
    loop.StartTimer(Milliseconds(1), [&] { ticked = true; });
    const auto listener = network.Listen("127.0.0.1", 0);
    std::unique_ptr<StreamSocket> accepted;
    listener->SetHandler([&] {
        std::int32_t error = 0;
        accepted = listener->Accept(&error);
    });
    const auto client = network.Connect("127.0.0.1", listener->LocalPort(), "");
    client->SetHandler([](SocketEvent) {});
    loop.RunUntil([&] { return ticked && accepted; }, loop.Now() + Milliseconds(5000));
    loop.Post([] {});
    loop.ProcessPending();
}

TEST_F(Sockets, PauseAcceptingWithoutHandlesAndGoOnByThemselves) {
    ShowTimersAndWatches(*loop_, *network_);
    listener_ = network_->Listen("127.0.0.1", 0);
    client_.Take(network_->Connect("127.0.0.1", listener_->LocalPort(), ""));
    ASSERT_TRUE(Wait([&] { return client_.connected; }));
    int asked = 0;
    std::int32_t first_error = 0;
    std::optional<NoHandlesLeft> shortage(std::in_place);
    listener_->SetHandler([&] {
        std::int32_t error = 0;
        auto stream = listener_->Accept(&error);
        if (stream) server_.Take(std::move(stream));
        if (++asked == 1) first_error = error;
        loop_->Post([&] { shortage.reset(); });
    });
    EXPECT_TRUE(Wait([&] { return server_.stream != nullptr; }));
    EXPECT_EQ(first_error, 10024);
    EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace kq
