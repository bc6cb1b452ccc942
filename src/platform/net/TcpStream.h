// One TCP connection above the calls of a port.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Signal.h>

#include "platform/Socket.h"
#include "platform/net/SocketCalls.h"

namespace kq {

class TcpStream final : public StreamSocket {
 public:
    // Starts connecting; a failure is reported later.
    TcpStream(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop, const std::string& address,
              int port, const std::string& local_address);
    // Takes a socket that was accepted.
    TcpStream(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop,
              SocketCalls::Accepted accepted);
    ~TcpStream() override;

    void SetHandler(std::function<void(SocketEvent)> handler) override;
    IoResult Read(std::span<std::byte> buffer) override;
    IoResult Write(std::span<const std::byte> bytes) override;
    void SetReading(bool on) override;
    void FinishWriting() override;
    void SetKeepAlive(bool on) override;
    std::int32_t LastError() const override { return last_error_; }
    std::string LocalAddress() const override { return PlainAddress(local_.address); }
    int LocalPort() const override { return local_.port; }
    std::string RemoteAddress() const override { return PlainAddress(remote_.address); }
    int RemotePort() const override { return remote_.port; }

 private:
    enum class State { Connecting, Open, Failed };

    // 0, or what went wrong immediately.
    std::int32_t StartConnecting(const std::string& address, int port, const std::string& local_address);
    void Opened(SocketCalls::End remote);
    void Fail(std::int32_t error);
    void AnnounceFailure();
    void UpdateWatch();
    void OnReady(EventLoop::Readiness ready);
    void OnConnectEnded();
    void Call(SocketEvent event);
    void CloseGently();

    std::shared_ptr<SocketCalls> calls_;
    std::shared_ptr<EventLoop> loop_;
    SocketCalls::Socket socket_ = SocketCalls::kNone;
    EventLoop::WatchId watch_ = 0;
    State state_ = State::Connecting;
    std::shared_ptr<std::function<void(SocketEvent)>> handler_;
    bool failure_unreported_ = false;  // of the connection attempt
    bool reading_ = true;
    bool read_to_end_ = false;
    bool wants_to_write_ = false;
    bool finished_writing_ = false;
    std::int32_t last_error_ = 0;
    SocketCalls::End local_, remote_;
    Owner owner_;
};

}  // namespace kq
