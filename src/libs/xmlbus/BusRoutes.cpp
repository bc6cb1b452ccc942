// The turn among sharing subscribers goes by peer number, so it stays fair when peers come and go between
// messages.
#include "libs/xmlbus/BusRoutes.h"

#include <algorithm>
#include <vector>

namespace kq {

void BusRoutes::Subscribe(PeerId peer, const std::string& name, BusSubscription option) {
    auto& subscribers = addresses_[name];
    const bool shared = option == BusSubscription::Shared;
    (shared ? subscribers.ordinary : subscribers.shared).erase(peer);
    (shared ? subscribers.shared : subscribers.ordinary).insert(peer);
    peers_[peer].insert(name);
}

void BusRoutes::Unsubscribe(PeerId peer, const std::string& name) {
    const auto found = addresses_.find(name);
    if (found == addresses_.end()) return;
    auto& [ordinary, shared, last] = found->second;
    ordinary.erase(peer);
    shared.erase(peer);
    if (ordinary.empty() && shared.empty()) addresses_.erase(found);
    const auto names = peers_.find(peer);
    if (names == peers_.end()) return;
    names->second.erase(name);
    if (names->second.empty()) peers_.erase(names);
}

void BusRoutes::Remove(PeerId peer) {
    const auto names = NamesOf(peer);
    for (const auto& name : names)
        Unsubscribe(peer, name);
}

const std::set<std::string>& BusRoutes::NamesOf(PeerId peer) const {
    static const std::set<std::string> none;
    const auto found = peers_.find(peer);
    return found == peers_.end() ? none : found->second;
}

std::size_t BusRoutes::Deliver(std::string_view name, const std::function<bool(PeerId)>& deliver) {
    const auto found = addresses_.find(name);
    if (found == addresses_.end()) return 0;
    const auto& [ordinary, shared, last] = found->second;
    const std::vector<PeerId> all(ordinary.begin(), ordinary.end());
    const auto turn = shared.upper_bound(last);
    std::vector<PeerId> candidates(turn, shared.end());
    candidates.insert(candidates.end(), shared.begin(), turn);

    std::size_t taken = 0;
    for (const PeerId peer : all)
        taken += deliver(peer) ? 1 : 0;
    const auto took = std::find_if(candidates.begin(), candidates.end(), deliver);
    if (took == candidates.end()) return taken;
    if (const auto again = addresses_.find(name); again != addresses_.end())
        again->second.last_shared = *took;
    return taken + 1;
}

}  // namespace kq
