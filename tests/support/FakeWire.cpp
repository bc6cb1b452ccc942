// Two sides, two byte queues. A Readable task re-posts itself while there is something to read, which makes
// the events level-triggered.
#include "support/FakeWire.h"

#include <algorithm>
#include <cstring>

#include <kqappsession/Error.h>

namespace kq {
namespace {

constexpr auto kReset = static_cast<std::int32_t>(NetError::ConnectionReset);
constexpr auto kNotConnected = static_cast<std::int32_t>(NetError::NotConnected);

IoResult Failure(std::int32_t error) {
    return {IoResult::Kind::Failed, 0, error};
}

}  // namespace

void FakeWire::Join(const std::shared_ptr<FakeWire>& caller, const std::shared_ptr<FakeWire>& called) {
    caller->peer_ = called;
    called->peer_ = caller;
    caller->state_ = State::Open;
    called->state_ = State::Open;
    caller->was_open_ = true;
    called->was_open_ = true;
}

void FakeWire::FailToConnect(std::int32_t error) {
    state_ = State::Failed;
    last_error = error;
    Announce(SocketEvent::Failed);
}

void FakeWire::Reset() {
    if (state_ == State::Closed || state_ == State::Failed) return;
    const bool was_connecting = state_ == State::Connecting;
    state_ = State::Failed;
    last_error = kReset;
    incoming_.clear();
    if (was_connecting) {
        Announce(SocketEvent::Failed);
    } else {
        PostReadable();
        PostWritable();
    }
}

void FakeWire::Close() {
    const bool was_open = state_ == State::Open;
    state_ = State::Closed;
    handler_.reset();
    const auto peer = peer_.lock();
    if (!was_open || !peer) return;
    peer->ended_ = true;
    peer->PostReadable();
    peer->PostWritable();
}

void FakeWire::SetHandler(Handler handler) {
    handler_ = handler ? std::make_shared<Handler>(std::move(handler)) : nullptr;
    if (announcing_) PostAnnouncement();
    PostReadable();
}

void FakeWire::Announce(SocketEvent event) {
    announcing_ = true;
    announcement_ = event;
    PostAnnouncement();
}

void FakeWire::PostAnnouncement() {
    loop_->Post([weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self || !self->announcing_ || !self->handler_) return;
        self->announcing_ = false;
        self->Call(self->announcement_);
        self->PostReadable();
    });
}

bool FakeWire::IsReadable() const {
    if (announcing_) return false;
    if (state_ == State::Failed) return was_open_;
    return state_ == State::Open && (!incoming_.empty() || (ended_ && !end_read_));
}

void FakeWire::PostReadable() {
    if (readable_posted_ || !handler_ || !reading_ || !IsReadable()) return;
    readable_posted_ = true;
    loop_->Post([weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        self->readable_posted_ = false;
        if (!self->handler_ || !self->reading_ || !self->IsReadable()) return;
        self->budget_ = self->split;
        self->Call(SocketEvent::Readable);
        // A failure that was read is told once; everything else as long as it waits.
        if (self->state_ == State::Open) self->PostReadable();
    });
}

void FakeWire::PostWritable() {
    if (!wants_to_write_) return;
    wants_to_write_ = false;
    loop_->Post([weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->Call(SocketEvent::Writable);
    });
}

void FakeWire::Call(SocketEvent event) {
    const auto handler = handler_;  // lives on when it is replaced or its stream goes
    if (handler && *handler) (*handler)(event);
}

IoResult FakeWire::Read(std::span<std::byte> buffer) {
    if (state_ == State::Failed) return Failure(last_error);
    if (state_ != State::Open) return Failure(kNotConnected);
    std::size_t count = std::min(buffer.size(), incoming_.size());
    if (split != 0) count = std::min(count, budget_);
    if (count > 0) {
        std::memcpy(buffer.data(), incoming_.data(), count);
        incoming_.erase(0, count);
        budget_ -= std::min(budget_, count);
        if (const auto peer = peer_.lock()) peer->PostWritable();
        return {IoResult::Kind::Done, count, 0};
    }
    if (incoming_.empty() && ended_) {
        end_read_ = true;
        return {IoResult::Kind::Ended, 0, 0};
    }
    return {};
}

IoResult FakeWire::Write(std::span<const std::byte> bytes) {
    if (state_ == State::Failed) return Failure(last_error);
    if (state_ != State::Open || finished_) return Failure(kNotConnected);
    const auto peer = peer_.lock();
    if (!peer || peer->state_ != State::Open) {
        if (end_read_) {
            last_error = kReset;
            return Failure(kReset);
        }
        return {IoResult::Kind::Done, bytes.size(), 0};
    }
    const std::size_t room = pipe_size - std::min(pipe_size, peer->incoming_.size());
    const std::size_t count = std::min(room, bytes.size());
    if (count == 0 && !bytes.empty()) {
        wants_to_write_ = true;
        return {};
    }
    peer->incoming_.append(reinterpret_cast<const char*>(bytes.data()), count);
    peer->PostReadable();
    return {IoResult::Kind::Done, count, 0};
}

void FakeWire::SetReading(bool on) {
    reading_ = on;
    PostReadable();
}

void FakeWire::FinishWriting() {
    if (state_ != State::Open || finished_) return;
    finished_ = true;
    if (const auto peer = peer_.lock()) {
        peer->ended_ = true;
        peer->PostReadable();
    }
}

}  // namespace kq
