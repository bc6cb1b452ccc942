// The messages of a bus client that wait for their turn, as values: a state message that a newer one outdates
// is taken out again before anybody has made text of it.
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
    void SetLimits(const XMLBusClient::Limits& limits) { limits_ = limits; }

    // Appends a message. A "C" first takes out the "C" and "E" of the same application that wait behind its
    // last waiting "D". Returns how many it took out, or -1 when there is no place; then nothing has changed.
    std::int64_t Push(const XMLMessage& message, BusSending option);
    bool Empty() const { return entries_.empty(); }
    std::size_t Size() const { return entries_.size(); }
    std::size_t Bytes() const { return bytes_; }
    // Takes the message whose turn it is. The queue must not be empty.
    XMLMessage Pop();

    // At least the bytes of the message's bus form.
    static std::size_t Estimate(const XMLMessage& message);

 private:
    struct Entry;
    using Entries = std::list<Entry>;
    // The waiting "C" and "E" of one application behind its last waiting "D", oldest first.
    using Outdated = std::deque<Entries::iterator>;
    struct Entry {
        XMLMessage message;
        std::size_t bytes = 0;
        Outdated* outdated = nullptr;  // where it stands; null for what nothing replaces
    };

    void Enlist(Entries::iterator entry, const std::string& letter, const std::string& application);

    XMLBusClient::Limits limits_;
    Entries entries_;
    std::size_t bytes_ = 0;
    std::map<std::string, Outdated>
        applications_;  // grows with the applications of one process, not with messages
};

}  // namespace kq
