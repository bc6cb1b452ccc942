#include "platform/PortTesting.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>

namespace kq {

SocketPair::SocketPair() {
    int sockets[2] = {-1, -1};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, sockets), 0);
    near_ = sockets[0];
    far_ = sockets[1];
}

SocketPair::~SocketPair() {
    ::close(near_);
    ::close(far_);
}

std::string SocketPair::TakeOne() {
    char c = 0;
    return ::recv(near_, &c, 1, 0) == 1 ? std::string(1, c) : std::string("?");
}

void SocketPair::Send(const std::string& text) {
    EXPECT_EQ(::send(far_, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
}

void SocketPair::FinishSending() {
    ::shutdown(far_, SHUT_WR);
}

RudePeer::RudePeer(int port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
}

RudePeer::~RudePeer() {
    Reset();
}

void RudePeer::Reset() {
    const int socket = std::exchange(socket_, kNoSocket);
    if (socket == kNoSocket) return;
    const linger at_once{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    ::close(socket);
}

}  // namespace kq
