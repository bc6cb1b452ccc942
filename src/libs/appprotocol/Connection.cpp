#include "libs/appprotocol/Connection.h"

#include <utility>

#include <kqappsession/Error.h>

#include "base/ErrorSentences.h"
#include "libs/appprotocol/Linger.h"
#include "libs/appprotocol/ReadBuffer.h"

namespace kq {
namespace {

// A fast peer gets this many buffers a turn, then it is the turn of others.
constexpr int kReadsPerTurn = 4;
// What may still be there to read when writing has failed: more than any receive buffer holds.
constexpr int kLastReads = 256;
// From here on data is written without waiting for company, and from the caller's own memory.
constexpr std::size_t kLarge = 32U << 10;

Ending Failure(NetError number, std::string sentence) {
    return {static_cast<std::int32_t>(number), std::move(sentence), true};
}

Ending Failure(ErrorSentence sentence) {
    return {NumberOf(sentence), TextOf(sentence), true};
}

Ending Failure(std::int32_t number) {
    return {number, NetErrorText(number), true};
}

}  // namespace

Connection::Connection(EventLoop& loop, std::unique_ptr<StreamSocket> socket, State state, FrameLimits limits,
                       Sink& sink)
    : loop_(loop), sink_(sink), state_(state), reader_(limits), socket_(std::move(socket)) {
    socket_->SetHandler([this](SocketEvent event) { OnSocket(event); });
}

Connection::~Connection() {
    CancelTimes();
}

void Connection::LimitFirstFrame(Milliseconds time) {
    CancelFirstFrame();
    first_frame_ = loop_.StartTimer(time, owner_.Bind([this, time] {
        first_frame_ = 0;
        sink_.OnOver(Failure(NetError::TimedOut, "No complete block arrived within " +
                                                     std::to_string(time.count()) + " ms of connecting"));
    }));
}

void Connection::CancelFirstFrame() {
    if (first_frame_ != 0) loop_.CancelTimer(std::exchange(first_frame_, 0));
}

void Connection::SetDeadline(Milliseconds time) {
    if (deadline_ != 0) loop_.CancelTimer(std::exchange(deadline_, 0));
    if (time.count() <= 0) return;
    deadline_ = loop_.StartTimer(time, owner_.Bind([this] {
        deadline_ = 0;
        sink_.OnOver(Failure(NetError::TimedOut, "The connection was not admitted in time"));
    }));
}

void Connection::CancelTimes() {
    CancelFirstFrame();
    SetDeadline(Milliseconds(0));
}

void Connection::SetReading(bool on) {
    if (reading_ == on) return;
    reading_ = on;
    socket_->SetReading(on);
}

void Connection::OnSocket(SocketEvent event) {
    switch (event) {
        case SocketEvent::Connected:
            state_ = State::Open;
            sink_.OnConnected();
            break;
        case SocketEvent::Failed:
            if (state_ == State::Connecting) {
                sink_.OnConnectFailed(socket_->LastError());
            } else {
                sink_.OnOver(Failure(socket_->LastError()));
            }
            break;
        case SocketEvent::Readable:
            Read(kReadsPerTurn);
            break;
        case SocketEvent::Writable:
            blocked_ = false;
            FlushAndTell();
            break;
    }
}

void Connection::Read(int reads) {
    while (reads-- > 0 && ReadOnce()) {
    }
    if (ending_) {
        sink_.OnOver(*std::exchange(ending_, std::nullopt));
    } else {
        sink_.OnRead();
    }
}

bool Connection::ReadOnce() {
    const auto buffer = SharedReadBuffer();
    const IoResult result = socket_->Read(buffer);
    switch (result.kind) {
        case IoResult::Kind::Done:
            TakeBlocks({reinterpret_cast<const char*>(buffer.data()), result.count});
            // While blocks are held back the rest waits in the socket; after a failed write it is now or
            // never.
            return !ending_ && (write_failure_ || (reading_ && result.count == buffer.size()));
        case IoResult::Kind::WouldBlock:
            return false;
        case IoResult::Kind::Ended:
            EndOfBytes();
            return false;
        case IoResult::Kind::Failed:
            ending_ = Failure(result.error);
            return false;
    }
    return false;
}

void Connection::TakeBlocks(std::string_view bytes) {
    while (auto block = reader_.Take(bytes)) {
        CancelFirstFrame();
        if (std::exchange(told_, 0) > 0) {
            completion_ = BlockProgress{block->tag, block->data_type, block->data.size(), block->data.size()};
        }
        sink_.OnBlock(std::move(*block));
    }
    if (const auto& failure = reader_.Failure()) ending_ = Ending{failure->number, failure->sentence, true};
}

void Connection::EndOfBytes() {
    peer_ended_ = true;
    if (reader_.InsideFrame()) {
        ending_ = Failure(ErrorSentence::EndedInsideBlock);
    } else {
        ending_ = Failure(ErrorSentence::EndedByPeer);
        ending_->failure = false;
    }
}

std::optional<BlockProgress> Connection::TakeProgress() {
    if (!reader_.InsideData()) return std::nullopt;
    const Block& block = reader_.Arriving();
    if (block.data.size() <= told_) return std::nullopt;
    told_ = block.data.size();
    return BlockProgress{block.tag, block.data_type, told_, reader_.ArrivingSize()};
}

bool Connection::Send(DataType type, std::string_view tag, std::string_view data, std::size_t most) {
    if (write_failure_) return true;  // the end is on its way
    const FrameHeader header = EncodeHeader(type, tag.size(), data.size());
    queue_.Append({header.data(), header.size()});
    queue_.Append(tag);
    if (data.size() < kLarge) queue_.Append(std::exchange(data, {}));
    if (!data.empty() || queue_.Size() >= kLarge) Flush();
    if (!data.empty() && queue_.Empty() && !blocked_ && !write_failure_) {
        std::int32_t error = 0;
        const auto state = WriteQueue::Write(*socket_, data, error);
        NoteWriteState(state, error);
    }
    if (write_failure_) return true;
    if (queue_.Size() > most || data.size() > most - queue_.Size()) return false;
    queue_.Append(data);
    PostFlush();
    return true;
}

void Connection::PostFlush() {
    if (flush_posted_ || blocked_ || queue_.Empty()) return;
    flush_posted_ = true;
    loop_.Post(owner_.Bind([this] {
        flush_posted_ = false;
        FlushAndTell();
    }));
}

void Connection::FlushAndTell() {
    Flush();
    if (queue_.Empty()) sink_.OnWritten();
}

void Connection::Flush() {
    if (blocked_ || write_failure_) return;
    std::int32_t error = 0;
    const auto state = queue_.WriteTo(*socket_, error);
    NoteWriteState(state, error);
}

void Connection::NoteWriteState(WriteQueue::State state, std::int32_t error) {
    blocked_ = state == WriteQueue::State::Blocked;
    if (state != WriteQueue::State::Failed) return;
    write_failure_ = Failure(error);
    loop_.Post(owner_.Bind([this] { OnWriteFailed(); }));
}

// The peer may have sent its reasons before it broke the connection: what is there is read first, and how
// that ends says more than the failed write.
void Connection::OnWriteFailed() {
    int reads = kLastReads;
    while (reads-- > 0 && ReadOnce()) {
    }
    sink_.OnOver(ending_ ? *std::exchange(ending_, std::nullopt) : *write_failure_);
}

void Connection::Leave() {
    owner_.Cancel();
    CancelTimes();
    Linger::Start(loop_, std::move(socket_), std::move(queue_), peer_ended_);
}

}  // namespace kq
