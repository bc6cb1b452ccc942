// The queued messages of a bus client, as values: a state that a newer one outdates is removed before anybody
// has made text of it, and so is a message that has expired.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <string>
#include <utility>

#include <kqappsession/XMLBusClient.h>

namespace kq {

class SendQueue {
 public:
    using TimePoint = EventLoop::TimePoint;
    static constexpr TimePoint kNever = TimePoint::max();
    struct Waiting {
        XMLMessage message;
        TimePoint expiry = kNever;
    };

    void SetLimits(const XMLBusClient::Limits& limits) { limits_ = limits; }

    // Appends an ordinary message. Returns 0, or -1 when the queue is full; then nothing has changed.
    std::int64_t Push(const XMLMessage& message, TimePoint expiry = kNever);
    // Appends a state and removes what it outdates. Returns how many messages it removed, or -1 as above.
    std::int64_t Push(const XMLMessage& message, const BusState& state);
    // Takes out what expires at `now` or before; returns how many.
    std::int64_t DropExpired(TimePoint now);
    bool Empty() const { return entries_.empty(); }
    std::size_t Size() const { return entries_.size(); }
    std::size_t Bytes() const { return bytes_; }
    // Of the states that may be outdated.
    std::size_t Subjects() const { return subjects_.size(); }
    // Takes the message whose turn it is. The queue must not be empty.
    Waiting Pop();

    // At least the bytes of the message's bus form.
    static std::size_t Estimate(const XMLMessage& message);
    // Never more than the estimate.
    static std::size_t Elements(const XMLMessage& message);

 private:
    struct Entry;
    using Entries = std::list<Entry>;
    // The queued states of one subject and destination that a newer one may outdate, oldest first; never
    // empty.
    using SubjectMap = std::map<std::pair<BusAddress, std::string>, std::deque<Entries::iterator>>;
    using Expiring = std::multimap<TimePoint, Entries::iterator>;
    struct Entry {
        XMLMessage message;
        std::size_t bytes = 0;
        SubjectMap::iterator subject;  // end: nothing outdates it
        Expiring::iterator expiring;   // end: never expires
    };

    // Whether a message of this size may come when `removed` messages of `freed` bytes have gone.
    bool HasRoom(std::size_t size, std::size_t removed, std::size_t freed) const;
    Entries::iterator Append(const XMLMessage& message, std::size_t size);
    void Remove(SubjectMap::iterator subject);
    void MakeFinal(SubjectMap::iterator subject);

    XMLBusClient::Limits limits_;
    Entries entries_;
    std::size_t bytes_ = 0;
    Expiring expiring_;
    SubjectMap subjects_;
};

}  // namespace kq
