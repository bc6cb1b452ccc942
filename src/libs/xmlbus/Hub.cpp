// The hub. A peer is a number that is never used twice; whatever happens later, or after a sending, looks it
// up again, because sending to a peer may end it. Notes are raised by tasks, so that their handlers may stop
// or destroy the hub.
#include "libs/xmlbus/Hub.h"

#include <algorithm>

#include <kqappsession/Error.h>
#include <kqappsession/XMLBusClient.h>

#include "libs/xmlbus/BusNames.h"
#include "platform/Crypto.h"
#include "platform/Machine.h"

namespace kq {
namespace {

// Connections that were refused and have not ended yet take a place of the listener's.
constexpr std::int32_t kOnTheirWayOut = 128;
constexpr std::int32_t kMostPeers = 1'000'000;
constexpr Milliseconds kLongestGreeting = std::chrono::hours(1);

bool IsLoopback(const std::string& address) {
    const auto of_a_number = [](char c) { return c == '.' || (c >= '0' && c <= '9'); };
    return address == "::1" ||
           (address.starts_with("127.") && std::all_of(address.begin(), address.end(), of_a_number));
}

}  // namespace

Hub::Hub(PlatformPtr platform) : platform_(RequirePlatform(std::move(platform), "A hub")) {}

Hub::~Hub() {
    Stop();
}

void Hub::SetLimits(const Limits& limits) {
    const auto is_number = [](std::int32_t peers) { return peers >= 1 && peers <= kMostPeers; };
    if (!is_number(limits.peers) || !is_number(limits.greeting_peers)) {
        Raise(RuntimeError::InvalidProcedureCall, "A hub has 1 to 1,000,000 peers");
    }
    if (limits.greeting_time < Milliseconds(1) || limits.greeting_time > kLongestGreeting) {
        Raise(RuntimeError::InvalidProcedureCall, "The greeting time of a hub is 1 ms to 1 hour");
    }
    limits_ = limits;
}

void Hub::Listen(const std::string& address, std::int32_t port, const std::string& key) {
    if (Listening()) Raise(RuntimeError::InvalidProcedureCall, "The hub is already listening");
    const std::string local = address == "localhost" ? "127.0.0.1" : address;
    if (key.empty() && !IsLoopback(local)) {
        Raise(RuntimeError::InvalidProcedureCall,
              "A hub without a key listens on loopback only: give it a key, or the address 127.0.0.1");
    }
    const auto listener = Listener::Create(platform_);
    APLimits limits;
    limits.frame = limits_.greeting_frame;
    limits.admitted_frame = XMLBusClient::kMaxMessage;
    limits.unsent = limits_.unsent;
    limits.reading_stops =
        limits_.unsent;  // what waits for a peer are the messages of others, not its answers
    limits.first_frame = Milliseconds(0);  // the hub has a deadline of its own, and says so when it passes
    listener->SetLimits(limits);
    listener->SetMaxClients(limits_.peers + limits_.greeting_peers + kOnTheirWayOut);
    listener->SetReceiveType(DataType::Any);
    listener->SetKeepAlive(true);
    listener->Accepted.Connect(owner_, [this](const auto& connection) { OnAccepted(connection); });
    listener->Receive.Connect(owner_,
                              [this](const auto& connection, const Block& b) { OnBlock(connection, b); });
    listener->Disconnected.Connect(owner_, [this](const auto& connection) { OnGone(connection); });
    listener->ClientError.Connect(owner_,
                                  [this](const auto& connection, std::int32_t, const std::string& text) {
                                      NoteSoon("Bus peer " + connection->RemoteAddress() + ": " + text);
                                  });
    listener->Error.Connect(owner_,
                            [this](std::int32_t, const std::string& text) { NoteSoon("Bus hub: " + text); });
    listener->Listen(port, local);
    listener_ = listener;
    key_ = Secret(std::string_view(key));
}

void Hub::Stop() {
    owner_.Cancel();
    while (!peers_.empty())
        Remove(peers_.begin()->first);
    if (const auto listener = std::exchange(listener_, nullptr)) listener->StopListening(true);
}

bool Hub::Listening() const {
    return listener_ != nullptr;
}

std::int32_t Hub::Port() const {
    return listener_ != nullptr ? listener_->Port() : 0;
}

std::string Hub::BoundAddress() const {
    return listener_ != nullptr ? listener_->BoundAddress() : std::string();
}

HubStatistics Hub::Statistics() const {
    auto statistics = statistics_;
    statistics.peers = PeersIn(true);
    return statistics;
}

Hub::PeerId Hub::IdOf(const Listener::ClientPtr& connection) const {
    const auto found = ids_.find(connection->Identifier());
    return found == ids_.end() ? 0 : found->second;
}

void Hub::OnBlock(const Listener::ClientPtr& connection, const Block& block) {
    const PeerId id = IdOf(connection);
    const auto peer = peers_.find(id);
    if (peer == peers_.end()) return;
    if (block.data_type != DataType::XML) return Refuse(id, "The bus carries XML messages only");
    if (!block.tag.empty()) {
        if (peer->second.stage != Stage::Admitted) return Refuse(id, "The key was not proven");
        return OnMessage(id, block);
    }
    XMLMessage message;
    try {
        message = ParseBusControl(block.data);
    } catch (const Error& error) {
        return Refuse(id, error.Description());
    }
    OnControl(id, message);
}

void Hub::OnControl(PeerId id, const XMLMessage& message) {
    const Stage stage = peers_.at(id).stage;
    const std::string& type = message.Type();
    if (type == BusHello::kType && stage == Stage::Connected) {
        OnHello(id, message);
    } else if (type == BusProof::kType && stage == Stage::Challenged) {
        OnProof(id, message);
    } else if ((type == BusSubscribe::kType || type == BusUnsubscribe::kType) && stage == Stage::Admitted) {
        OnSubscription(id, message);
    } else {
        Refuse(id, "Unexpected message");
    }
}

void Hub::OnSubscription(PeerId id, const XMLMessage& message) {
    // The end of a subscription lacks the option only.
    const auto asked = BusSubscribe::Read(message);
    std::string name;
    try {
        name = BusNameOf({asked.Type, asked.SubType});
    } catch (const Error& error) {
        return Refuse(id, error.Description());
    }
    const bool reached = routes_.Reaches(name);
    if (message.Type() == BusUnsubscribe::kType) {
        routes_.Unsubscribe(id, name);
        if (reached && !routes_.Reaches(name)) ReachableSoon(name, false);
        return;
    }
    if (asked.Option != 0 && asked.Option != 1) return Refuse(id, "Unknown option of a subscription");
    if (routes_.SubscriptionsOf(id) >= limits_.subscriptions) return Refuse(id, "Too many subscriptions");
    routes_.Subscribe(id, name, static_cast<BusSubscription>(asked.Option));
    if (!reached) ReachableSoon(name, true);
}

void Hub::OnMessage(PeerId id, const Block& block) {
    if (!BusAddressOf(block.tag)) return Refuse(id, "This is not an address of the bus");
    ++peers_.at(id).taken;
    ++statistics_.taken;
    TellTakenSoon(id);
    const auto copies = routes_.Deliver(block.tag, [&](PeerId receiver) { return Hand(receiver, block); });
    statistics_.delivered += static_cast<std::int64_t>(copies);
    statistics_.dropped += copies == 0 ? 1 : 0;
}

bool Hub::Hand(PeerId id, const Block& block) {
    const auto found = peers_.find(id);
    if (found == peers_.end()) return false;
    const auto connection = found->second.connection;
    try {
        connection->SendText(block.data, block.tag);
        return true;
    } catch (const Error& error) {
        const std::string remote = connection->RemoteAddress();
        Remove(id);
        connection->Disconnect();
        NoteSoon("Bus peer " + remote + " was cut: " + error.Description());
        return false;
    }
}

void Hub::Send(PeerId id, const XMLMessage& control) {
    const auto connection = peers_.at(id).connection;
    try {
        connection->SendText(control.ToBusXML());
    } catch (const Error&) {
        connection->Disconnect();  // its Disconnected event removes the peer
    }
}

// One count answers all messages of one turn of the loop.
void Hub::TellTakenSoon(PeerId id) {
    if (std::exchange(peers_.at(id).telling, true)) return;
    platform_->Loop()->Post(owner_.Bind([this, id] {
        const auto peer = peers_.find(id);
        if (peer == peers_.end()) return;
        peer->second.telling = false;
        Send(id, BusTaken{peer->second.taken}.Build());
    }));
}

void Hub::Refuse(PeerId id, const std::string& text) {
    const auto connection = peers_.at(id).connection;
    ++statistics_.refused;
    Send(id, BusRefused{text}.Build());
    Remove(id);
    const std::string remote = connection->RemoteAddress();
    connection->Disconnect();
    NoteSoon("Bus peer " + remote + " was refused: " + text);
}

void Hub::NoteSoon(const std::string& text) {
    platform_->Loop()->Post(owner_.Bind([this, text] { Note(text); }));
}

void Hub::ReachableSoon(const std::string& name, bool there) {
    const auto address = BusAddressOf(name).value();
    platform_->Loop()->Post(owner_.Bind([this, address, there] { Reachable(address, there); }));
}

void Hub::OnGone(const Listener::ClientPtr& connection) {
    Remove(IdOf(connection));
}

void Hub::Remove(PeerId id) {
    const auto found = peers_.find(id);
    if (found == peers_.end()) return;
    const auto& peer = found->second;
    if (peer.stage == Stage::Admitted) {
        remembered_.emplace_back(peer.greeting.client, peer.taken);
        if (remembered_.size() > limits_.remembered) remembered_.pop_front();
    }
    platform_->Loop()->CancelTimer(peer.deadline);
    ids_.erase(peer.connection->Identifier());
    const auto names = routes_.NamesOf(id);
    routes_.Remove(id);
    for (const auto& name : names) {
        if (!routes_.Reaches(name)) ReachableSoon(name, false);
    }
    peers_.erase(found);
}

}  // namespace kq
