// Readiness is reported by the loop, which never calls from inside one of our calls. A handler may destroy
// the stream, so after a handler has returned nothing of the stream is used unless the owner still exists.
#include "platform/net/TcpStream.h"

#include <array>
#include <utility>

#include <kqappsession/Error.h>

namespace kq {
namespace {

constexpr auto kNotConnected = static_cast<std::int32_t>(NetError::NotConnected);
constexpr auto kInvalidArgument = static_cast<std::int32_t>(NetError::InvalidArgument);
constexpr auto kNotAvailable = static_cast<std::int32_t>(NetError::AddressNotAvailable);

IoResult Failure(std::int32_t error) {
    return {IoResult::Kind::Failed, 0, error};
}

}  // namespace

TcpStream::TcpStream(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop,
                     const std::string& address, int port, const std::string& local_address)
    : calls_(std::move(calls)), loop_(std::move(loop)) {
    const std::int32_t error = StartConnecting(address, port, local_address);
    if (error != 0) {
        Fail(error);
        failure_unreported_ = true;
    }
}

TcpStream::TcpStream(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop,
                     SocketCalls::Accepted accepted)
    : calls_(std::move(calls)), loop_(std::move(loop)), socket_(accepted.socket) {
    Opened(std::move(accepted.remote));
}

TcpStream::~TcpStream() {
    if (watch_ != 0) loop_->Unwatch(watch_);
    if (socket_ != SocketCalls::kNone) CloseGently();
}

// Closing a socket that holds unread bytes resets the connection, and the peer may lose what was written
// last.
void TcpStream::CloseGently() {
    calls_->FinishSending(socket_);
    std::array<std::byte, 16384> rest;
    for (int rounds = 0; rounds < 16; ++rounds) {
        if (calls_->Receive(socket_, rest).count == 0) break;
    }
    calls_->Close(socket_);
}

std::int32_t TcpStream::StartConnecting(const std::string& address, int port,
                                        const std::string& local_address) {
    if (port < 1 || port > 65535) return kNotAvailable;
    const auto remote = calls_->Parse(address, port);
    if (!remote) return kInvalidArgument;
    const auto opened = calls_->Open(*remote);
    if (opened.error != 0) return opened.error;
    socket_ = opened.socket;
    if (!local_address.empty()) {
        const auto local = calls_->Parse(local_address, 0);
        if (!local || !calls_->SameFamily(*local, *remote)) return kNotAvailable;
        const std::int32_t error = calls_->Bind(socket_, *local);
        if (error != 0) return error;
    }
    return calls_->Connect(socket_, *remote);
}

void TcpStream::Opened(SocketCalls::End remote) {
    state_ = State::Open;
    calls_->SendWithoutDelay(socket_);
    local_ = calls_->LocalEnd(socket_);
    remote_ = std::move(remote);
}

void TcpStream::Fail(std::int32_t error) {
    state_ = State::Failed;
    last_error_ = error;
    UpdateWatch();
}

void TcpStream::AnnounceFailure() {
    loop_->Post(owner_.Bind([this] {
        if (handler_ && std::exchange(failure_unreported_, false)) Call(SocketEvent::Failed);
    }));
}

void TcpStream::SetHandler(std::function<void(SocketEvent)> handler) {
    handler_ = handler ? std::make_shared<std::function<void(SocketEvent)>>(std::move(handler)) : nullptr;
    if (failure_unreported_) AnnounceFailure();
    UpdateWatch();
}

// The loop is level-triggered: what is ready is reported as soon as it is wanted.
void TcpStream::UpdateWatch() {
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

void TcpStream::OnReady(EventLoop::Readiness ready) {
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

void TcpStream::OnConnectEnded() {
    const std::int32_t error = calls_->ConnectError(socket_);
    if (error != 0) {
        Fail(error);
        Call(SocketEvent::Failed);
        return;
    }
    Opened(calls_->RemoteEnd(socket_));
    UpdateWatch();
    Call(SocketEvent::Connected);
}

void TcpStream::Call(SocketEvent event) {
    const auto handler = handler_;  // lives on when it is replaced or the stream is destroyed
    if (handler) (*handler)(event);
}

IoResult TcpStream::Read(std::span<std::byte> buffer) {
    if (state_ == State::Failed) return Failure(last_error_);
    if (state_ == State::Connecting) return Failure(kNotConnected);
    if (buffer.empty()) return {};
    const auto [count, error] = calls_->Receive(socket_, buffer);
    if (error == SocketCalls::kWouldBlock) return {};
    if (error != 0) {
        Fail(error);
        return Failure(error);
    }
    if (count != 0) return {IoResult::Kind::Done, count, 0};
    read_to_end_ = true;
    UpdateWatch();
    return {IoResult::Kind::Ended, 0, 0};
}

IoResult TcpStream::Write(std::span<const std::byte> bytes) {
    if (state_ == State::Failed) return Failure(last_error_);
    if (state_ == State::Connecting) return Failure(kNotConnected);
    if (finished_writing_) return Failure(SocketCalls::kShutDown);
    if (bytes.empty()) return {IoResult::Kind::Done, 0, 0};
    const auto [count, error] = calls_->Send(socket_, bytes);
    if (error == SocketCalls::kWouldBlock) {
        wants_to_write_ = true;
        UpdateWatch();
        return {};
    }
    if (error != 0) {
        // What the peer sent before can still be read: the failure of a write ends the writing alone.
        last_error_ = error;
        return Failure(error);
    }
    return {IoResult::Kind::Done, count, 0};
}

void TcpStream::SetReading(bool on) {
    reading_ = on;
    UpdateWatch();
}

void TcpStream::FinishWriting() {
    if (state_ != State::Open || std::exchange(finished_writing_, true)) return;
    calls_->FinishSending(socket_);
}

void TcpStream::SetKeepAlive(bool on) {
    if (socket_ != SocketCalls::kNone) calls_->SetKeepAlive(socket_, on);
}

}  // namespace kq
