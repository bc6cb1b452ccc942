#include "platform/net/TcpListener.h"

#include <utility>

#include <kqappsession/Error.h>

#include "platform/net/TcpStream.h"

namespace kq {
namespace {

constexpr Milliseconds kPauseWithoutRoom(100);

bool NoRoom(std::int32_t error) {
    return error == SocketCalls::kTooManyOpen || error == static_cast<std::int32_t>(NetError::NoBufferSpace);
}

}  // namespace

TcpListener::TcpListener(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop,
                         SocketCalls::Socket socket)
    : calls_(std::move(calls)), loop_(std::move(loop)), socket_(socket), local_(calls_->LocalEnd(socket_)) {}

TcpListener::~TcpListener() {
    loop_->CancelTimer(pause_);
    if (watch_ != 0) loop_->Unwatch(watch_);
    calls_->Close(socket_);
}

void TcpListener::SetHandler(std::function<void()> handler) {
    handler_ = handler ? std::make_shared<std::function<void()>>(std::move(handler)) : nullptr;
    UpdateWatch();
}

std::unique_ptr<StreamSocket> TcpListener::Accept(std::int32_t* error) {
    if (error) *error = 0;
    auto accepted = calls_->Accept(socket_);
    if (accepted.error == 0) return std::make_unique<TcpStream>(calls_, loop_, std::move(accepted));
    if (NoRoom(accepted.error)) {
        if (error) *error = accepted.error;
        Pause();
    }
    return nullptr;  // else there is none, or the one that was queued is disconnected
}

// The queued connection stays ready; without a pause the loop would do nothing else than fail to accept it.
void TcpListener::Pause() {
    if (pause_ != 0) return;
    pause_ = loop_->StartTimer(kPauseWithoutRoom, owner_.Bind([this] {
        pause_ = 0;
        UpdateWatch();
    }));
    UpdateWatch();
}

void TcpListener::UpdateWatch() {
    const EventLoop::Readiness wanted{handler_ && pause_ == 0, false};
    if (watch_ != 0) {
        loop_->ChangeWatch(watch_, wanted);
    } else if (wanted.readable) {
        watch_ = loop_->Watch(socket_, wanted, owner_.Bind([this](EventLoop::Readiness) {
            const auto handler = handler_;  // lives on when it is replaced or the listener is destroyed
            if (handler) (*handler)();
        }));
    }
}

}  // namespace kq
