// "ASPasswordChangeRequest": changes the password of a user who is logged in.
#include "zeb/requests/ClientRequests.h"

namespace kq::zeb {

void ClientRequests::ChangePassword(const XMLMessage& message, const PeerPtr& peer) {
    using Response = ASPasswordChangeResponse;
    Guard<Response>(peer, [&] {
        auto request = ASPasswordChangeRequest::Read(message);
        ShortenLogin(request.LoginID);
        ShortenPassword(request.OldPassword);
        ShortenPassword(request.NewPassword);
        const std::string login = request.LoginID;
        if (!FindUser(login, request.SessionID, request.AppID)) {
            Refuse<Response>(peer, Refusal::NoSession, login);
            return;
        }
        CheckPassword(login, request.OldPassword, request.NewPassword, [=, this](const Checked& checked) {
            Guard<Response>(peer, [&] {
                auto refusal = checked.refusal;
                if (refusal == Refusal::None)
                    refusal = Settle(login, [&] { return StoreNewPassword(checked); });
                if (refusal != Refusal::None) {
                    Refuse<Response>(peer, refusal, login);
                    return;
                }
                services_.log.info("Password of {} changed from {}", ForLog(login), peer->Name());
                Response response;
                SetOutcome(response, Refusal::None);
                peer->Answer(response.Build());
            });
        });
    });
}

Refusal ClientRequests::StoreNewPassword(const Checked& checked) {
    Store::Transaction transaction(services_.store);
    if (!services_.accounts.ChangePassword(checked.account.uid, checked.account.password_hash,
                                           checked.new_hash))
        return Refusal::UnknownUser;
    transaction.Commit();
    return Refusal::None;
}

}  // namespace kq::zeb
