// "RequestASRegistration": an application server asks whether a client's session is valid.
#include "zeb/bus/ServerMessages.h"
#include "zeb/store/SessionRecord.h"

namespace kq::zeb {

void ServerMessages::Register(const XMLMessage& message) {
    const auto request = RequestASRegistration::Read(message);
    const BusAddress server{request.ReturnMsgType, request.ReturnSubType};
    if (server.type.empty()) {
        services_.log.warn("A registration request without a reply address is ignored.");
        return;
    }
    ASRegistrationResponse response;
    response.TransID = request.TransID;
    response.ReturnTag = request.ReturnTag;
    SessionInfo info;
    auto refusal = Refusal::Failed;
    try {
        refusal = Confirm(request, info);
    } catch (const std::exception& error) {
        services_.log.error("A registration failed: {}", error.what());
    }
    if (refusal == Refusal::None) {
        services_.log.info("Session of {} registered with {} {}", ForLog(info.LoginID), ForLog(request.AppID),
                           ForLog(server.subtype));
        response.SessionInfo = info;
    } else {
        services_.log.info("Registration with {} {} refused: {} {}", ForLog(request.AppID),
                           ForLog(server.subtype), NumberOf(refusal), SentenceOf(refusal));
        response.ErrorResponse =
            ErrorResponse{std::to_string(NumberOf(refusal)), std::string(SentenceOf(refusal))};
    }
    auto answer = response.Build();
    answer.SetDestination(server);
    services_.send_on_bus(answer);
}

Refusal ServerMessages::Confirm(const RequestASRegistration& request, SessionInfo& info) {
    const BusAddress server{request.ReturnMsgType, request.ReturnSubType};
    const Session* session = services_.sessions.Find(request.SessionID);
    if (!session || session->app_id != request.AppID) return Refusal::NoSession;
    const auto account = services_.accounts.Find(session->user_uid);
    if (!account) return Refusal::NoSession;
    if (account->disabled) return Refusal::Disabled;
    if (services_.SessionsUsedUp(*account, session->id)) return Refusal::TooManySessions;
    // The same connection asking again is no second place.
    const bool same_place = session->server == server && session->connection == request.TransID;
    if (session->Registered() && !same_place && services_.servers.IsLive(session->server, session->app_id))
        OrderLogout(*session);
    services_.sessions.Register(request.SessionID, server, request.TransID);
    info = DescribeUser(*account);
    info.SessionID = request.SessionID;
    return Refusal::None;
}

void ServerMessages::OrderLogout(const Session& session) {
    ASLogoutUser order;
    order.SessionIDs.emplace({session.id});
    auto message = order.Build();
    message.SetDestination(session.server);
    services_.send_on_bus(message);
}

}  // namespace kq::zeb
