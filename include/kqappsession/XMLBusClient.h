// A client of the XML bus. It sends messages to addresses, receives messages for the addresses that it
// subscribed to, and has one reply address that no other client has.
//
// A started client stays connected automatically. When the connection to the bus is lost, it reconnects with
// a growing delay (0.25 s, doubled up to 15 s), subscribes again and delivers what was sent in the meantime.
// Its queue is limited (Limits).
//
// One thread: all members and events belong to the thread of the platform's event loop. Handlers may call
// every member and may release the object.
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

// Where the hub is. All peers of a hub share its key; a hub without a key listens on loopback only.
struct BusSettings {
    std::string address = "127.0.0.1";
    std::int32_t port = 0;  // 1 to 65535; with any other port no attempt to connect succeeds
    std::string key;
};

// The option of a subscription.
enum class BusSubscription : std::int32_t {
    Ordinary = 0,  // every subscriber gets each message
    Shared = 1,    // one of the subscribers that share the address gets each message
};

// Which queued states of the same subject a newer state replaces.
enum class BusOutdates : std::int32_t {
    Nothing = 0,  // none; it is queued behind them
    Earlier = 1,  // all behind the last queued Final one; it goes to the end of the queue
    Final = 2,    // none, and later states replace neither it nor those in front of it
};

// Marks a message as a state. While it is queued, a newer state of the same subject may replace it.
struct BusState {
    // Any text. Only states with the same subject and destination replace one another.
    std::string subject;
    BusOutdates outdates = BusOutdates::Nothing;
};

struct BusStatistics {
    std::int64_t sent = 0;      // handed to Send
    std::int64_t written = 0;   // written to the bus
    std::int64_t replaced = 0;  // states that a newer one replaced
    std::int64_t expired = 0;   // dropped because they expired before they reached the bus
    std::int64_t received = 0;
    std::int64_t malformed = 0;  // arrived, but dropped because they are not messages
    std::int64_t reconnects = 0;
    std::int64_t waiting = 0;  // in the queue now
};

class KQ_EXPORT XMLBusClient : public std::enable_shared_from_this<XMLBusClient> {
 public:
    using MessagePtr = std::shared_ptr<XMLMessage>;
    struct Limits {
        std::size_t waiting_messages = 100'000;
        std::size_t waiting_bytes = 64U << 20;  // estimated size of the queued messages
    };
    static constexpr std::string_view kSource = "KQXMLBusClientLib";
    // Limits of one message; a larger one is neither sent nor received. Ten times the session list of an
    // application server with 20,000 sessions fits.
    static constexpr std::size_t kMaxMessage = 16U << 20;  // bytes of its bus form
    static constexpr std::size_t kMaxElements = 200'000;   // its root included
    static constexpr Milliseconds kNoExpiry{0};

    // A client of a hub, or a client over any transport (for tests: one inside the process). Raises
    // RuntimeError::ObjectNotSet if `platform` is null, RuntimeError::InvalidProcedureCall if `transport` is
    // null.
    static std::shared_ptr<XMLBusClient> Create(PlatformPtr platform, BusSettings settings);
    static std::shared_ptr<XMLBusClient> Create(PlatformPtr platform,
                                                std::shared_ptr<BusTransport> transport);
    XMLBusClient(const XMLBusClient&) = delete;
    XMLBusClient& operator=(const XMLBusClient&) = delete;
    // Disconnects without waiting and without events. Queued messages are lost; call Stop first to have them
    // written.
    ~XMLBusClient();

    // A message for one of the subscribed addresses or for the reply address. A handler that has dealt with
    // it sets the flag; the handlers after it see the flag set.
    Signal<const MessagePtr&, bool&> ReceiveMessage;
    // Every 60 s while running, and when the client stops.
    Signal<const BusStatistics&> StatisticsEvent;
    // Connected to the bus (true) or disconnected (false, with the reason). A failed attempt is reported like
    // a disconnection, unless its reason is the same as the last one.
    Signal<bool, const std::string&> ConnectionChanged;

    // Where the hub is, key included. A client over another transport has default values; setting them makes
    // it a client of that hub. May be set only while stopped, else RuntimeError::InvalidProcedureCall. Queued
    // messages go to the new hub.
    const BusSettings& Hub() const;
    void SetHub(BusSettings settings);

    bool Running() const;    // started and not stopped, whether or not connected
    bool Connected() const;  // to the bus, and accepted by it
    void Start();            // returns immediately; does nothing when running
    // Waits up to 1 s for queued messages to reach the bus, then disconnects. Nothing can be sent in the
    // meantime. Messages that could not be written in time stay queued for the next start. A Start during the
    // wait keeps the client running. Does nothing when not running.
    void Stop();

    // Subscriptions are kept over stop and start. Adding one twice changes its option. Removing an unknown
    // one raises RuntimeError::InvalidProcedureCall; so does an address that is not valid (an empty type,
    // control characters, more than 512 bytes) or that is the reply address.
    void AddSubscription(const std::string& type, BusSubscription option, const std::string& subtype);
    void RemoveSubscription(const std::string& type, const std::string& subtype);

    // This client's reply address. It never changes.
    const std::string& ReplyType() const;
    const std::string& ReplySubType() const;
    // The enterprise of the application server that uses this client, default empty. KQAppSessServer gives it
    // to every session that it adds from now on, in place of the enterprise that the login server reports.
    // The bus itself does not use it.
    const std::string& EnterpriseID() const;
    void SetEnterpriseID(const std::string& id);

    // Queues a copy of the message for its destination. Raises RuntimeError::InvalidProcedureCall when not
    // running, without a type or without a valid destination, NetError::MessageTooLong when it is over
    // kMaxMessage or kMaxElements, and NetError::NoBufferSpace when the queue is full.
    //
    // `expiry`: milliseconds from now within which the message may be written to the bus; kNoExpiry: no
    // limit. After that it is dropped and counted in BusStatistics::expired. That also holds for a message
    // that was written to a connection that was lost before the bus confirmed it. A negative expiry raises
    // RuntimeError::InvalidProcedureCall.
    void Send(const XMLMessage& message, Milliseconds expiry = kNoExpiry);
    // The same for a state, which never expires. Raises RuntimeError::InvalidProcedureCall also for an
    // unknown value of BusOutdates.
    void Send(const XMLMessage& message, const BusState& state);
    BusStatistics Statistics() const;
    // Limits for what is sent from now on. What is already queued stays queued.
    void SetLimits(const Limits& limits);

 private:
    class KQ_HIDDEN Impl;
    XMLBusClient();
    std::unique_ptr<Impl> impl_;
};

}  // namespace kq
