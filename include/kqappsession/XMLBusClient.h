// A client of the XML bus: sends messages to addresses, hears the addresses that it subscribed to, and owns
// one reply address that no other client has.
//
// A started client keeps its place on the bus by itself: when the bus goes away it reconnects with growing
// delay (0.25 s doubling to 15 s), subscribes again and delivers what was sent meanwhile. What waits is
// bounded (Limits). Everything happens on the loop's thread; event handlers may call back into the object or
// drop it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>
#include <kqappsession/XMLMessage.h>

namespace kq {

class BusTransport;

// Where the hub is. The key is shared by all peers of a hub; a hub without one listens on loopback only.
struct BusSettings {
    std::string address = "127.0.0.1";
    std::int32_t port = 0;  // 1 to 65535; with any other port every attempt to connect fails
    std::string key;
};

// The option of a subscription.
enum class BusSubscription : std::int32_t {
    Ordinary = 0,  // every subscriber gets each message
    Shared = 1,    // one of the subscribers that share the address gets each message
};

// What a state outdates among the earlier states of its subject that are still queued.
enum class BusOutdates : std::int32_t {
    Nothing = 0,  // it is queued behind them
    Earlier = 1,  // all that a later state may outdate: they are dropped, and it goes to the end of the queue
    Final = 2,    // nothing, and no later state outdates it or them: all of them are written
};

// What makes a message a state of something: a newer state may outdate it while it is queued.
struct BusState {
    // Whose state it is, any text. Only states of the same subject for the same destination outdate one
    // another.
    std::string subject;
    BusOutdates outdates = BusOutdates::Nothing;
};

struct BusStatistics {
    std::int64_t sent = 0;      // handed to Send
    std::int64_t written = 0;   // written to the bus
    std::int64_t replaced = 0;  // states that a newer one outdated
    std::int64_t expired = 0;   // dropped because their expiry passed before they reached the bus
    std::int64_t received = 0;
    std::int64_t malformed = 0;  // arrived, but dropped because they are no messages
    std::int64_t reconnects = 0;
    std::int64_t waiting = 0;  // in the queue now
};

class KQ_EXPORT XMLBusClient : public std::enable_shared_from_this<XMLBusClient> {
 public:
    using MessagePtr = std::shared_ptr<XMLMessage>;
    struct Limits {
        std::size_t waiting_messages = 100'000;
        std::size_t waiting_bytes = 64U << 20;  // estimated size of the waiting messages
    };
    static constexpr std::string_view kSource = "KQXMLBusClientLib";
    // What a message may hold at most; a larger one is neither sent nor received. Room for the session
    // list of an application server with 20,000 sessions, ten times over.
    static constexpr std::size_t kMaxMessage = 16U << 20;  // bytes of its bus form
    static constexpr std::size_t kMaxElements = 200'000;   // its root included
    static constexpr Milliseconds kNoExpiry{0};

    // A client of a hub, and a client over any transport (one inside the process for tests). Raises
    // RuntimeError::ObjectNotSet when `platform` is null, RuntimeError::InvalidProcedureCall when `transport`
    // is.
    static std::shared_ptr<XMLBusClient> Create(PlatformPtr platform, BusSettings settings);
    static std::shared_ptr<XMLBusClient> Create(PlatformPtr platform,
                                                std::shared_ptr<BusTransport> transport);
    XMLBusClient(const XMLBusClient&) = delete;
    XMLBusClient& operator=(const XMLBusClient&) = delete;
    ~XMLBusClient();

    // A message for one of the subscribed addresses or the reply address. A handler that has dealt with it
    // sets the flag; later handlers see it set.
    Signal<const MessagePtr&, bool&> ReceiveMessage;
    // Every 60 s while running, and when the client stops.
    Signal<const BusStatistics&> StatisticsEvent;
    // The place on the bus was gained (true) or lost (false, with a sentence). Attempts that fail are told
    // like a loss, but only when the sentence is another than the last one.
    Signal<bool, const std::string&> ConnectionChanged;

    // Where the hub is; the key is in it. A client over another transport has no hub: default values, and
    // setting makes it a hub's client. Set only while stopped, else RuntimeError::InvalidProcedureCall; what
    // waits to be written goes to the new hub.
    const BusSettings& Hub() const;
    void SetHub(BusSettings settings);

    bool Running() const;    // started and not stopped, whether or not the bus is there at the moment
    bool Connected() const;  // has its place on the bus
    void Start();            // returns at once
    // Runs the loop until what waits has arrived on the bus, 1 s at most, then gives the place up; does
    // nothing when not running. Nothing can be sent meanwhile. What could not be written in time stays for
    // the next start. A Start while this waits keeps the client running.
    void Stop();

    // Subscriptions hold over stop and start. Adding one twice changes its option; removing an unknown one
    // raises RuntimeError::InvalidProcedureCall, and so does an address that is none (an empty type, control
    // characters, more than 512 bytes) or that is the reply address.
    void AddSubscription(const std::string& type, BusSubscription option, const std::string& subtype);
    void RemoveSubscription(const std::string& type, const std::string& subtype);

    // This client's own reply address.
    const std::string& ReplyType() const;
    const std::string& ReplySubType() const;
    const std::string& EnterpriseID() const;
    void SetEnterpriseID(const std::string& id);

    // Queues a copy of the message for its destination. Raises RuntimeError::InvalidProcedureCall when not
    // running, without a type or without a destination, NetError::MessageTooLong when it is over kMaxMessage
    // or kMaxElements, and NetError::NoBufferSpace when the queue is full.
    //
    // `expiry`: milliseconds from now in which the message may be written to the bus; kNoExpiry: no limit.
    // Afterwards it is dropped and counted in BusStatistics::expired, not delivered late. That also holds for
    // a message that was written to a connection that broke before the bus confirmed it. A negative expiry
    // raises RuntimeError::InvalidProcedureCall.
    void Send(const XMLMessage& message, Milliseconds expiry = kNoExpiry);
    // The same for a state. It never expires: it is true until a newer one outdates it. Raises
    // RuntimeError::InvalidProcedureCall also for a value that BusOutdates does not have.
    void Send(const XMLMessage& message, const BusState& state);
    BusStatistics Statistics() const;
    // For what is sent from now on; what is queued already stays.
    void SetLimits(const Limits& limits);

 private:
    class KQ_HIDDEN Impl;
    XMLBusClient();
    std::unique_ptr<Impl> impl_;
};

}  // namespace kq
