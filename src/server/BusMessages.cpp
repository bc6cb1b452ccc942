// What the bus says: answers of the login server to what was relayed and asked, its orders to log users out,
// its wish to hear all sessions.
//
// One handler for each type. An error in a handler ends it and is reported to nobody, XMLBusReceive included;
// the message counts as handled from the moment on that its work is done. An answer counts once, and only for
// a request that is open; any other is handled, and nothing comes of it but a report.
#include <algorithm>
#include <exception>

#include "base/Convert.h"
#include "messages/TransactionId.h"
#include "server/KQAppSessServerImpl.h"
#include "session/SessionRecords.h"

namespace kq {

KQAppSessServer::Impl::Handler KQAppSessServer::Impl::HandlerOf(std::string_view type) {
    struct Row {
        std::string_view type;
        Handler handler;
    };
    static constexpr Row kRows[] = {
        {RequestBroadcastAS::kType, &Impl::OnRequestBroadcastAS},
        {ASRegistrationResponse::kType, &Impl::OnASRegistrationResponse},
        {ASLogoutUser::kType, &Impl::OnASLogoutUser},
        {ASValidateClientResponse::kType, &Impl::OnRelayedResponse},
        {ASLoginResponse::kType, &Impl::OnRelayedResponse},
        {ASPasswordChangeResponse::kType, &Impl::OnRelayedResponse},
        {ASProfilesUpdateResponse::kType, &Impl::OnRelayedResponse},
    };
    const auto* row = std::ranges::find(kRows, type, &Row::type);
    return row == std::end(kRows) ? nullptr : row->handler;
}

void KQAppSessServer::Impl::mClient_ReceiveMessage(const MessagePtr& message, bool& handled) {
    const auto self = shared_from_this();
    const Handler handler = HandlerOf(message->Type());
    if (handler != nullptr) IgnoreErrors([&] { (this->*handler)(message, handled); });
}

void KQAppSessServer::Impl::OnRequestBroadcastAS(const MessagePtr& message, bool& handled) {
    if (initialized) SendSessionList();
    handled = true;
    Raise(&KQAppSessServer::XMLBusReceive, message, 0, "");
}

std::optional<OpenRequest> KQAppSessServer::Impl::TakeOpen(const XMLMessage& answer,
                                                           const std::string& client,
                                                           const std::string& session_id) {
    auto request = open_.Take(client, answer.Type(), session_id, answer.Field(kReturnTag));
    if (!request && ConnectedClient(client)) {
        ReportStrayException(std::make_exception_ptr(
            kq::Error(NumberOf(RuntimeError::InvalidProcedureCall), std::string(kLibrarySource),
                      "An " + answer.Type() + " answers no request that is open")));
    }
    return request;
}

// A client that has gone in the meantime gets neither session nor answer, and the login server learns that
// the session is not here. The host still hears of the message.
void KQAppSessServer::Impl::OnASRegistrationResponse(const MessagePtr& message, bool& handled) {
    const auto answer = ASRegistrationResponse::Read(*message);
    const auto id = TransactionId::Read(answer.TransID);
    if (!id) return;
    const auto request = TakeOpen(*message, id->client, id->session_id);
    const auto client = ConnectedClient(id->client);
    if (!answer.ErrorResponse) {
        if (!client) {
            SessionIsGone(id->session_id);
        } else if (request) {
            GrantRegistration(client, *request, answer);
        }
        handled = true;
        Raise(&KQAppSessServer::XMLBusReceive, message, 0, "");
        return;
    }
    if (client && request) {
        const ASRegisterResponse refusal{answer.ErrorResponse->ErrorCode,
                                         answer.ErrorResponse->ErrorDescription};
        client->Send(refusal.Build(), request->tag);
        client->Disconnect();
    }
    handled = true;
    Raise(&KQAppSessServer::XMLBusReceive, message, ReceivedValLong(answer.ErrorResponse->ErrorCode),
          answer.ErrorResponse->ErrorDescription);
}

// A connection has one session: a former one ends first, as if its client had left, and the host that hears
// of that may end the connection.
void KQAppSessServer::Impl::GrantRegistration(const ClientPtr& client, const OpenRequest& request,
                                              const ASRegistrationResponse& answer) {
    if (const auto former = RemoveSession(client)) Raise(&KQAppSessServer::Disconnected, former);
    if (!client->Connected()) return SessionIsGone(request.session_id);
    SessionInfo info = answer.SessionInfo.value_or(SessionInfo());
    info.EnterpriseID = Bus().EnterpriseID();
    info.OperatorID = info.UserUID;  // the two are the same here, whatever the answer says
    info.SessionID.clear();
    info.AppID.clear();
    const auto session = std::make_shared<KQAppSessionInfo>();
    SessionRecords::Fill(*session, std::make_shared<XMLMessage>(info.Build()), request.session_id, app_id_,
                         client);
    AddSession(client, session);
    client->Admit();
    // Should the client be gone by now, its Disconnected follows.
    IgnoreErrors([&] { client->Send(ASRegisterResponse{"0", ""}.Build(), request.tag); });
    Raise(&KQAppSessServer::Connected, session);
}

// The login server takes a granted session to be here, unless another connection has it.
void KQAppSessServer::Impl::SessionIsGone(const std::string& session_id) {
    if (index_.ClientOf(session_id)) return;
    IgnoreErrors(
        [&] { SendInformation([&](const auto& hand) { announcement_.SendRemoved(session_id, hand); }); });
}

void KQAppSessServer::Impl::AddSession(const ClientPtr& client, const SessionPtr& session) {
    const std::string session_id = session->SessionID();
    IgnoreErrors([&] {
        index_.AddSession(client->Identifier(), session);
        announcement_.SessionAdded(session_id);
    });
    IgnoreErrors([&] { index_.AddClient(session_id, client); });
    IgnoreErrors([&] { SessionRecords::Add(*sessions, session); });
    IgnoreErrors([&] { SendSessionList(); });
    Raise(&KQAppSessServer::Count);
}

// Sessions go only with their connections: each disconnection runs to its end, Disconnected included, before
// the next one, so the host may have changed anything in between.
void KQAppSessServer::Impl::OnASLogoutUser(const MessagePtr& message, bool& handled) {
    const auto order = ASLogoutUser::Read(*message);
    for (const auto& session_id : order.SessionIDs.value_or(std::vector<std::string>())) {
        const auto client = index_.ClientOf(session_id);
        if (!client) continue;
        client->Disconnect();
        platform->Loop()->ProcessPending();
    }
    handled = true;
    Raise(&KQAppSessServer::XMLBusReceive, message, 0, "");
}

// Only a login's answer carries a "SessionInfo".
void KQAppSessServer::Impl::OnRelayedResponse(const MessagePtr& message, bool& handled) {
    const std::string identifier = message->Field(kTransID);
    const auto request = TakeOpen(*message, identifier);
    const auto client = ConnectedClient(identifier);
    if (client && request) {
        XMLMessage reply = message->ToClientMessage();
        for (const auto relay_element : {kReturnMsgType, kReturnSubType, kTransID, kReturnTag})
            reply.RemoveField(relay_element);
        if (reply.Type() != ASLoginResponse::kType) reply.RemoveField(SessionInfo::kType);
        answered_.insert(identifier);
        client->Send(reply, request->tag);
    }
    handled = true;
    Raise(&KQAppSessServer::XMLBusReceive, message, 0, "");
}

}  // namespace kq
