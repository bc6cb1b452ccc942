// What the bus says: answers of the login server to what was relayed and asked, its orders to log users out,
// its wish to hear all sessions.
//
// One handler for each type. An error in a handler ends it and is told to nobody, XMLBusReceive included; the
// message counts as handled from the moment on that its work is done.
#include <algorithm>

#include "base/Convert.h"
#include "server/KQAppSessServerImpl.h"

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

// A client that has gone meanwhile gets neither session nor answer; the host still hears of the message.
void KQAppSessServer::Impl::OnASRegistrationResponse(const MessagePtr& message, bool& handled) {
    const auto answer = ASRegistrationResponse::Read(*message);
    const auto ids = Split(answer.TransID, '|');
    if (ids.size() != 2) return;
    const auto client = listener->Client(ids[1]);
    if (!answer.ErrorResponse) {
        if (client) GrantRegistration(client, ids[0], answer);
        handled = true;
        Raise(&KQAppSessServer::XMLBusReceive, message, 0, "");
        return;
    }
    if (client) {
        client->Send(
            ASRegisterResponse{answer.ErrorResponse->ErrorCode, answer.ErrorResponse->ErrorDescription}
                .Build());
        client->Disconnect();
    }
    handled = true;
    Raise(&KQAppSessServer::XMLBusReceive, message, ReceivedValLong(answer.ErrorResponse->ErrorCode),
          answer.ErrorResponse->ErrorDescription);
}

void KQAppSessServer::Impl::GrantRegistration(const ClientPtr& client, const std::string& session_id,
                                              const ASRegistrationResponse& answer) {
    SessionInfo info = answer.SessionInfo.value_or(SessionInfo());
    info.EnterpriseID = Bus().EnterpriseID();
    info.OperatorID = info.UserUID;  // the two are the same here, whatever the answer says
    info.SessionID.clear();
    info.AppID.clear();
    const auto session = std::make_shared<KQAppSessionInfo>();
    session->Fill(std::make_shared<XMLMessage>(info.Build()), session_id, app_id_, client);
    AddSession(client, session);
    client->Admit();
    client->Send(ASRegisterResponse{"0", ""}.Build());
    Raise(&KQAppSessServer::Connected, session);
}

void KQAppSessServer::Impl::AddSession(const ClientPtr& client, const SessionPtr& session) {
    const std::string session_id = session->SessionID();
    IgnoreErrors([&] {
        index_.AddSession(client->Identifier(), session);
        announcement_.SessionAdded(session_id);
    });
    IgnoreErrors([&] { index_.AddClient(session_id, client); });
    IgnoreErrors([&] { sessions->Add(session); });
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
        platform->loop->ProcessPending();
    }
    handled = true;
    Raise(&KQAppSessServer::XMLBusReceive, message, 0, "");
}

// "SessionInfo" of an "ASLoginResponse" travels with the other elements.
void KQAppSessServer::Impl::OnRelayedResponse(const MessagePtr& message, bool& handled) {
    if (const auto client = listener->Client(message->Field(kTransID))) {
        XMLMessage reply = message->ToClientMessage();
        for (const auto relay_element : {kReturnMsgType, kReturnSubType, kTransID})
            reply.RemoveField(relay_element);
        client->Send(reply);
    }
    handled = true;
    Raise(&KQAppSessServer::XMLBusReceive, message, 0, "");
}

}  // namespace kq
