// Announcements, and the choice among the available servers.
#include "zeb/store/ServerRegistry.h"

#include <algorithm>
#include <chrono>

#include <kqappsession/Error.h>

#include "base/Convert.h"

namespace kq::zeb {
namespace {

// Seconds as text. What is no number is 0, what is beyond all numbers the longest.
Milliseconds IntervalOf(const std::string& text) {
    try {
        return std::min<Milliseconds>(std::chrono::seconds(ValLong(text)), ServerRegistry::kMaxInterval);
    } catch (const Error&) {
        return ServerRegistry::kMaxInterval;
    }
}

}  // namespace

ServerRegistry::Arrival ServerRegistry::Announced(const BusAddress& reply, const ApplicationInfo& application,
                                                  std::int32_t port) {
    const auto key = std::pair(reply, application.AppID);
    const auto known = servers_.find(key);
    Arrival arrival;
    arrival.fresh = known == servers_.end();
    const bool off_the_bus = lost_.contains(reply);
    const bool moved =
        arrival.fresh || known->second.address != application.Address || known->second.port != port;
    // An announcement of the former process may arrive after the first one of the new process.
    if (moved && !off_the_bus) arrival.replaced = RemoveOthersAt(key, application.Address, port);
    if (arrival.fresh && servers_.size() >= kMaxServers) {
        arrival.fresh = false;
        return arrival;
    }
    ApplicationServer& server = servers_[key];
    server.reply = reply;
    server.app_id = application.AppID;
    server.address = application.Address;
    server.port = port;
    server.interval = IntervalOf(application.BroadcastInterval);
    server.interface_versions = application.InterfaceVersions;
    server.heard = loop_->Now();
    server.off_the_bus = off_the_bus;
    if (application.Sessions) {
        server.sessions = {application.Sessions->begin(), application.Sessions->end()};
        server.promised = 0;
    }
    return arrival;
}

// Two processes cannot listen on one port of an address, so the former one has ended. Without an address
// nothing can be said about that.
std::vector<ApplicationServer> ServerRegistry::RemoveOthersAt(const Key& key, const std::string& address,
                                                              std::int32_t port) {
    std::vector<ApplicationServer> removed;
    if (address.empty()) return removed;
    for (auto it = servers_.begin(); it != servers_.end();) {
        const ApplicationServer& other = it->second;
        const bool same_place = other.app_id == key.second && other.address == address && other.port == port;
        if (same_place && it->first != key) {
            removed.push_back(std::move(it->second));
            it = servers_.erase(it);
        } else {
            ++it;
        }
    }
    return removed;
}

std::vector<ApplicationServer> ServerRegistry::Reachable(const BusAddress& reply, bool there) {
    std::vector<ApplicationServer> changed;
    if (there) {
        lost_.erase(reply);
    } else if (lost_.size() < kMaxServers) {
        lost_[reply] = loop_->Now();
    }
    for (auto it = servers_.lower_bound(Key(reply, std::string()));
         it != servers_.end() && it->first.first == reply; ++it) {
        if (std::exchange(it->second.off_the_bus, !there) == there) changed.push_back(it->second);
    }
    return changed;
}

void ServerRegistry::SessionEnded(const BusAddress& reply, const std::string& app_id,
                                  const std::string& session_id) {
    const auto found = servers_.find(std::pair(reply, app_id));
    if (found == servers_.end()) return;
    found->second.heard = loop_->Now();
    found->second.sessions.erase(session_id);
}

void ServerRegistry::Left(const BusAddress& reply, const std::string& app_id) {
    servers_.erase(std::pair(reply, app_id));
}

bool ServerRegistry::Silent(const ApplicationServer& server) const {
    const auto interval = server.interval.count() > 0 ? server.interval : kAskInterval;
    return loop_->Now() - server.heard > 3 * interval + kSlack;
}

std::vector<ApplicationServer> ServerRegistry::DropSilent() {
    std::erase_if(lost_, [this](const auto& entry) { return loop_->Now() - entry.second > kOnTheWay; });
    std::vector<ApplicationServer> silent;
    for (auto it = servers_.begin(); it != servers_.end();) {
        if (Silent(it->second)) {
            silent.push_back(std::move(it->second));
            it = servers_.erase(it);
        } else {
            ++it;
        }
    }
    return silent;
}

bool ServerRegistry::IsLive(const BusAddress& reply, const std::string& app_id) const {
    const auto found = servers_.find(std::pair(reply, app_id));
    return found != servers_.end() && Usable(found->second);
}

bool ServerRegistry::Serves(const std::string& app_id, const std::string& interface_version,
                            const Restriction& restriction) const {
    return std::any_of(servers_.begin(), servers_.end(), [&](const auto& entry) {
        const ApplicationServer& server = entry.second;
        const auto& versions = server.interface_versions;
        return server.app_id == app_id && restriction.Allows(server) && Usable(server) &&
               std::find(versions.begin(), versions.end(), interface_version) != versions.end();
    });
}

bool ServerRegistry::HasServerFor(const std::string& app_id, const Restriction& restriction) const {
    return std::any_of(servers_.begin(), servers_.end(), [&](const auto& entry) {
        const ApplicationServer& server = entry.second;
        return server.app_id == app_id && restriction.Allows(server) && Usable(server);
    });
}

std::optional<std::int32_t> ServerRegistry::ChoosePort(const std::string& app_id,
                                                       const Restriction& restriction) {
    ApplicationServer* best = nullptr;
    for (auto& [key, server] : servers_) {
        if (server.app_id != app_id || !restriction.Allows(server) || !Usable(server)) continue;
        if (!best || server.Load() < best->Load()) best = &server;
    }
    if (!best) return std::nullopt;
    ++best->promised;
    return best->port;
}

bool ServerRegistry::SomeMustBeAsked() const {
    return std::any_of(servers_.begin(), servers_.end(),
                       [](const auto& entry) { return entry.second.interval.count() <= 0; });
}

}  // namespace kq::zeb
