// The hub of the bus: peers connect, prove that they know the shared key, subscribe to addresses, and send
// messages that the hub hands to the subscribers of their address without reading them.
//
// A message for an address without subscribers is dropped and counted: a request nobody can answer runs into
// the time-out of whoever asked. A peer that reads too slowly is cut when too much waits for it, and harms
// nobody else.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <kqappsession/Listener.h>
#include <kqappsession/Secret.h>

#include "libs/xmlbus/BusControl.h"
#include "libs/xmlbus/BusRoutes.h"

namespace kq {

struct HubStatistics {
    std::int64_t peers = 0;      // admitted now
    std::int64_t taken = 0;      // messages that peers sent
    std::int64_t delivered = 0;  // copies handed to subscribers
    std::int64_t dropped = 0;    // messages that no subscriber took
    std::int64_t refused = 0;    // peers that were sent away with a sentence
};

class Hub {
 public:
    struct Limits {
        std::int32_t peers = 1'000;         // admitted peers
        std::int32_t greeting_peers = 100;  // peers that are not admitted yet; the oldest is cut for one more
        std::size_t greeting_frame = 4U << 10;  // bytes of a block before a peer is admitted
        Milliseconds greeting_time{5'000};      // from the connection to the proof
        std::size_t unsent = 64U << 20;         // bytes that wait for one peer
        std::size_t subscriptions = 1'000;      // of one peer
        std::size_t remembered = 4'096;         // clients that are gone and may come back
    };

    // Raises RuntimeError::InvalidProcedureCall when there is no platform, or one without a network.
    explicit Hub(PlatformPtr platform);
    ~Hub();  // stops
    Hub(const Hub&) = delete;
    Hub& operator=(const Hub&) = delete;

    // A sentence for the host's log: a peer was refused or cut, the listener failed.
    Signal<const std::string&> Note;
    // An address has its first subscriber (true) or has lost its last one (false), in the order in which it
    // happened. A bus client subscribes to its reply address before it sends anything, so for a sender that
    // names its reply address this says whether its connection to this hub is still open.
    Signal<const BusAddress&, bool> Reachable;

    // Listens on a port (0: a free one) of a numeric local address (empty: all; "localhost": 127.0.0.1). With
    // an empty key the hub takes anybody, so it listens on loopback only: any other address, the empty one
    // too, raises RuntimeError::InvalidProcedureCall. Other errors are Listener::Listen's.
    void Listen(const std::string& address, std::int32_t port, const std::string& key);
    // Disconnects every peer. What they were sent is still written out.
    void Stop();
    bool Listening() const;
    std::int32_t Port() const;         // 0 when not listening
    std::string BoundAddress() const;  // as Listener::BoundAddress

    HubStatistics Statistics() const;
    // For the next Listen. Raises RuntimeError::InvalidProcedureCall for a number of peers outside 1 to
    // 1,000,000 and a greeting time outside 1 ms to 1 hour.
    void SetLimits(const Limits& limits);

 private:
    using PeerId = BusRoutes::PeerId;
    enum class Stage { Connected, Challenged, Admitted };
    struct Peer {
        Listener::ClientPtr connection;
        Stage stage = Stage::Connected;
        BusGreeting greeting;
        std::int64_t taken = 0;  // messages of this client, over its reconnections
        bool telling = false;    // a task that tells it the count is posted
        EventLoop::TimerId deadline = 0;
    };
    using Peers = std::map<PeerId, Peer>;

    std::int64_t PeersIn(bool admitted) const;
    void OnAccepted(const Listener::ClientPtr& connection);
    void OnBlock(const Listener::ClientPtr& connection, const Block& block);
    void OnGone(const Listener::ClientPtr& connection);
    void OnControl(PeerId id, const XMLMessage& message);
    void OnHello(PeerId id, const XMLMessage& message);
    void OnProof(PeerId id, const XMLMessage& message);
    void OnSubscription(PeerId id, const XMLMessage& message);
    void OnMessage(PeerId id, const Block& block);
    bool Hand(PeerId id, const Block& block);
    void Send(PeerId id, const XMLMessage& control);
    void TellTakenSoon(PeerId id);
    void NoteSoon(const std::string& text);
    void ReachableSoon(const std::string& name, bool there);
    void Refuse(PeerId id, const std::string& text);
    void Remove(PeerId id);
    Peers::iterator OlderPlaceOf(const std::string& client);
    void ReplaceOlderPlace(PeerId id);
    PeerId IdOf(const Listener::ClientPtr& connection) const;

    PlatformPtr platform_;
    Limits limits_;
    Secret key_;
    std::shared_ptr<Listener> listener_;
    Peers peers_;
    std::map<std::string, PeerId> ids_;  // by connection identifier
    PeerId last_id_ = 0;
    BusRoutes routes_;
    // How much was taken of clients that are gone, latest last: they may come back and send a part again.
    std::deque<std::pair<std::string, std::int64_t>> remembered_;
    HubStatistics statistics_;
    Owner owner_;
};

}  // namespace kq
