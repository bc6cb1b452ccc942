// The bytes that are queued to be written to one socket. Small pieces share a chunk, so that many small
// frames are written together. A large piece is a separate chunk, copied once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "libs/appprotocol/Fifo.h"
#include "platform/Socket.h"

namespace kq {

class WriteQueue {
 public:
    enum class State { Written, Blocked, Failed };

    bool Empty() const { return size_ == 0; }
    std::size_t Size() const { return size_; }  // bytes

    void Append(std::string_view bytes);

    // Writes until the queue is empty or the socket takes no more; `error` is set when it fails.
    State WriteTo(StreamSocket& socket, std::int32_t& error);
    // The same for bytes outside the queue, which must be empty; removes from `bytes` what was written.
    static State Write(StreamSocket& socket, std::string_view& bytes, std::int32_t& error);

 private:
    Fifo<std::string> chunks_;
    std::size_t written_ = 0;  // of the front chunk
    std::size_t size_ = 0;
};

}  // namespace kq
