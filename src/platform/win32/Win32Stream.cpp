// Readiness comes from the loop, which never calls from inside a call of ours. A handler may destroy the
// stream, so nothing of it is touched after a handler was called unless the owner still lives.
#include "platform/win32/Win32Stream.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include <kqappsession/Error.h>

namespace kq {
namespace {

constexpr ULONG kKeepAliveIdle = 60'000;  // milliseconds of silence before the first probe
constexpr ULONG kKeepAliveInterval = 15'000;

IoResult Failure(std::int32_t error) {
    return {IoResult::Kind::Failed, 0, error};
}

int Length(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

// Closing a socket that holds unread bytes resets the connection, and the peer may lose what was written
// last.
void CloseGently(SOCKET socket) {
    shutdown(socket, SD_SEND);
    std::array<char, 16384> rest;
    for (int rounds = 0; rounds < 16; ++rounds) {
        if (recv(socket, rest.data(), Length(rest.size()), 0) <= 0) break;
    }
    closesocket(socket);
}

}  // namespace

Win32Stream::Win32Stream(std::shared_ptr<EventLoop> loop, const std::string& address, int port,
                         const std::string& local_address)
    : loop_(std::move(loop)) {
    const int error = StartConnecting(address, port, local_address);
    if (error != 0) {
        Fail(error);
        failure_untold_ = true;
    }
}

Win32Stream::Win32Stream(std::shared_ptr<EventLoop> loop, SOCKET accepted)
    : loop_(std::move(loop)), socket_(accepted) {
    Opened();
}

Win32Stream::~Win32Stream() {
    if (watch_ != 0) loop_->Unwatch(watch_);
    if (socket_ != INVALID_SOCKET) CloseGently(socket_);
}

int Win32Stream::StartConnecting(const std::string& address, int port, const std::string& local_address) {
    if (port < 1 || port > 65535) return WSAEADDRNOTAVAIL;
    const auto remote = ParseAddress(address, port);
    if (!remote) return WSAEINVAL;
    socket_ = NewSocket(remote->Family());
    if (socket_ == INVALID_SOCKET) return WSAGetLastError();
    if (!local_address.empty()) {
        const auto local = ParseAddress(local_address, 0);
        if (!local || local->Family() != remote->Family()) return WSAEADDRNOTAVAIL;
        if (bind(socket_, local->Get(), local->length) != 0) return WSAGetLastError();
    }
    if (connect(socket_, remote->Get(), remote->length) == 0) return 0;
    const int error = WSAGetLastError();
    return error == WSAEWOULDBLOCK || error == WSAEINPROGRESS ? 0 : error;
}

void Win32Stream::Opened() {
    state_ = State::Open;
    SetOption(socket_, IPPROTO_TCP, TCP_NODELAY, 1);
    const WinsockAddress local = LocalAddressOf(socket_);
    local_address_ = local.Text();
    local_port_ = local.Port();
    const WinsockAddress remote = RemoteAddressOf(socket_);
    remote_address_ = remote.Text();
    remote_port_ = remote.Port();
}

void Win32Stream::Fail(int error) {
    state_ = State::Failed;
    last_error_ = error;
    UpdateWatch();
}

void Win32Stream::AnnounceFailure() {
    loop_->Post(owner_.Bind([this] {
        if (handler_ && std::exchange(failure_untold_, false)) Call(SocketEvent::Failed);
    }));
}

void Win32Stream::SetHandler(std::function<void(SocketEvent)> handler) {
    handler_ = handler ? std::make_shared<std::function<void(SocketEvent)>>(std::move(handler)) : nullptr;
    if (failure_untold_) AnnounceFailure();
    UpdateWatch();
}

// The loop is level-triggered: what waits is told as soon as it is wanted.
void Win32Stream::UpdateWatch() {
    EventLoop::Readiness wanted;
    if (handler_ && state_ == State::Connecting) wanted.writable = true;
    if (handler_ && state_ == State::Open) {
        wanted.readable = reading_ && !read_to_end_;
        wanted.writable = wants_to_write_;
    }
    if (watch_ != 0) {
        loop_->ChangeWatch(watch_, wanted);
    } else if (wanted.readable || wanted.writable) {
        watch_ = loop_->Watch(socket_, wanted,
                              owner_.Bind([this](EventLoop::Readiness ready) { OnReady(ready); }));
    }
}

void Win32Stream::OnReady(EventLoop::Readiness ready) {
    if (state_ == State::Connecting) {
        if (ready.writable) OnConnectEnded();
        return;
    }
    const auto life = owner_.Life();
    if (ready.readable && reading_ && !read_to_end_) Call(SocketEvent::Readable);
    if (life.expired() || !ready.writable || !std::exchange(wants_to_write_, false)) return;
    UpdateWatch();
    Call(SocketEvent::Writable);
}

void Win32Stream::OnConnectEnded() {
    int error = 0;
    int length = sizeof error;
    if (getsockopt(socket_, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) != 0)
        error = WSAGetLastError();
    if (error != 0) {
        Fail(error);
        Call(SocketEvent::Failed);
        return;
    }
    Opened();
    UpdateWatch();
    Call(SocketEvent::Connected);
}

void Win32Stream::Call(SocketEvent event) {
    const auto handler = handler_;  // lives on when it is replaced or the stream goes
    if (handler) (*handler)(event);
}

IoResult Win32Stream::Read(std::span<std::byte> buffer) {
    if (state_ == State::Failed) return Failure(last_error_);
    if (state_ == State::Connecting) return Failure(WSAENOTCONN);
    if (buffer.empty()) return {};
    const int count = recv(socket_, reinterpret_cast<char*>(buffer.data()), Length(buffer.size()), 0);
    if (count > 0) return {IoResult::Kind::Done, static_cast<std::size_t>(count), 0};
    if (count == 0) {
        read_to_end_ = true;
        UpdateWatch();
        return {IoResult::Kind::Ended, 0, 0};
    }
    const int error = WSAGetLastError();
    if (error == WSAEWOULDBLOCK) return {};
    Fail(error);
    return Failure(last_error_);
}

IoResult Win32Stream::Write(std::span<const std::byte> bytes) {
    if (state_ == State::Failed) return Failure(last_error_);
    if (state_ == State::Connecting) return Failure(WSAENOTCONN);
    if (finished_writing_) return Failure(WSAESHUTDOWN);
    if (bytes.empty()) return {IoResult::Kind::Done, 0, 0};
    const int count = send(socket_, reinterpret_cast<const char*>(bytes.data()), Length(bytes.size()), 0);
    if (count >= 0) return {IoResult::Kind::Done, static_cast<std::size_t>(count), 0};
    const int error = WSAGetLastError();
    if (error == WSAEWOULDBLOCK) {
        wants_to_write_ = true;
        UpdateWatch();
        return {};
    }
    // What the peer sent before it went can still be read: the failure of a write ends the writing alone.
    last_error_ = error;
    return Failure(last_error_);
}

void Win32Stream::SetReading(bool on) {
    reading_ = on;
    UpdateWatch();
}

void Win32Stream::FinishWriting() {
    if (state_ != State::Open || std::exchange(finished_writing_, true)) return;
    shutdown(socket_, SD_SEND);
}

void Win32Stream::SetKeepAlive(bool on) {
    if (socket_ == INVALID_SOCKET) return;
    tcp_keepalive settings{on ? 1UL : 0UL, kKeepAliveIdle, kKeepAliveInterval};
    DWORD unused = 0;
    if (WSAIoctl(socket_, SIO_KEEPALIVE_VALS, &settings, sizeof settings, nullptr, 0, &unused, nullptr,
                 nullptr) != 0)
        SetOption(socket_, SOL_SOCKET, SO_KEEPALIVE, on ? 1 : 0);
}

}  // namespace kq
