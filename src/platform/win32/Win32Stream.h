// One TCP connection on a non-blocking socket.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <kqappsession/EventLoop.h>

#include "platform/Socket.h"
#include "platform/win32/Winsock.h"

namespace kq {

class Win32Stream final : public StreamSocket {
 public:
    // Starts connecting; a failure is told later.
    Win32Stream(std::shared_ptr<EventLoop> loop, const std::string& address, int port,
                const std::string& local_address);
    // Takes an accepted socket.
    Win32Stream(std::shared_ptr<EventLoop> loop, SOCKET accepted);
    ~Win32Stream() override;

    void SetHandler(std::function<void(SocketEvent)> handler) override;
    IoResult Read(std::span<std::byte> buffer) override;
    IoResult Write(std::span<const std::byte> bytes) override;
    void SetReading(bool on) override;
    void FinishWriting() override;
    void SetKeepAlive(bool on) override;
    std::int32_t LastError() const override { return last_error_; }
    std::string LocalAddress() const override { return local_address_; }
    int LocalPort() const override { return local_port_; }
    std::string RemoteAddress() const override { return remote_address_; }
    int RemotePort() const override { return remote_port_; }

 private:
    enum class State { Connecting, Open, Failed };

    // 0, or what went wrong at once.
    int StartConnecting(const std::string& address, int port, const std::string& local_address);
    void Opened();
    void Fail(int error);
    void AnnounceFailure();
    void UpdateWatch();
    void OnReady(EventLoop::Readiness ready);
    void OnConnectEnded();
    void Call(SocketEvent event);

    WinsockSession winsock_;
    std::shared_ptr<EventLoop> loop_;
    SOCKET socket_ = INVALID_SOCKET;
    EventLoop::WatchId watch_ = 0;
    State state_ = State::Connecting;
    std::shared_ptr<std::function<void(SocketEvent)>> handler_;
    bool failure_untold_ = false;  // the connection attempt failed and nobody has heard it
    bool reading_ = true;
    bool read_to_end_ = false;
    bool wants_to_write_ = false;
    bool finished_writing_ = false;
    std::int32_t last_error_ = 0;
    std::string local_address_, remote_address_;
    int local_port_ = 0, remote_port_ = 0;
    Owner owner_;
};

}  // namespace kq
