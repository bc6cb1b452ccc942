// What the system was asked to do for a connection, and what it says about one.
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/SocketTesting.h"

namespace kq {
namespace {

// An option of the socket of this process that has the given local port; -1 when there is none.
int OptionOf(const StreamSocket& stream, int level, int option) {
    for (int socket = 0; socket < 1024; ++socket) {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) continue;
        if (address.sin_family != AF_INET || ntohs(address.sin_port) != stream.LocalPort()) continue;
        int value = -1;
        length = sizeof value;
        return ::getsockopt(socket, level, option, &value, &length) == 0 ? value : -1;
    }
    return -1;
}

TEST_F(Sockets, AreProbedAfterAMinuteOfSilenceWhileKeptAlive) {
    Connect();
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 0);
    client_.stream->SetKeepAlive(true);
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_KEEPIDLE), 60);
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_KEEPINTVL), 15);
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_KEEPCNT), 4);
    client_.stream->SetKeepAlive(false);
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 0);
}

TEST_F(Sockets, KnowThePeerThatResetTheConnectionBeforeItWasAccepted) {
    listener_ = network_->Listen("127.0.0.1", 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(listener_->LocalPort()));
    const int peer = ::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_EQ(::connect(peer, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const linger reset{1, 0};
    ::setsockopt(peer, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    ::close(peer);
    EXPECT_EQ(listener_->Accept(nullptr)->RemoteAddress(), "127.0.0.1");
}

TEST_F(Sockets, SendSmallBlocksAtOnce) {
    Connect();
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_NODELAY), 1);
}

}  // namespace
}  // namespace kq
