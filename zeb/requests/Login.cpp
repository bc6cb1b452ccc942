// "ASLoginRequest": checks the user, chooses the application server and collects the user's data.
//
// The new password and the session are stored in one transaction, which is committed when the answer is
// complete. A login that is refused or fails leaves no session behind, and the old password remains valid.
#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "zeb/requests/ClientRequests.h"
#include "zeb/store/SessionRecord.h"

namespace kq::zeb {

void ClientRequests::Login(const XMLMessage& message, const PeerPtr& peer) {
    using Response = ASLoginResponse;
    Guard<Response>(peer, [&] {
        const auto request = std::make_shared<ASLoginRequest>(ASLoginRequest::Read(message));
        ShortenLogin(request->LoginID);
        ShortenPassword(request->Password);
        ShortenPassword(request->NewPassword);
        static_cast<void>(ValLong(request->RestrictPort));  // raises before the password costs any work
        std::optional<Secret> new_password;
        if (!request->NewPassword.Empty()) new_password = request->NewPassword;
        CheckPassword(request->LoginID, request->Password, new_password, [=, this](const Checked& checked) {
            Guard<Response>(peer, [&] {
                if (checked.refusal != Refusal::None) {
                    Refuse<Response>(peer, checked.refusal, request->LoginID);
                    return;
                }
                const bool taken = ReadRestriction(peer, *request, [=, this](const Restriction& restriction) {
                    Guard<Response>(peer, [&] { AnswerLogin(peer, *request, restriction, checked); });
                });
                if (taken) return;
                services_.attempts.Succeeded(request->LoginID);
                Refuse<Response>(peer, Refusal::Busy, request->LoginID);
            });
        });
    });
}

void ClientRequests::AnswerLogin(const PeerPtr& peer, const ASLoginRequest& request,
                                 const Restriction& restriction, const Checked& checked) {
    XMLMessage answer;
    const auto refusal =
        Settle(request.LoginID, [&] { return FinishLogin(request, restriction, checked, answer); });
    if (refusal != Refusal::None) {
        Refuse<ASLoginResponse>(peer, refusal, request.LoginID);
        return;
    }
    services_.log.info("Login of {} to {} from {}", ForLog(request.LoginID), ForLog(request.AppID),
                       peer->Name());
    peer->Admit();
    peer->Answer(answer);
}

Refusal ClientRequests::FinishLogin(const ASLoginRequest& request, const Restriction& restriction,
                                    const Checked& checked, XMLMessage& answer) {
    const bool new_password = !checked.new_hash.empty();
    Store::Transaction transaction(services_.store,
                                   new_password ? Store::Commit::Settled : Store::Commit::Soon);
    Account account = checked.account;
    if (const auto refusal = Recheck(account); refusal != Refusal::None) return refusal;
    if (account.must_change && !new_password) return Refusal::MustChangePassword;
    if (!services_.servers.HasServerFor(request.AppID, restriction)) return Refusal::NoServer;
    if (services_.SessionsUsedUp(account, "")) return Refusal::TooManySessions;
    if (new_password &&
        !services_.accounts.ChangePassword(account.uid, account.password_hash, checked.new_hash))
        return Refusal::UnknownUser;
    const auto session = services_.sessions.Issue(account.uid, request.AppID);

    ASLoginResponse response;
    SetOutcome(response, Refusal::None);
    response.TranslationTable = services_.user_data.TranslationTable(account.language);
    response.Profiles = services_.user_data.Profiles(account.uid, request.AppID);
    if (response.Profiles.size() > UserData::kMaxProfiles) return Refusal::ProfilesTooLarge;
    response.SessionID = session.id;
    response.Port = std::to_string(services_.servers.ChoosePort(request.AppID, restriction).value());
    auto info = DescribeUser(account);
    info.SessionID = session.id;
    response.SessionInfo = info.Build().ToXML();
    answer = response.Build();
    if (const auto size = answer.ToXML().size(); size > UserData::kMaxAnswer)
        throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebd",
                    "answer too large: translation table of language " + account.language + ", " +
                        std::to_string(size) + " bytes in all");
    transaction.Commit();
    services_.sessions.Add(session);
    return Refusal::None;
}

}  // namespace kq::zeb
