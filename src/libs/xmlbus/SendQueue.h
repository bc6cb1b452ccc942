// The messages of a bus client that wait for their turn, as values: a state message that a newer one outdates
// is taken out again before anybody has made text of it, and so is a message that has expired.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <string>

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

    // Appends a message. A "C" first takes out the "C" and "E" of the same application that wait behind its
    // last waiting "D". Returns how many it took out, or -1 when there is no place; then nothing has changed.
    // `expiry` is for ordinary messages.
    std::int64_t Push(const XMLMessage& message, BusSending option, TimePoint expiry = kNever);
    // Takes out what expires at `now` or before; returns how many.
    std::int64_t DropExpired(TimePoint now);
    bool Empty() const { return entries_.empty(); }
    std::size_t Size() const { return entries_.size(); }
    std::size_t Bytes() const { return bytes_; }
    // Takes the message whose turn it is. The queue must not be empty.
    Waiting Pop();

    // At least the bytes of the message's bus form.
    static std::size_t Estimate(const XMLMessage& message);
    // Never more than the estimate.
    static std::size_t Elements(const XMLMessage& message);

 private:
    struct Entry;
    using Entries = std::list<Entry>;
    // The waiting "C" and "E" of one application behind its last waiting "D", oldest first.
    using Outdated = std::deque<Entries::iterator>;
    using Expiring = std::multimap<TimePoint, Entries::iterator>;
    struct Entry {
        XMLMessage message;
        std::size_t bytes = 0;
        Outdated* outdated = nullptr;  // where it stands; null for what nothing replaces
        Expiring::iterator expiring;   // end: never expires
    };

    void Enlist(Entries::iterator entry, const std::string& letter, const std::string& application);

    XMLBusClient::Limits limits_;
    Entries entries_;
    std::size_t bytes_ = 0;
    Expiring expiring_;
    std::map<std::string, Outdated>
        applications_;  // grows with the applications of one process, not with messages
};

}  // namespace kq
