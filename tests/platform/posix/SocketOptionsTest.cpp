// What the system was asked to do for a connection.
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

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

TEST_F(Sockets, SendSmallBlocksAtOnce) {
    Connect();
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_NODELAY), 1);
}

}  // namespace
}  // namespace kq
