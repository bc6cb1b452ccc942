// Accepts connections of the application protocol and keeps them in a collection by identifier.
//
// One thread: all members and events belong to the thread of the platform's event loop. Events are raised one
// at a time by the loop, never from inside a member. A handler may disconnect any client, stop the listener
// or release it. Errors have the source "KQAppProtocolLib" and Winsock's numbers (10048: the port is in use).
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
    ~Listener();  // stops and disconnects every client; raises no event

    // A client has connected. It is in the collection, and none of its blocks has been delivered yet.
    Signal<const ClientPtr&> Accepted;
    // A client has sent a block of the type ReceiveType. The client's own Receive is raised as well, after
    // this.
    Signal<const ClientPtr&, const Block&> Receive;
    // A client's connection has ended. It has already been removed from the collection.
    Signal<const ClientPtr&> Disconnected;
    // A failure of one connection, such as a reset or a limit: its number and description. Disconnected
    // follows. Also raised when MaxClients or MaxUnadmittedPerAddress is reached (10024); that client was
    // never connected, so no Disconnected follows.
    Signal<const ClientPtr&, std::int32_t, const std::string&> ClientError;
    // A failure of the listener itself: its number and description, such as 10024 when the machine has no
    // more sockets. It goes on listening.
    Signal<std::int32_t, const std::string&> Error;

    // Listens on a port (0: a free one, see Port) and a numeric local address (empty: all addresses). Raises
    // the network's error, such as 10048, and RuntimeError::InvalidProcedureCall when already listening or
    // when the port is outside 0 to 65535.
    void Listen(std::int32_t port, const std::string& local_address);
    // Stops accepting clients. With `disconnect_all` every client is disconnected too, even when not
    // listening; otherwise the clients stay connected. Never raises.
    void StopListening(bool disconnect_all);
    bool Listening() const;
    std::int32_t Port() const;  // 0 when not listening
    // The address given to Listen; when that was empty, the machine's first IPv4 address that is not
    // loopback, else 127.0.0.1. Kept after StopListening.
    std::string LocalAddress() const;
    // The numeric address that the socket is bound to: "::" or "0.0.0.0" for all; empty when not listening.
    std::string BoundAddress() const;

    // The open connections, oldest first. One that has ended stays until its Disconnected event.
    std::int32_t Count() const;
    bool Exists(const std::string& identifier) const;
    // Null when there is no such client.
    ClientPtr Client(const std::string& identifier) const;
    std::vector<ClientPtr> Clients() const;

    // Settings. ReceiveType, KeepAlive and Limits apply to connections that are accepted from now on, the
    // others immediately. SetReceiveType raises RuntimeError::InvalidProcedureCall for a value other than
    // Raw, XML and Any.
    DataType ReceiveType() const;  // which blocks raise Receive; others are dropped; default Any
    void SetReceiveType(DataType type);
    bool KeepAlive() const;  // default off; see APClient::SetKeepAlive
    void SetKeepAlive(bool on);
    const APLimits& Limits() const;
    void SetLimits(const APLimits& limits);
    // The maximum number of connections, default 20,000. Further ones are closed immediately with a
    // ClientError (10024).
    //
    // One peer cannot keep all others out: when MaxClients is reached, or the machine has no more sockets,
    // the listener looks for the address with the most connections that are not admitted. If it has 16 or
    // more of them, its oldest one is closed instead of the new one (10024).
    std::int32_t MaxClients() const;
    void SetMaxClients(std::int32_t count);
    // The maximum number of connections of one remote address that are not admitted. Further ones are closed
    // immediately with a ClientError (10024). 0 or less, the default: half of MaxClients, but at least 64.
    // IPv6 addresses with the same first 64 bits count as one address.
    std::int32_t MaxUnadmittedPerAddress() const;
    void SetMaxUnadmittedPerAddress(std::int32_t count);
    // The maximum number of bytes that all connections that are not admitted hold together: incoming blocks
    // until they are delivered, and bytes that are queued to be written. When it is exceeded, the connection
    // that holds the most is closed with a ClientError (10055). Default 64 MiB.
    std::size_t MaxUnadmittedBytes() const;
    void SetMaxUnadmittedBytes(std::size_t bytes);

 private:
    class KQ_HIDDEN Impl;
    explicit Listener(PlatformPtr platform);
    std::unique_ptr<Impl> impl_;
};

}  // namespace kq
