#include "platform/PortTesting.h"

#include <utility>

#include <gtest/gtest.h>

#include "platform/win32/Winsock.h"

namespace kq {
namespace {

// A connection of this process keeps Winsock started, as the objects under test do for theirs.
const WinsockSession kWinsock;

SOCKET ConnectTo(const SocketAddress& address) {
    const SOCKET made = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    EXPECT_EQ(connect(made, Raw(address), LengthOf(address)), 0);
    return made;
}

}  // namespace

SocketPair::SocketPair() {
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    const auto any = ParseAddress("127.0.0.1", 0);
    EXPECT_EQ(bind(listener, Raw(*any), LengthOf(*any)), 0);
    EXPECT_EQ(listen(listener, 1), 0);
    far_ = ConnectTo(LocalAddressOf(listener));
    near_ = accept(listener, nullptr, nullptr);
    closesocket(listener);
    MakeOurs(near_);
    MakeOurs(far_);
    SetOption(far_, IPPROTO_TCP, TCP_NODELAY, 1);
}

SocketPair::~SocketPair() {
    closesocket(near_);
    closesocket(far_);
}

std::string SocketPair::TakeOne() {
    char c = 0;
    return recv(near_, &c, 1, 0) == 1 ? std::string(1, c) : std::string("?");
}

void SocketPair::Send(const std::string& text) {
    EXPECT_EQ(send(far_, text.data(), static_cast<int>(text.size()), 0), static_cast<int>(text.size()));
}

void SocketPair::FinishSending() {
    shutdown(far_, SD_SEND);
}

RudePeer::RudePeer(int port) : socket_(ConnectTo(*ParseAddress("127.0.0.1", port))) {}

RudePeer::~RudePeer() {
    Reset();
}

void RudePeer::Reset() {
    const SOCKET socket = std::exchange(socket_, kNoSocket);
    if (socket == kNoSocket) return;
    const linger at_once{1, 0};
    setsockopt(socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&at_once), sizeof at_once);
    closesocket(socket);
}

}  // namespace kq
