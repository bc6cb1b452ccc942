// What carries the messages of one bus client: the hub over TCP, a loop inside the process, or another
// message bus.
//
// A transport makes one attempt for each Open and tells how it ended; trying again, the delay in between and
// subscribing anew are the client's. It takes over only as much as it can write soon (HasRoom), so that the
// client's queue holds the rest in a form in which newer messages can still replace older ones.
//
// Events are never raised from inside a call. A handler may close or drop the transport.
#pragma once

#include <cstdint>
#include <string>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Signal.h>
#include <kqappsession/XMLBusClient.h>

namespace kq {

class BusTransport {
 public:
    BusTransport() = default;
    BusTransport(const BusTransport&) = delete;
    BusTransport& operator=(const BusTransport&) = delete;
    virtual ~BusTransport() = default;

    // The place on the bus is there, without subscriptions.
    Signal<> Ready;
    // The attempt failed or the place is gone; a sentence says why. Nothing else follows until the next Open.
    Signal<const std::string&> Lost;
    // There may be room again, or everything written may have arrived.
    Signal<> Room;
    // The bus form of a message for one of the subscribed addresses.
    Signal<const std::string&> Message;

    // Begins an attempt; Ready or Lost follows. Does nothing when one is under way or has succeeded.
    virtual void Open() = 0;
    // Gives the place up. No event follows. What was written still goes out where that is possible.
    virtual void Close() = 0;

    // Only between Ready and Lost. A second subscription of an address changes its option.
    virtual void Subscribe(const BusAddress& address, BusSubscription option) = 0;
    virtual void Unsubscribe(const BusAddress& address) = 0;

    // Whether a message would be taken. One that was taken is delivered once the bus is there, also when the
    // place is lost and opened again in between, unless it would be written again after `expiry`.
    virtual bool HasRoom() const = 0;
    virtual void Write(const BusAddress& destination, std::string text, EventLoop::TimePoint expiry) = 0;
    // How many messages were dropped because they had expired, in this object's life.
    virtual std::int64_t Expired() const = 0;
    // Whether everything that was written has arrived on the bus.
    virtual bool Flushed() const = 0;
};

}  // namespace kq
