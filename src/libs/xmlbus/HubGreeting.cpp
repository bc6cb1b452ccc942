// Whom the hub lets in: the way of a peer from its connection to its place, and the shares of strangers and
// admitted peers.
#include <algorithm>

#include "libs/xmlbus/Hub.h"
#include "platform/Crypto.h"
#include "platform/Machine.h"

namespace kq {
namespace {

bool IsRandomText(const std::string& text) {
    const auto plain = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
    return !text.empty() && text.size() <= kMaxBusRandomText && std::all_of(text.begin(), text.end(), plain);
}

}  // namespace

std::int64_t Hub::PeersIn(bool admitted) const {
    return std::count_if(peers_.begin(), peers_.end(), [admitted](const auto& peer) {
        return (peer.second.stage == Stage::Admitted) == admitted;
    });
}

// Strangers have a share of their own, and not for long: whoever knows the key proves it sooner than they can
// fill it.
void Hub::OnAccepted(const Listener::ClientPtr& connection) {
    if (PeersIn(false) >= limits_.greeting_peers) {
        const auto oldest = std::find_if(peers_.begin(), peers_.end(), [](const auto& peer) {
            return peer.second.stage != Stage::Admitted;
        });
        Refuse(oldest->first, "Too many peers have not proven the key");
    }
    const PeerId id = ++last_id_;
    connection->SetSendType(DataType::XML);
    auto& peer = peers_[id];
    peer.connection = connection;
    peer.deadline = platform_->Loop()->StartTimer(
        limits_.greeting_time, owner_.Bind([this, id] { Refuse(id, "The key was not proven in time"); }));
    ids_[connection->Identifier()] = id;
}

void Hub::OnHello(PeerId id, const XMLMessage& message) {
    auto& peer = peers_.at(id);
    const auto hello = BusHello::Read(message);
    peer.greeting = {hello.Client, hello.Nonce, platform_->Parts().crypto->RandomHex(kBusRandomBytes)};
    peer.taken = hello.Taken;
    if (!IsRandomText(peer.greeting.client) || !IsRandomText(peer.greeting.nonce) || peer.taken < 0) {
        return Refuse(id, "The greeting is malformed");
    }
    peer.stage = Stage::Challenged;
    Send(id, BusChallenge{peer.greeting.challenge}.Build());
}

void Hub::OnProof(PeerId id, const XMLMessage& message) {
    auto& peer = peers_.at(id);
    const auto& crypto = *platform_->Parts().crypto;
    const auto proof = BusProofOf(crypto, key_.Reveal(), kPeerRole, peer.greeting);
    if (!crypto.EqualConstantTime(proof, BusProof::Read(message).Proof)) return Refuse(id, "Wrong key");
    if (PeersIn(true) >= limits_.peers && OlderPlaceOf(peer.greeting.client) == peers_.end()) {
        return Refuse(id, "Too many peers");
    }
    ReplaceOlderPlace(id);
    platform_->Loop()->CancelTimer(peer.deadline);
    peer.connection->Admit();
    peer.stage = Stage::Admitted;
    Send(id, BusWelcome{BusProofOf(crypto, key_.Reveal(), kHubRole, peer.greeting), peer.taken}.Build());
}

Hub::Peers::iterator Hub::OlderPlaceOf(const std::string& client) {
    return std::find_if(peers_.begin(), peers_.end(), [&](const auto& other) {
        return other.second.stage == Stage::Admitted && other.second.greeting.client == client;
    });
}

// A client that comes back before its old connection was seen to end takes the place over, and its count with
// it.
void Hub::ReplaceOlderPlace(PeerId id) {
    auto& peer = peers_.at(id);
    const auto older = OlderPlaceOf(peer.greeting.client);
    if (older != peers_.end()) {
        const auto connection = older->second.connection;
        Remove(older->first);
        connection->Disconnect();
    }
    const auto known = std::find_if(remembered_.begin(), remembered_.end(),
                                    [&](const auto& entry) { return entry.first == peer.greeting.client; });
    if (known == remembered_.end()) return;
    peer.taken = std::max(peer.taken, known->second);
    remembered_.erase(known);
}

}  // namespace kq
