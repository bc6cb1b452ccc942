// Who hears which address: the routing that the hub and the bus inside a process share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include <kqappsession/XMLBusClient.h>

namespace kq {

class BusRoutes {
 public:
    using PeerId = std::uint64_t;

    // Names are those of BusNameOf. Subscribing again changes the option.
    void Subscribe(PeerId peer, const std::string& name, BusSubscription option);
    void Unsubscribe(PeerId peer, const std::string& name);
    void Remove(PeerId peer);
    std::size_t SubscriptionsOf(PeerId peer) const { return NamesOf(peer).size(); }
    const std::set<std::string>& NamesOf(PeerId peer) const;
    // Whether anybody hears this address.
    bool Reaches(std::string_view name) const { return addresses_.contains(name); }

    // Offers a message for this address to every ordinary subscriber and, in turn, to those that share it
    // until one takes it. `deliver` returns whether the peer took it, and may change the subscriptions.
    // Returns how many did.
    std::size_t Deliver(std::string_view name, const std::function<bool(PeerId)>& deliver);

 private:
    struct Subscribers {
        std::set<PeerId> ordinary;
        std::set<PeerId> shared;
        PeerId last_shared = 0;  // whose turn it was; it may have gone since
    };

    std::map<std::string, Subscribers, std::less<>> addresses_;
    std::map<PeerId, std::set<std::string>> peers_;
};

}  // namespace kq
