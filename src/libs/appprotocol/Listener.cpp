// Accepting, the collection, and forwarding the clients' events to the listener's.
//
// A client's events reach the listener through the client's signals, to which the listener is connected
// first: a handler of the client's Disconnected already finds the client removed from the collection.
#include <algorithm>
#include <list>
#include <unordered_map>
#include <utility>

#include <kqappsession/Error.h>
#include <kqappsession/Listener.h>

#include "libs/appprotocol/APClientImpl.h"
#include "platform/Machine.h"

namespace kq {
namespace {

constexpr int kAcceptsPerTurn = 64;
constexpr std::int32_t kTooManyConnections = 10024;
constexpr std::int32_t kLastPort = 65535;
constexpr std::int32_t kDefaultMaxClients = 20'000;
constexpr std::int32_t kLeastShare = 64;  // of the places, for one address

}  // namespace

class Listener::Impl {
 public:
    Impl(Listener& face, PlatformPtr platform) : face_(face), platform_(std::move(platform)) {}
    ~Impl() { DisconnectAll(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void Listen(std::int32_t port, const std::string& local_address);
    void StopListening() { socket_.reset(); }
    void DisconnectAll();
    bool Listening() const { return socket_ != nullptr; }
    std::int32_t Port() const { return socket_ ? socket_->LocalPort() : 0; }
    const std::string& LocalAddress() const { return local_address_; }
    std::string BoundAddress() const { return socket_ ? socket_->LocalAddress() : std::string(); }

    std::int32_t Count() const { return static_cast<std::int32_t>(clients_.size()); }
    ClientPtr Find(const std::string& identifier) const;
    std::vector<ClientPtr> Clients() const { return {clients_.begin(), clients_.end()}; }

    DataType receive_type = DataType::Any;
    bool keep_alive = false;
    APLimits limits;
    std::int32_t max_clients = kDefaultMaxClients;
    std::int32_t max_unadmitted = 0;  // of one address; 0 or less: a share of the places
    const std::shared_ptr<Strangers> strangers = std::make_shared<Strangers>();

    std::int32_t MaxUnadmitted() const {
        return max_unadmitted > 0 ? max_unadmitted : std::max(max_clients / 2, kLeastShare);
    }

 private:
    void OnWaiting();
    void Welcome(std::unique_ptr<StreamSocket> stream);
    // Why there is no place for a connection; empty when there is one.
    std::string NoPlace(const StreamSocket& stream);
    void Forward(APClient& client);
    void OnDisconnected(const ClientPtr& client);

    Listener& face_;
    const PlatformPtr platform_;
    std::shared_ptr<ListenSocket> socket_;
    std::string local_address_;
    std::list<ClientPtr> clients_;  // in the order of their coming
    std::unordered_map<std::string, std::list<ClientPtr>::iterator> by_identifier_;
    Owner owner_;
};

void Listener::Impl::Listen(std::int32_t port, const std::string& local_address) {
    if (socket_) Raise(RuntimeError::InvalidProcedureCall, "The listener is already listening");
    if (port < 0 || port > kLastPort) {
        Raise(RuntimeError::InvalidProcedureCall,
              "The port " + std::to_string(port) + " is outside 0 to 65535");
    }
    socket_ = platform_->Parts().network->Listen(local_address, port);
    local_address_ = local_address.empty() ? platform_->Parts().network->OwnAddress() : local_address;
    socket_->SetHandler([this] { OnWaiting(); });
}

void Listener::Impl::DisconnectAll() {
    for (const auto& client : Clients())
        client->Disconnect();
}

Listener::ClientPtr Listener::Impl::Find(const std::string& identifier) const {
    const auto entry = by_identifier_.find(identifier);
    return entry == by_identifier_.end() ? nullptr : *entry->second;
}

void Listener::Impl::OnWaiting() {
    const auto self = face_.shared_from_this();
    const auto socket = socket_;
    for (int i = 0; i < kAcceptsPerTurn; ++i) {
        std::int32_t error = 0;
        auto stream = socket->Accept(&error);
        if (error != 0) {
            if (strangers->MakeRoom()) continue;
            face_.Error(error, NetErrorText(error));
            return;
        }
        if (!stream) return;
        Welcome(std::move(stream));
        if (socket_ != socket) return;  // a handler stopped the listener
    }
}

void Listener::Impl::Welcome(std::unique_ptr<StreamSocket> stream) {
    const auto client = APClient::Create(platform_);
    if (const std::string why_not = NoPlace(*stream); !why_not.empty()) {
        stream.reset();
        face_.ClientError(client, kTooManyConnections, why_not);
        return;
    }
    client->SetReceiveType(receive_type);
    client->SetLimits(limits);
    client->SetKeepAlive(keep_alive);
    Forward(*client);
    const auto place = clients_.insert(clients_.end(), client);
    by_identifier_.emplace(client->Identifier(), place);
    client->impl_->Adopt(std::move(stream), strangers);
    face_.Accepted(client);
}

std::string Listener::Impl::NoPlace(const StreamSocket& stream) {
    const auto limit_of = [](std::int32_t limit, const std::string& what) {
        return "The limit of " + std::to_string(limit) + " connections " + what + "has been reached";
    };
    const std::string address = stream.RemoteAddress();
    if (std::cmp_greater_equal(strangers->CountOf(address), MaxUnadmitted())) {
        return limit_of(MaxUnadmitted(), "of " + address + " that are not admitted ");
    }
    if (Count() >= max_clients && !strangers->MakeRoom()) return limit_of(max_clients, "");
    return {};
}

void Listener::Impl::Forward(APClient& client) {
    client.Receive.Connect(
        owner_, [this, &client](const Block& block) { face_.Receive(client.shared_from_this(), block); });
    client.Error.Connect(owner_, [this, &client](std::int32_t number, const std::string& sentence) {
        face_.ClientError(client.shared_from_this(), number, sentence);
    });
    client.Disconnected.Connect(owner_, [this, &client] { OnDisconnected(client.shared_from_this()); });
}

void Listener::Impl::OnDisconnected(const ClientPtr& client) {
    const auto self = face_.shared_from_this();
    const auto entry = by_identifier_.find(client->Identifier());
    if (entry == by_identifier_.end()) return;
    clients_.erase(entry->second);
    by_identifier_.erase(entry);
    // If the program connects the object again, the listener does not report it.
    client->Receive.Disconnect(owner_);
    client->Error.Disconnect(owner_);
    client->Disconnected.Disconnect(owner_);
    face_.Disconnected(client);
}

std::shared_ptr<Listener> Listener::Create(PlatformPtr platform) {
    return std::shared_ptr<Listener>(new Listener(RequirePlatform(std::move(platform), "A listener")));
}

Listener::Listener(PlatformPtr platform) : impl_(std::make_unique<Impl>(*this, std::move(platform))) {}

Listener::~Listener() = default;

void Listener::Listen(std::int32_t port, const std::string& local_address) {
    impl_->Listen(port, local_address);
}

void Listener::StopListening(bool disconnect_all) {
    impl_->StopListening();
    if (disconnect_all) impl_->DisconnectAll();
}

bool Listener::Listening() const {
    return impl_->Listening();
}

std::int32_t Listener::Port() const {
    return impl_->Port();
}

std::string Listener::LocalAddress() const {
    return impl_->LocalAddress();
}

std::string Listener::BoundAddress() const {
    return impl_->BoundAddress();
}

std::int32_t Listener::Count() const {
    return impl_->Count();
}

bool Listener::Exists(const std::string& identifier) const {
    return impl_->Find(identifier) != nullptr;
}

Listener::ClientPtr Listener::Client(const std::string& identifier) const {
    return impl_->Find(identifier);
}

std::vector<Listener::ClientPtr> Listener::Clients() const {
    return impl_->Clients();
}

DataType Listener::ReceiveType() const {
    return impl_->receive_type;
}

void Listener::SetReceiveType(DataType type) {
    if (type != DataType::Raw && type != DataType::Any && type != DataType::XML) {
        Raise(RuntimeError::InvalidProcedureCall);
    }
    impl_->receive_type = type;
}

bool Listener::KeepAlive() const {
    return impl_->keep_alive;
}

void Listener::SetKeepAlive(bool on) {
    impl_->keep_alive = on;
}

const APLimits& Listener::Limits() const {
    return impl_->limits;
}

void Listener::SetLimits(const APLimits& limits) {
    impl_->limits = limits;
}

std::int32_t Listener::MaxClients() const {
    return impl_->max_clients;
}

void Listener::SetMaxClients(std::int32_t count) {
    impl_->max_clients = count;
}

std::int32_t Listener::MaxUnadmittedPerAddress() const {
    return impl_->MaxUnadmitted();
}

void Listener::SetMaxUnadmittedPerAddress(std::int32_t count) {
    impl_->max_unadmitted = count;
}

std::size_t Listener::MaxUnadmittedBytes() const {
    return impl_->strangers->most_bytes;
}

void Listener::SetMaxUnadmittedBytes(std::size_t bytes) {
    impl_->strangers->most_bytes = bytes;
}

}  // namespace kq
