// "ASBroadcastInfo" and "RequestBroadcastAS": which application servers are there and which sessions they
// have.
#include "zeb/ServerMessages.h"

namespace kq::zeb {
namespace {

const BusAddress kAllServers{"AS", "Broadcast"};

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
        if (services_.servers.Announced(info))
            services_.log.info("Application server for {} at {}:{}", ForLog(application.AppID),
                               ForLog(application.Address), ForLog(application.Port));
        if (application.Sessions)
            services_.sessions.Announced(server, application.AppID, *application.Sessions);
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

void ServerMessages::AskForAnnouncements() {
    auto request = RequestBroadcastAS().Build();
    request.SetDestination(kAllServers);
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
