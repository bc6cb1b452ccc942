// Announcements as they come, and the choice among the servers that are there.
#include "zeb/ServerRegistry.h"

#include <algorithm>

#include "base/Convert.h"

namespace kq::zeb {

bool ServerRegistry::Announced(const ASBroadcastInfo& info) {
    const auto& application = *info.ApplicationInfos->ApplicationInfo;
    const BusAddress reply{info.ASRequestInfo->ReturnMsgType, info.ASRequestInfo->ReturnSubType};
    const auto key = std::pair(reply, application.AppID);
    const bool fresh = !servers_.contains(key);
    if (fresh && servers_.size() >= kMaxServers) return false;
    ApplicationServer& server = servers_[key];
    server.reply = reply;
    server.app_id = application.AppID;
    server.address = application.Address;
    server.port = ValLong(application.Port);
    const auto seconds = std::chrono::seconds(ValLong(application.BroadcastInterval));
    server.interval = std::min<Milliseconds>(seconds, kMaxInterval);
    server.interface_versions = application.InterfaceVersions;
    server.heard = loop_->Now();
    if (application.Sessions) {
        server.sessions = {application.Sessions->begin(), application.Sessions->end()};
        server.promised = 0;
    }
    return fresh;
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
    return found != servers_.end() && !Silent(found->second);
}

bool ServerRegistry::Serves(const std::string& app_id, const std::string& interface_version,
                            const Restriction& restriction) const {
    return std::any_of(servers_.begin(), servers_.end(), [&](const auto& entry) {
        const ApplicationServer& server = entry.second;
        const auto& versions = server.interface_versions;
        return server.app_id == app_id && restriction.Allows(server) && !Silent(server) &&
               std::find(versions.begin(), versions.end(), interface_version) != versions.end();
    });
}

bool ServerRegistry::HasServerFor(const std::string& app_id, const Restriction& restriction) const {
    return std::any_of(servers_.begin(), servers_.end(), [&](const auto& entry) {
        const ApplicationServer& server = entry.second;
        return server.app_id == app_id && restriction.Allows(server) && !Silent(server);
    });
}

std::optional<std::int32_t> ServerRegistry::ChoosePort(const std::string& app_id,
                                                       const Restriction& restriction) {
    ApplicationServer* best = nullptr;
    for (auto& [key, server] : servers_) {
        if (server.app_id != app_id || !restriction.Allows(server) || Silent(server)) continue;
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
