// The login server: answers requests from its own connections and from the bus.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include <kqappsession/Listener.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Timer.h>
#include <kqappsession/XMLBusClient.h>

#include "zeb/bus/ServerMessages.h"
#include "zeb/requests/ClientRequests.h"
#include "zeb/store/Services.h"

namespace kq::zeb {

struct ZebSettings {
    std::string listen = "127.0.0.1";  // empty: all addresses
    std::int32_t port = 0;             // 0: a free one
    std::int32_t max_connections = 2'000;
    // Of a request. Profiles are uploaded over connections that have not logged in, so the limit is the same
    // before the login.
    std::size_t max_request = 1U << 20;
    Sessions::Rule sessions;
    FailedAttempts::Rule attempts;
};

class Zeb {
 public:
    // Everything passed by reference must outlive the server. Nothing else may use the bus client.
    Zeb(PlatformPtr platform, Store& store, Executor& executor, const PasswordHasher& hasher,
        std::shared_ptr<XMLBusClient> bus, std::shared_ptr<spdlog::logger> log, const ZebSettings& settings);
    Zeb(const Zeb&) = delete;
    Zeb& operator=(const Zeb&) = delete;
    ~Zeb();

    // Raises the network's error when it cannot listen.
    void Start();
    // Answers are still written, within 1 s.
    void Stop();
    // To be called by the hub's owner when an address of the bus has got its first subscriber or lost its
    // last one. An application server is not used while its reply address has no subscriber.
    void Reachable(const BusAddress& address, bool there);
    std::int32_t Port() const { return listener_->Port(); }
    std::string BoundAddress() const { return listener_->BoundAddress(); }

 private:
    void ListenForClients();
    void JoinBus();
    std::string NameOf(const APClient& client) const;
    void OnBlock(const Listener::ClientPtr& client, const Block& block);
    void RefuseUnknown(const Listener::ClientPtr& client, Peer& peer);
    void OnBusMessage(const XMLMessage& message, bool& handled);
    void OnTick();
    void SendOnBus(const XMLMessage& message);

    PlatformPtr platform_;
    ZebSettings settings_;
    std::shared_ptr<spdlog::logger> log_;
    std::shared_ptr<XMLBusClient> bus_;
    std::shared_ptr<Listener> listener_;
    Accounts accounts_;
    UserData user_data_;
    Sessions sessions_;
    ServerRegistry servers_;
    PasswordPool passwords_;
    FailedAttempts attempts_;
    Services services_;
    ClientRequests client_requests_;
    ServerMessages server_messages_;
    // Address and port of each client that is connected, by the connection's identifier.
    std::unordered_map<std::string, std::string> names_;
    Timer timer_;
    std::int64_t ticks_ = 0;
    Owner owner_;
};

}  // namespace kq::zeb
