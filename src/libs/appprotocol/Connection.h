// One connection from its first byte to its end: bytes to blocks, blocks to bytes, and the limits. The object
// above it (the Sink) keeps the blocks and decides when the program gets them.
//
// No code of the program runs while a Connection works. Its calls of OnConnected, OnRead, OnWritten and
// OnOver may lead to code that destroys it, so each is the last thing that it does.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <kqappsession/APClient.h>
#include <kqappsession/Signal.h>

#include "libs/appprotocol/Frame.h"
#include "libs/appprotocol/WriteQueue.h"
#include "platform/Socket.h"

namespace kq {

// Why a connection has ended. The peer's orderly end is not a failure, but has a number for a call that
// waits.
struct Ending {
    std::int32_t number = 0;
    std::string sentence;
    bool failure = true;
};

struct BlockProgress {
    std::string tag;
    DataType data_type = DataType::Raw;
    std::size_t so_far = 0;
    std::size_t total = 0;
};

class Connection {
 public:
    class Sink {
     public:
        virtual void OnConnected() = 0;
        virtual void OnConnectFailed(std::int32_t number) = 0;
        virtual void OnBlock(Block block) = 0;  // keeps it; runs no other code
        virtual void OnRead() = 0;              // a turn of reading is over
        virtual void OnWritten() = 0;           // nothing is queued any more
        virtual void OnOver(Ending ending) = 0;

     protected:
        ~Sink() = default;
    };
    enum class State { Connecting, Open };

    Connection(EventLoop& loop, std::unique_ptr<StreamSocket> socket, State state, FrameLimits limits,
               Sink& sink);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    State GetState() const { return state_; }
    StreamSocket& Socket() const { return *socket_; }
    void SetFrameLimits(FrameLimits limits) { reader_.SetLimits(limits); }
    // The connection ends unless a block is complete within `time`.
    void LimitFirstFrame(Milliseconds time);
    // The connection ends after `time`. Replaces an earlier deadline. 0 or less: no deadline.
    void SetDeadline(Milliseconds time);
    void CancelTimes();
    void SetReading(bool on);

    // Queues a frame, which is written when the loop runs; large amounts are written immediately. False when
    // more than `most` bytes would be queued: the frame is lost, and the connection must be ended.
    bool Send(DataType type, std::string_view tag, std::string_view data, std::size_t most);
    std::size_t Unsent() const { return queue_.Size(); }
    // Bytes of the incoming block, and of what is queued to be written.
    std::size_t Held() const {
        return reader_.Arriving().tag.size() + reader_.Arriving().data.size() + Unsent();
    }
    // Ends the connection; what is queued is written in the background. The Connection is empty afterwards.
    void Leave();

    // Progress of a block that takes more than one turn of reading: how much has arrived, if that is more
    // than at the last call, and its completion.
    std::optional<BlockProgress> TakeProgress();
    std::optional<BlockProgress> TakeCompletion() { return std::exchange(completion_, std::nullopt); }

 private:
    void OnSocket(SocketEvent event);
    // One turn of reading; then calls the sink.
    void Read(int reads);
    bool ReadOnce();  // true when there may be more
    void TakeBlocks(std::string_view bytes);
    void EndOfBytes();
    void CancelFirstFrame();

    void Flush();
    void FlushAndTell();
    void PostFlush();
    void NoteWriteState(WriteQueue::State state, std::int32_t error);
    void OnWriteFailed();

    EventLoop& loop_;
    Sink& sink_;
    State state_;
    FrameReader reader_;
    WriteQueue queue_;
    std::optional<Ending> ending_;
    std::optional<Ending> write_failure_;
    std::optional<BlockProgress> completion_;
    std::size_t told_ = 0;  // bytes of the incoming block that TakeProgress has reported
    EventLoop::TimerId first_frame_ = 0;
    EventLoop::TimerId deadline_ = 0;
    bool reading_ = true;
    bool peer_ended_ = false;
    bool blocked_ = false;  // until Writable
    bool flush_posted_ = false;
    std::unique_ptr<StreamSocket> socket_;
    Owner owner_;
};

}  // namespace kq
