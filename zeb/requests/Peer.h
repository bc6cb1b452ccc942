// The sender of a request: a client that is connected to this server, or one behind an application server
// that relayed the request over the bus.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <kqappsession/APClient.h>
#include <kqappsession/XMLMessage.h>

namespace kq::zeb {

class Peer {
 public:
    virtual ~Peer() = default;
    // Does nothing when the peer has disconnected.
    virtual void Answer(const XMLMessage& answer) = 0;
    // The peer has logged in.
    virtual void Admit() {}
    virtual bool Relayed() const = 0;
    // The address and port at which a direct peer reached this server; empty and 0 for a relayed one.
    virtual std::string LocalAddress() const { return {}; }
    virtual std::int32_t LocalPort() const { return 0; }
    virtual std::string Name() const = 0;  // for the log
};

using PeerPtr = std::shared_ptr<Peer>;

class DirectPeer final : public Peer {
 public:
    // `name`: the client's address, which a connection that has ended no longer knows. `tag`: the request's,
    // returned with every answer to it.
    DirectPeer(std::shared_ptr<APClient> client, std::string name, std::string tag)
        : client_(std::move(client)), name_(std::move(name)), tag_(std::move(tag)) {}
    void Answer(const XMLMessage& answer) override;
    void Admit() override { client_->Admit(); }
    bool Relayed() const override { return false; }
    std::string LocalAddress() const override { return client_->LocalAddress(); }
    std::int32_t LocalPort() const override { return client_->LocalPort(); }
    std::string Name() const override { return name_; }

 private:
    std::shared_ptr<APClient> client_;
    std::string name_;
    std::string tag_;
};

// Answers are sent with the request's "TransID" and "ReturnTag" to the reply address in the request, which
// the application server has set.
class RelayedPeer final : public Peer {
 public:
    RelayedPeer(const XMLMessage& request, std::function<void(const XMLMessage&)> send_on_bus);
    void Answer(const XMLMessage& answer) override;
    bool Relayed() const override { return true; }
    std::string Name() const override;

 private:
    BusAddress reply_;
    std::string trans_id_;
    std::string tag_;
    std::function<void(const XMLMessage&)> send_on_bus_;
};

}  // namespace kq::zeb
