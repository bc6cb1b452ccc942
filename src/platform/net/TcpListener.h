// A listening socket above the calls of a port.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Signal.h>

#include "platform/Socket.h"
#include "platform/net/SocketCalls.h"

namespace kq {

class TcpListener final : public ListenSocket {
 public:
    // Takes the listening socket.
    TcpListener(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop,
                SocketCalls::Socket socket);
    ~TcpListener() override;

    void SetHandler(std::function<void()> handler) override;
    std::unique_ptr<StreamSocket> Accept(std::int32_t* error) override;
    std::string LocalAddress() const override { return PlainAddress(local_.address); }
    int LocalPort() const override { return local_.port; }

 private:
    void Pause();
    void UpdateWatch();

    std::shared_ptr<SocketCalls> calls_;
    std::shared_ptr<EventLoop> loop_;
    SocketCalls::Socket socket_;
    SocketCalls::End local_;
    EventLoop::WatchId watch_ = 0;
    EventLoop::TimerId pause_ = 0;
    std::shared_ptr<std::function<void()>> handler_;
    Owner owner_;
};

}  // namespace kq
