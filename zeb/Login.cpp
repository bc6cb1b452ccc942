// "ASLoginRequest": who the user is, where the application server is, and what the client needs of the user.
//
// Everything that can refuse the login is looked at before a new password is stored, so a refused login
// leaves the old one in force.
#include "zeb/ClientRequests.h"
#include "zeb/SessionRecord.h"

namespace kq::zeb {

void ClientRequests::Login(const XMLMessage& message, const PeerPtr& peer) {
    using Response = ASLoginResponse;
    Guard<Response>(peer, [&] {
        const auto request = std::make_shared<ASLoginRequest>(ASLoginRequest::Read(message));
        ShortenLogin(request->LoginID);
        ShortenPassword(request->Password);
        ShortenPassword(request->NewPassword);
        std::optional<Secret> new_password;
        if (!request->NewPassword.Empty()) new_password = request->NewPassword;
        const auto finish = [=, this](const Checked& checked, const Restriction& restriction) {
            Guard<Response>(peer, [&] {
                Response response;
                const auto refusal = checked.refusal != Refusal::None
                                         ? checked.refusal
                                         : FinishLogin(*request, restriction, checked, response);
                if (refusal != Refusal::None) {
                    Refuse<Response>(peer, refusal, request->LoginID);
                    return;
                }
                services_.log.info("Login of {} to {} from {}", ForLog(request->LoginID),
                                   ForLog(request->AppID), peer->Name());
                peer->Admit();
                peer->Answer(response.Build());
            });
        };
        const bool taken = ReadRestriction(
            peer, request->RestrictIP, request->RestrictPort, [=, this](const Restriction& restriction) {
                Guard<Response>(peer, [&] {
                    CheckPassword(request->LoginID, request->Password, new_password,
                                  [=](const Checked& checked) { finish(checked, restriction); });
                });
            });
        if (!taken) Refuse<Response>(peer, Refusal::Busy, request->LoginID);
    });
}

Refusal ClientRequests::FinishLogin(const ASLoginRequest& request, const Restriction& restriction,
                                    const Checked& checked, ASLoginResponse& response) {
    const Account& account = checked.account;
    if (account.must_change && checked.new_hash.empty()) return Refusal::MustChangePassword;
    if (!services_.servers.HasServerFor(request.AppID, restriction)) return Refusal::NoServer;
    if (services_.SessionsUsedUp(account, "")) return Refusal::TooManySessions;
    response.TranslationTable = services_.user_data.TranslationTable(account.language);
    response.Profiles = services_.user_data.Profiles(account.uid, request.AppID);
    if (!checked.new_hash.empty() &&
        !services_.accounts.ChangePassword(account.uid, account.password_hash, checked.new_hash))
        return Refusal::UnknownUser;

    SetOutcome(response, Refusal::None);
    response.SessionID = services_.sessions.Issue(account.uid, request.AppID);
    response.Port = std::to_string(services_.servers.ChoosePort(request.AppID, restriction).value());
    auto info = DescribeUser(account);
    info.SessionID = response.SessionID;
    response.SessionInfo = info.Build().ToXML();
    return Refusal::None;
}

}  // namespace kq::zeb
