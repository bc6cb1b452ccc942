// Closes a socket properly after its connection has been ended: writes what is queued, shuts down its
// direction, reads what the peer still sends (unread bytes would make the network discard what was just
// written), and closes when the peer has ended too, or after 1 s.
//
// A table of the process owns each Linger until then, since no other object is left to own it. A Linger is
// destroyed with its timer: when that expires, is cancelled, or is destroyed together with the loop. A loop
// that is abandoned without being destroyed keeps its sockets until the process ends; all of them are written
// and shut down as far as possible.
#pragma once

#include <memory>

#include <kqappsession/EventLoop.h>

#include "libs/appprotocol/WriteQueue.h"
#include "platform/Socket.h"

namespace kq {

class Linger {
 public:
    // `peer_ended`: the end of the peer's bytes has been read already.
    static void Start(EventLoop& loop, std::unique_ptr<StreamSocket> socket, WriteQueue queue,
                      bool peer_ended);
    Linger(const Linger&) = delete;
    Linger& operator=(const Linger&) = delete;

 private:
    class Table;
    class Ticket;

    Linger(EventLoop& loop, std::unique_ptr<StreamSocket> socket, WriteQueue queue, bool peer_ended)
        : loop_(loop), socket_(std::move(socket)), queue_(std::move(queue)), peer_ended_(peer_ended) {}

    void OnSocket(SocketEvent event);
    // These return true when there is nothing left to do.
    bool Write();
    bool Drain();

    EventLoop& loop_;
    std::unique_ptr<StreamSocket> socket_;
    WriteQueue queue_;
    bool peer_ended_;
    bool finished_ = false;  // all is written
    EventLoop::TimerId timer_ = 0;
};

}  // namespace kq
