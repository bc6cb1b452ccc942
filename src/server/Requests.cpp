// What clients ask for on the listener: registrations are checked here and put before the login server, login
// traffic is relayed to it, everything else is the host's, provided that the client has registered.
//
// An error while a block is handled ends the handling of that block and is told to nobody; only refusals are
// answered.
#include <algorithm>
#include <array>

#include "base/Convert.h"
#include "server/KQAppSessServerImpl.h"

namespace kq {
namespace {

constexpr double kInterfaceVersion = 1.0;
constexpr std::string_view kLocaleID = "LocaleID";
constexpr std::string_view kRestrictIP = "RestrictIP";

constexpr std::array kRelayed = {ASValidateClientRequest::kType, ASLoginRequest::kType,
                                 ASPasswordChangeRequest::kType, ASProfilesUpdate::kType};

// 0 stands for no locale that is known.
std::int32_t LocaleOf(const XMLMessage& request) {
    std::int32_t locale = 0;
    IgnoreErrors([&] { locale = ValLong(request.Field(kLocaleID)); });
    return locale;
}

}  // namespace

void KQAppSessServer::Impl::mListener_Receive(const ClientPtr& client, const Block& block) {
    const auto self = shared_from_this();
    IgnoreErrors([&] { Handle(client, block); });
}

void KQAppSessServer::Impl::Handle(const ClientPtr& client, const Block& block) {
    if (block.data_type != DataType::XML) return;
    XMLMessage message;
    message.LoadXML(block.data);
    if (message.Type() == ASRegisterRequest::kType) {
        Register(client, message);
    } else if (std::ranges::find(kRelayed, message.Type()) != kRelayed.end()) {
        Relay(client, message);
    } else if (const auto session = index_.SessionOf(client->Identifier())) {
        Raise(&KQAppSessServer::ReceivedData, session, block);
    } else {
        Refuse(client, message, ASUnknownResponse::kType, kqaserrLoginNoLogin);
    }
}

// The version must be this one, whatever the versions are that the application announces.
void KQAppSessServer::Impl::Register(const ClientPtr& client, const XMLMessage& message) {
    const auto request = ASRegisterRequest::Read(message);
    if (TextToDouble(message.Version()) != kInterfaceVersion) {
        Refuse(client, message, ASRegisterResponse::kType, kqaserrLoginLoginFailed);
    } else if (request.AppID != app_id_) {
        Refuse(client, message, ASRegisterResponse::kType, kqaserrLoginInvalidIntfVersion, {request.AppID});
    } else {
        RequestRegistration(client, request);
    }
}

void KQAppSessServer::Impl::RequestRegistration(const ClientPtr& client, const ASRegisterRequest& request) {
    RequestASRegistration registration;
    registration.ReturnMsgType = Bus().ReplyType();
    registration.ReturnSubType = Bus().ReplySubType();
    registration.TransID = request.SessionID + "|" + client->Identifier();
    registration.AppID = request.AppID;
    registration.SessionID = request.SessionID;
    Send(registration.Build(), "ZEB", "");
}

// What the client sent under the names of the relay is replaced: an answer always finds the connection that
// asked.
void KQAppSessServer::Impl::Relay(const ClientPtr& client, const XMLMessage& request) {
    XMLMessage relayed = request.ToBusMessage(kZEBSchemas);
    relayed.SetField(kReturnMsgType, Bus().ReplyType());
    relayed.SetField(kReturnSubType, Bus().ReplySubType());
    relayed.SetField(kTransID, client->Identifier());
    if (!request.Field(kRestrictIP).empty()) relayed.SetField(kRestrictIP, listener->LocalAddress());
    Send(std::move(relayed), "ZEB", "");
}

// An unknown version is answered in that version, and its text names no version: its placeholder stays.
void KQAppSessServer::Impl::Refuse(const ClientPtr& client, const XMLMessage& request,
                                   std::string_view reply_type, std::int32_t code, const Args& args) {
    XMLMessage reply(reply_type, code == kqaserrLoginLoginFailed ? request.Version() : kMessageVersion);
    reply.SetField("ErrorNum", TextOf(code));
    reply.SetField("ErrorDesc", locale_texts_.ASLocaleError(code, LocaleOf(request), args));
    client->Send(reply);
    client->Disconnect();
}

void KQAppSessServer::Impl::mListener_Disconnected(const ClientPtr& client) {
    const auto self = shared_from_this();
    IgnoreErrors([&] {
        if (const auto session = RemoveSession(client)) Raise(&KQAppSessServer::Disconnected, session);
    });
}

// The session that the connection had, or null.
KQAppSessServer::SessionPtr KQAppSessServer::Impl::RemoveSession(const ClientPtr& client) {
    auto session = index_.SessionOf(client->Identifier());
    if (!session) return nullptr;
    const std::string session_id = session->SessionID();
    index_.RemoveSession(client->Identifier());
    announcement_.SessionsChanged();
    IgnoreErrors([&] { index_.RemoveClient(session_id); });
    IgnoreErrors([&] { sessions->Remove(session_id); });
    IgnoreErrors(
        [&] { SendInformation([&](const auto& hand) { announcement_.SendRemoved(session_id, hand); }); });
    Raise(&KQAppSessServer::Count);
    return session;
}

void KQAppSessServer::Impl::mListener_ClientError(const ClientPtr& client, std::int32_t number,
                                                  const std::string& description) {
    const auto self = shared_from_this();
    if (const auto session = index_.SessionOf(client->Identifier())) {
        Raise(&KQAppSessServer::SessionError, session, client, number, description);
    }
}

}  // namespace kq
