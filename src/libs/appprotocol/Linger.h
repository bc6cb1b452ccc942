// Sees a socket off after its connection has been given up: writes what waits, tells the peer that no more
// comes, reads the peer's rest away (an unread rest would make the network throw away what was just written)
// and closes when the peer has ended too, or after 1 s.
//
// A Linger stands in a table of the process until then, since nobody else is left to own it. It goes when its
// timer goes: expired, cancelled, or destroyed together with the loop. A loop that is abandoned without being
// destroyed keeps its sockets, all written and finished as far as that was possible, until the process ends.
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
