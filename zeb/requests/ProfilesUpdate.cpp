// "ASProfilesUpdate": a client stores its user's profiles.
#include "zeb/requests/ClientRequests.h"

namespace kq::zeb {

std::optional<Account> ClientRequests::FindUser(const std::string& login, const std::string& session_id,
                                                const std::string& app_id) {
    const Session* session = services_.sessions.Find(session_id);
    if (!session || session->app_id != app_id) return std::nullopt;
    auto account = services_.accounts.Find(session->user_uid);
    if (!account || account->login != login || account->disabled) return std::nullopt;
    return account;
}

void ClientRequests::UpdateProfiles(const XMLMessage& message, const PeerPtr& peer) {
    using Response = ASProfilesUpdateResponse;
    Guard<Response>(peer, [&] {
        const auto request = ASProfilesUpdate::Read(message);
        const auto account = FindUser(request.LoginID, request.SessionID, request.AppID);
        if (!account || request.UserUID != std::to_string(account->uid)) {
            Refuse<Response>(peer, Refusal::NoSession, request.LoginID);
            return;
        }
        const auto refusal = services_.user_data.SetProfiles(account->uid, request.AppID, request.Profiles);
        if (refusal != Refusal::None) {
            Refuse<Response>(peer, refusal, request.LoginID);
            return;
        }
        services_.log.info("Profiles of {} for {} stored from {}", ForLog(request.LoginID),
                           ForLog(request.AppID), peer->Name());
        Response response;
        SetOutcome(response, Refusal::None);
        peer->Answer(response.Build());
    });
}

}  // namespace kq::zeb
