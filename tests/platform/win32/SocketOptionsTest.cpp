// What the system was asked to do for a connection.
#include "platform/SocketTesting.h"
#include "platform/win32/Winsock.h"

namespace kq {
namespace {

// An option of the socket of this process that has the given local port; -1 when there is none.
int OptionOf(const StreamSocket& stream, int level, int option) {
    for (SOCKET socket = 4; socket < 0x4000; socket += 4) {
        const SocketAddress address = LocalAddressOf(socket);
        if (address.length == 0 || PortOf(address) != stream.LocalPort()) continue;
        int value = 0;
        int length = sizeof value;
        return getsockopt(socket, level, option, reinterpret_cast<char*>(&value), &length) == 0 ? value : -1;
    }
    return -1;
}

TEST_F(Sockets, AreProbedInSilenceWhileKeptAlive) {
    Connect();
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 0);
    client_.stream->SetKeepAlive(true);
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 1);
    client_.stream->SetKeepAlive(false);
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 0);
}

TEST_F(Sockets, SendSmallBlocksAtOnce) {
    Connect();
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_NODELAY), 1);
}

}  // namespace
}  // namespace kq
