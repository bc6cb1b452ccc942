#include "libs/appprotocol/Strangers.h"

#include <algorithm>
#include <vector>

#include "base/Convert.h"

namespace kq {
namespace {

constexpr std::size_t kMany = 16;  // strangers of one address
constexpr std::int32_t kTooManyConnections = 10024;
constexpr std::size_t kGroups = 8;  // of an IPv6 address
constexpr std::size_t kNetworkGroups = 4;

std::vector<std::string> GroupsOf(const std::string& text) {
    return text.empty() ? std::vector<std::string>() : Split(text, ':');
}

// What counts as one address: an IPv4 address, also when it is written as an IPv6 one; of another IPv6
// address the first 64 bits, since whoever has one address of such a network has all of them.
std::string NetworkOf(const std::string& address) {
    if (address.find(':') == std::string::npos) return address;
    if (address.find('.') != std::string::npos) return address.substr(address.rfind(':') + 1);
    const auto gap = address.find("::");
    auto groups = GroupsOf(address.substr(0, gap));
    if (gap != std::string::npos) {
        const auto behind = GroupsOf(address.substr(gap + 2));
        groups.resize(std::max(groups.size(), kGroups - std::min(kGroups, behind.size())), "0");
        groups.insert(groups.end(), behind.begin(), behind.end());
    }
    groups.resize(kNetworkGroups, "0");
    std::string network;
    for (const auto& group : groups)
        network += group + ":";
    return network;
}

}  // namespace

Strangers::Place::Place(std::shared_ptr<Strangers> strangers, const std::string& address, Cut cut)
    : strangers_(std::move(strangers)),
      network_(NetworkOf(address)),
      cut_(std::move(cut)),
      number_(++strangers_->last_number_) {
    auto& places = strangers_->by_network_[network_];
    at_ = places.insert(places.end(), this);
}

Strangers::Place::~Place() {
    strangers_->Hold(*this, 0);
    const auto places = strangers_->by_network_.find(network_);
    places->second.erase(at_);
    if (places->second.empty()) strangers_->by_network_.erase(places);
}

void Strangers::Place::Holds(std::size_t bytes) {
    const auto strangers = strangers_;  // this place may be cut
    strangers->Hold(*this, bytes);
    while (strangers->bytes_ > strangers->most_bytes) {
        const Cut cut = strangers->holders_.rbegin()->second->cut_;
        cut(static_cast<std::int32_t>(NetError::NoBufferSpace),
            "The connections that are not admitted hold more than " + std::to_string(strangers->most_bytes) +
                " bytes");
    }
}

void Strangers::Hold(Place& place, std::size_t bytes) {
    if (place.bytes_ == bytes) return;
    holders_.erase(place.Rank());
    bytes_ = bytes_ - place.bytes_ + bytes;
    place.bytes_ = bytes;
    if (bytes > 0) holders_.emplace(place.Rank(), &place);
}

std::size_t Strangers::CountOf(const std::string& address) const {
    const auto places = by_network_.find(NetworkOf(address));
    return places == by_network_.end() ? 0 : places->second.size();
}

bool Strangers::MakeRoom() {
    const auto busiest =
        std::ranges::max_element(by_network_, {}, [](const auto& network) { return network.second.size(); });
    if (busiest == by_network_.end() || busiest->second.size() < kMany) return false;
    const Cut cut = busiest->second.front()->cut_;
    cut(kTooManyConnections, "The connection, which is not admitted, was closed to make room for others");
    return true;
}

}  // namespace kq
