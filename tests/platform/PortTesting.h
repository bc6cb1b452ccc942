// What the tests that every port must pass need of the system itself. Each port's folder here implements it.
#pragma once

#include <string>

#include <kqappsession/EventLoop.h>

namespace kq {

// Two non-blocking sockets that are connected with each other: a near one, to be watched, and a far one.
class SocketPair {
 public:
    SocketPair();
    SocketPair(const SocketPair&) = delete;
    SocketPair& operator=(const SocketPair&) = delete;
    ~SocketPair();

    EventLoop::NativeSocket Near() const { return near_; }
    EventLoop::NativeSocket Far() const { return far_; }
    std::string TakeOne();  // one byte that has arrived at the near one, "?" when there is none
    void Send(const std::string& text);
    void FinishSending();

 private:
    EventLoop::NativeSocket near_, far_;
};

inline constexpr auto kNoSocket = static_cast<EventLoop::NativeSocket>(-1);

// A peer on 127.0.0.1 that ends its connection by a reset.
class RudePeer {
 public:
    explicit RudePeer(int port);
    RudePeer(const RudePeer&) = delete;
    RudePeer& operator=(const RudePeer&) = delete;
    ~RudePeer();
    void Reset();

 private:
    EventLoop::NativeSocket socket_;
};

}  // namespace kq
