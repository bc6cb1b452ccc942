// A bus inside one process: for tests, and for a host that keeps both ends of the bus in one program.
//
// Messages are delivered by tasks of the event loop, in order, as text like on any other bus. It can be taken
// away and brought back, and it can refuse to take messages, which is how a test makes a client's queue grow.
#pragma once

#include <memory>

#include "libs/xmlbus/BusTransport.h"

namespace kq {

class LocalBus {
 public:
    explicit LocalBus(const PlatformPtr& platform);
    ~LocalBus();  // like SetUp(false), for ever
    LocalBus(const LocalBus&) = delete;
    LocalBus& operator=(const LocalBus&) = delete;

    // For one bus client. May outlive the bus.
    std::shared_ptr<BusTransport> MakeTransport();

    // False: every place is lost and attempts fail, until it is true again. True at first.
    void SetUp(bool up);
    // False: takes no messages, until it is true again. True at first.
    void SetRoom(bool room);

 private:
    struct Core;
    class Transport;
    std::shared_ptr<Core> core_;
};

}  // namespace kq
