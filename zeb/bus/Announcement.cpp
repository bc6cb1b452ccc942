// "ASBroadcastInfo" and "RequestBroadcastAS": which application servers are there and which sessions they
// have.
#include <charconv>

#include "base/Convert.h"
#include "zeb/bus/ServerMessages.h"

namespace kq::zeb {
namespace {

const BusAddress kAllServers{"AS", "Broadcast"};
constexpr std::size_t kMostRemarks = 1'000;

// 0 unless the text is a port from 1 to 65535.
std::int32_t PortOf(const std::string& text) {
    const auto digits = Trim(text);
    std::int32_t port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    return whole && port >= 1 && port <= 65535 ? port : 0;
}

}  // namespace

bool ServerMessages::Handle(const XMLMessage& message) {
    if (message.Type() == RequestASRegistration::kType) {
        Register(message);
    } else if (message.Type() == ASBroadcastInfo::kType) {
        Announce(message);
    } else {
        return false;
    }
    return true;
}

void ServerMessages::Announce(const XMLMessage& message) {
    const auto info = ASBroadcastInfo::Read(message);
    if (!info.ASRequestInfo || !info.ApplicationInfos || !info.ApplicationInfos->ApplicationInfo) {
        services_.log.warn("An announcement without an application is ignored.");
        return;
    }
    const BusAddress server{info.ASRequestInfo->ReturnMsgType, info.ASRequestInfo->ReturnSubType};
    const auto& application = *info.ApplicationInfos->ApplicationInfo;
    if (server.type.empty() || application.AppID.empty()) {
        services_.log.warn("An announcement without a reply address or AppID is ignored.");
        return;
    }
    if (application.InfoState == "C") {
        AnnounceState(server, application);
    } else if (application.InfoState == "E") {
        for (const auto& id : application.Sessions.value_or(std::vector<std::string>())) {
            services_.servers.SessionEnded(server, application.AppID, id);
            services_.sessions.End(id, server);
        }
    } else if (application.InfoState == "D") {
        services_.log.info("Application server for {} at {}:{} stops", ForLog(application.AppID),
                           ForLog(application.Address), ForLog(application.Port));
        services_.servers.Left(server, application.AppID);
        services_.sessions.EndAll(server, application.AppID);
    }
}

void ServerMessages::AnnounceState(const BusAddress& server, const ApplicationInfo& application) {
    const auto port = PortOf(application.Port);
    if (port == 0) return RemarkOnPort(server, application);
    remarked_.erase({server, application.AppID});
    const auto arrival = services_.servers.Announced(server, application, port);
    for (const auto& old : arrival.replaced) {
        services_.log.info("Application server for {} at {}:{} was replaced by another process",
                           ForLog(old.app_id), ForLog(old.address), old.port);
        services_.sessions.EndAll(old.reply, old.app_id);
    }
    if (arrival.fresh) {
        services_.log.info("Application server for {} at {}:{}", ForLog(application.AppID),
                           ForLog(application.Address), port);
    }
    if (application.Sessions) services_.sessions.Announced(server, application.AppID, *application.Sessions);
}

void ServerMessages::RemarkOnPort(const BusAddress& server, const ApplicationInfo& application) {
    if (remarked_.size() >= kMostRemarks) remarked_.clear();
    if (!remarked_.insert({server, application.AppID}).second) return;
    services_.log.warn("The announcements of {} at {} are ignored: {} is not a port",
                       ForLog(application.AppID), ForLog(application.Address), ForLog(application.Port));
}

void ServerMessages::Reachable(const BusAddress& reply, bool there) {
    const auto servers = services_.servers.Reachable(reply, there);
    for (const auto& server : servers) {
        services_.log.info("Application server for {} at {}:{} {}", ForLog(server.app_id),
                           ForLog(server.address), server.port,
                           there ? "is back on the bus" : "has lost its bus connection and is not used");
    }
    if (there && !servers.empty()) AskForAnnouncements(reply);
}

void ServerMessages::AskForAnnouncements() {
    AskForAnnouncements(kAllServers);
}

void ServerMessages::AskForAnnouncements(const BusAddress& destination) {
    auto request = RequestBroadcastAS().Build();
    request.SetDestination(destination);
    services_.send_on_bus(request);
}

void ServerMessages::Tidy() {
    for (const auto& server : services_.servers.DropSilent()) {
        services_.log.warn("Application server for {} at {}:{} is silent and no longer used",
                           ForLog(server.app_id), ForLog(server.address), server.port);
    }
    services_.sessions.Purge();
}

}  // namespace kq::zeb
