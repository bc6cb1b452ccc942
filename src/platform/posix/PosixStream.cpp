// Readiness comes from the loop, which never calls from inside a call of ours. A handler may destroy the
// stream, so nothing of it is touched after a handler was called unless the owner still lives.
#include "platform/posix/PosixStream.h"

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include <kqappsession/Error.h>

#include "platform/posix/PosixAddress.h"

namespace kq {
namespace {

constexpr int kKeepAliveIdle = 60;  // seconds of silence before the first probe
constexpr int kKeepAliveInterval = 15;
constexpr int kKeepAliveProbes = 4;

void SetOption(int socket, int level, int option, int value) {
    // A kernel that lacks an option leaves a connection that works nevertheless.
    static_cast<void>(setsockopt(socket, level, option, &value, sizeof value));
}

IoResult Failure(std::int32_t error) {
    return {IoResult::Kind::Failed, 0, error};
}

bool WouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK;
}

// Closing a socket that holds unread bytes resets the connection, and the peer may lose what was written
// last.
void CloseGently(int socket) {
    ::shutdown(socket, SHUT_WR);
    std::array<char, 16384> rest;
    for (int rounds = 0; rounds < 16; ++rounds) {
        if (::recv(socket, rest.data(), rest.size(), 0) <= 0) break;
    }
    ::close(socket);
}

}  // namespace

PosixStream::PosixStream(std::shared_ptr<EventLoop> loop, const std::string& address, int port,
                         const std::string& local_address)
    : loop_(std::move(loop)) {
    const int error = StartConnecting(address, port, local_address);
    if (error != 0) {
        Fail(error);
        failure_untold_ = true;
    }
}

PosixStream::PosixStream(std::shared_ptr<EventLoop> loop, int accepted)
    : loop_(std::move(loop)), socket_(accepted) {
    Opened();
}

PosixStream::~PosixStream() {
    if (watch_ != 0) loop_->Unwatch(watch_);
    if (socket_ != -1) CloseGently(socket_);
}

int PosixStream::StartConnecting(const std::string& address, int port, const std::string& local_address) {
    if (port < 1 || port > 65535) return EADDRNOTAVAIL;
    const auto remote = ParseAddress(address, port);
    if (!remote) return EINVAL;
    socket_ = NewSocket(remote->Family());
    if (socket_ == -1) return errno;
    if (!local_address.empty()) {
        const auto local = ParseAddress(local_address, 0);
        if (!local || local->Family() != remote->Family()) return EADDRNOTAVAIL;
        if (::bind(socket_, local->Get(), local->length) != 0) return errno;
    }
    if (::connect(socket_, remote->Get(), remote->length) != 0 && errno != EINPROGRESS && errno != EINTR)
        return errno;
    return 0;
}

void PosixStream::Opened() {
    state_ = State::Open;
    SetOption(socket_, IPPROTO_TCP, TCP_NODELAY, 1);
    const PosixAddress local = LocalAddressOf(socket_);
    local_address_ = local.Text();
    local_port_ = local.Port();
    const PosixAddress remote = RemoteAddressOf(socket_);
    remote_address_ = remote.Text();
    remote_port_ = remote.Port();
}

void PosixStream::Fail(int error) {
    state_ = State::Failed;
    last_error_ = WinsockNumber(error);
    UpdateWatch();
}

void PosixStream::AnnounceFailure() {
    loop_->Post(owner_.Bind([this] {
        if (handler_ && std::exchange(failure_untold_, false)) Call(SocketEvent::Failed);
    }));
}

void PosixStream::SetHandler(std::function<void(SocketEvent)> handler) {
    handler_ = handler ? std::make_shared<std::function<void(SocketEvent)>>(std::move(handler)) : nullptr;
    if (failure_untold_) AnnounceFailure();
    UpdateWatch();
}

// The loop is level-triggered: what waits is told as soon as it is wanted.
void PosixStream::UpdateWatch() {
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

void PosixStream::OnReady(EventLoop::Readiness ready) {
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

void PosixStream::OnConnectEnded() {
    int error = 0;
    socklen_t length = sizeof error;
    if (::getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &length) != 0) error = errno;
    if (error != 0) {
        Fail(error);
        Call(SocketEvent::Failed);
        return;
    }
    Opened();
    UpdateWatch();
    Call(SocketEvent::Connected);
}

void PosixStream::Call(SocketEvent event) {
    const auto handler = handler_;  // lives on when it is replaced or the stream goes
    if (handler) (*handler)(event);
}

IoResult PosixStream::Read(std::span<std::byte> buffer) {
    if (state_ == State::Failed) return Failure(last_error_);
    if (state_ == State::Connecting) return Failure(static_cast<std::int32_t>(NetError::NotConnected));
    if (buffer.empty()) return {};
    for (;;) {
        const ssize_t count = ::recv(socket_, buffer.data(), buffer.size(), 0);
        if (count > 0) return {IoResult::Kind::Done, static_cast<std::size_t>(count), 0};
        if (count == 0) {
            read_to_end_ = true;
            UpdateWatch();
            return {IoResult::Kind::Ended, 0, 0};
        }
        if (errno == EINTR) continue;
        if (WouldBlock(errno)) return {};
        Fail(errno);
        return Failure(last_error_);
    }
}

IoResult PosixStream::Write(std::span<const std::byte> bytes) {
    if (state_ == State::Failed) return Failure(last_error_);
    if (state_ == State::Connecting) return Failure(static_cast<std::int32_t>(NetError::NotConnected));
    if (finished_writing_) return Failure(WinsockNumber(ESHUTDOWN));
    if (bytes.empty()) return {IoResult::Kind::Done, 0, 0};
    for (;;) {
        const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count >= 0) return {IoResult::Kind::Done, static_cast<std::size_t>(count), 0};
        if (errno == EINTR) continue;
        if (WouldBlock(errno)) {
            wants_to_write_ = true;
            UpdateWatch();
            return {};
        }
        // What the peer sent before it went can still be read: the failure of a write ends the writing alone.
        last_error_ = WinsockNumber(errno);
        return Failure(last_error_);
    }
}

void PosixStream::SetReading(bool on) {
    reading_ = on;
    UpdateWatch();
}

void PosixStream::FinishWriting() {
    if (state_ != State::Open || std::exchange(finished_writing_, true)) return;
    ::shutdown(socket_, SHUT_WR);
}

void PosixStream::SetKeepAlive(bool on) {
    if (socket_ == -1) return;
    SetOption(socket_, SOL_SOCKET, SO_KEEPALIVE, on ? 1 : 0);
    if (!on) return;
    SetOption(socket_, IPPROTO_TCP, TCP_KEEPIDLE, kKeepAliveIdle);
    SetOption(socket_, IPPROTO_TCP, TCP_KEEPINTVL, kKeepAliveInterval);
    SetOption(socket_, IPPROTO_TCP, TCP_KEEPCNT, kKeepAliveProbes);
}

}  // namespace kq
