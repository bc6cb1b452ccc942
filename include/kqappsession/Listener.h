// Accepts connections of the application protocol and keeps them in a collection by identifier.
//
// Events come one at a time on the loop's thread; a handler may disconnect any client, stop the listener or
// drop it. Errors have the source "KQAppProtocolLib" and Winsock's numbers (10048: the port is in use).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <kqappsession/APClient.h>
#include <kqappsession/Export.h>

namespace kq {

class KQ_EXPORT Listener : public std::enable_shared_from_this<Listener> {
 public:
    using ClientPtr = std::shared_ptr<APClient>;

    // Raises RuntimeError::ObjectNotSet when `platform` is null.
    static std::shared_ptr<Listener> Create(PlatformPtr platform);
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener();  // stops and disconnects every client

    Signal<const ClientPtr&> Accepted;
    Signal<const ClientPtr&, const Block&> Receive;
    // The client has left the collection already.
    Signal<const ClientPtr&> Disconnected;
    // A failure of one connection (a limit, a reset); Disconnected follows. Also raised when MaxClients or
    // MaxUnadmittedPerAddress is reached (10024); that client was never connected, so no Disconnected
    // follows.
    Signal<const ClientPtr&, std::int32_t, const std::string&> ClientError;
    // A failure of the listener itself; it goes on listening where it can.
    Signal<std::int32_t, const std::string&> Error;

    // Listens on a port (0: a free one, see Port) and local address (empty: all). Raises the network's error,
    // and RuntimeError::InvalidProcedureCall when it is listening already or the port is outside 0 to 65535.
    void Listen(std::int32_t port, const std::string& local_address);
    // Accepts no more; with `disconnect_all` every client is disconnected too, else they stay. Does nothing
    // when not listening, except for `disconnect_all`.
    void StopListening(bool disconnect_all);
    bool Listening() const;
    std::int32_t Port() const;  // 0 when not listening
    // The address given to Listen; when that was empty, the machine's first IPv4 address that is not
    // loopback, else 127.0.0.1. Kept after StopListening.
    std::string LocalAddress() const;
    // The numeric address that the socket is bound to: "::" or "0.0.0.0" for all; empty when not listening.
    std::string BoundAddress() const;

    // The connections that stand, in the order of their coming. One that has ended is there until its
    // Disconnected.
    std::int32_t Count() const;
    bool Exists(const std::string& identifier) const;
    // Null when there is none.
    ClientPtr Client(const std::string& identifier) const;
    std::vector<ClientPtr> Clients() const;

    // For connections accepted from now on.
    DataType ReceiveType() const;  // which blocks raise Receive; default Any
    void SetReceiveType(DataType type);
    bool KeepAlive() const;  // probe idle connections as APClient::SetKeepAlive does; default off
    void SetKeepAlive(bool on);
    const APLimits& Limits() const;
    void SetLimits(const APLimits& limits);
    // Further ones are closed immediately with a ClientError; default 20,000.
    //
    // When there are so many, or the machine has no more sockets, and one address has 16 or more connections
    // that are not admitted, the oldest of those is closed instead (10024), so that one peer cannot keep all
    // others out.
    std::int32_t MaxClients() const;
    void SetMaxClients(std::int32_t count);
    // The most connections of one remote address that are not admitted; further ones are closed immediately
    // with a ClientError. 0 or less, the default: half of MaxClients, but not less than 64. Of an IPv6
    // address the first 64 bits count.
    std::int32_t MaxUnadmittedPerAddress() const;
    void SetMaxUnadmittedPerAddress(std::int32_t count);
    // The most bytes that all connections that are not admitted hold together: blocks that are arriving or
    // wait to be delivered, and what waits to be written. Beyond it the one that holds the most is closed,
    // with a ClientError (10055). Default 64 MiB.
    std::size_t MaxUnadmittedBytes() const;
    void SetMaxUnadmittedBytes(std::size_t bytes);

 private:
    class KQ_HIDDEN Impl;
    explicit Listener(PlatformPtr platform);
    std::unique_ptr<Impl> impl_;
};

}  // namespace kq
