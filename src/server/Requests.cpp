// What clients ask for on the listener: registrations are checked here and put before the login server, login
// traffic is relayed to it, everything else is the host's, provided that the client has registered.
//
// An error while a block is handled ends the handling of that block and is reported to nobody; only refusals
// are answered.
#include <algorithm>
#include <array>

#include "base/Convert.h"
#include "messages/TransactionId.h"
#include "server/KQAppSessServerImpl.h"
#include "session/SessionRecords.h"

namespace kq {
namespace {

constexpr double kInterfaceVersion = 1.0;

struct Relayed {
    std::string_view request;
    std::string_view answer;
};
constexpr std::array<Relayed, 4> kRelayed = {{
    {ASValidateClientRequest::kType, ASValidateClientResponse::kType},
    {ASLoginRequest::kType, ASLoginResponse::kType},
    {ASPasswordChangeRequest::kType, ASPasswordChangeResponse::kType},
    {ASProfilesUpdate::kType, ASProfilesUpdateResponse::kType},
}};

// 0 stands for no locale that is known.
std::int32_t LocaleOf(const XMLMessage& request) {
    std::int32_t locale = 0;
    IgnoreErrors([&] { locale = ValLong(request.Field(ASRegisterRequest::kLocaleID)); });
    return locale;
}

}  // namespace

void KQAppSessServer::Impl::mListener_Receive(const ClientPtr& client, const Block& block) {
    const auto self = shared_from_this();
    IgnoreErrors([&] { Handle(client, block); });
}

void KQAppSessServer::Impl::Handle(const ClientPtr& client, const Block& block) {
    if (block.data_type != DataType::XML) return;
    Request request{client, block.tag, block.data.size()};
    try {
        request.message.LoadXML(block.data, kClientMessageLimits);
    } catch (const kq::Error& error) {
        return RefuseNoMessage(request, error);
    }
    const auto* relayed = std::ranges::find(kRelayed, request.message.Type(), &Relayed::request);
    if (request.message.Type() == ASRegisterRequest::kType) {
        Register(request);
    } else if (relayed != kRelayed.end()) {
        Relay(request, relayed->answer);
    } else if (const auto session = index_.SessionOf(client->Identifier())) {
        Raise(&KQAppSessServer::ReceivedData, session, block);
    } else {
        Refuse(request, ASUnknownResponse::kType, kqaserrLoginNoLogin);
    }
}

// The version must be this one, whatever the versions are that the application announces.
void KQAppSessServer::Impl::Register(const Request& request) {
    const auto registration = ASRegisterRequest::Read(request.message);
    if (TextToDouble(request.message.Version()) != kInterfaceVersion) {
        Refuse(request, ASRegisterResponse::kType, kqaserrLoginLoginFailed);
    } else if (registration.AppID != app_id_) {
        Refuse(request, ASRegisterResponse::kType, kqaserrLoginInvalidIntfVersion, {registration.AppID});
    } else if (!TransactionId::CanName(registration.SessionID)) {
        Refuse(request, ASRegisterResponse::kType, kqaserrLoginNoLogin);
    } else {
        RequestRegistration(request, registration);
    }
}

void KQAppSessServer::Impl::RequestRegistration(const Request& request, const ASRegisterRequest& asked) {
    RequestASRegistration registration;
    registration.ReturnMsgType = Bus().ReplyType();
    registration.ReturnSubType = Bus().ReplySubType();
    registration.TransID = TransactionId{asked.SessionID, request.client->Identifier()}.Text();
    registration.AppID = asked.AppID;
    registration.SessionID = asked.SessionID;
    registration.ReturnTag = TagElementText(request.tag);
    if (Open({request.client->Identifier(), ASRegistrationResponse::kType, asked.SessionID, request.tag,
              request.bytes})) {
        Send(registration.Build(), "ZEB", "", kAnswerTime);
    }
}

// What the client sent under the names of the relay is replaced: an answer always finds the connection that
// asked.
void KQAppSessServer::Impl::Relay(const Request& request, std::string_view answer) {
    XMLMessage relayed = request.message.ToBusMessage(kZEBSchemas);
    relayed.SetField(kReturnMsgType, Bus().ReplyType());
    relayed.SetField(kReturnSubType, Bus().ReplySubType());
    relayed.SetField(kTransID, request.client->Identifier());
    relayed.RemoveField(kReturnTag);
    if (!request.tag.empty()) relayed.SetField(kReturnTag, TagElementText(request.tag));
    if (!request.message.Field(ASLoginRequest::kRestrictIP).empty()) {
        relayed.SetField(ASLoginRequest::kRestrictIP, listener->LocalAddress());
    }
    if (Open({request.client->Identifier(), answer, {}, request.tag, request.bytes})) {
        Send(std::move(relayed), "ZEB", "", kAnswerTime);
    }
}

// An unknown version is answered in that version, and its text names no version: its placeholder stays.
void KQAppSessServer::Impl::Refuse(const Request& request, std::string_view reply_type, std::int32_t code,
                                   const Args& args) {
    XMLMessage reply(reply_type,
                     code == kqaserrLoginLoginFailed ? request.message.Version() : kMessageVersion);
    reply.SetField(ASRegisterResponse::kErrorNum, TextOf(code));
    reply.SetField(ASRegisterResponse::kErrorDesc,
                   locale_texts_.ASLocaleError(code, LocaleOf(request.message), args));
    request.client->Send(reply, request.tag);
    request.client->Disconnect();
}

// One such block costs a registered client nothing but this answer.
void KQAppSessServer::Impl::RefuseNoMessage(const Request& request, const kq::Error& error) {
    const bool registered = index_.SessionOf(request.client->Identifier()) != nullptr;
    request.client->Send(ASUnknownResponse{TextOf(error.Number()), error.Description()}.Build(), request.tag);
    if (!registered) request.client->Disconnect();
}

void KQAppSessServer::Impl::mListener_Disconnected(const ClientPtr& client) {
    const auto self = shared_from_this();
    open_.Forget(client->Identifier());
    answered_.erase(client->Identifier());
    IgnoreErrors([&] {
        if (const auto session = RemoveSession(client)) Raise(&KQAppSessServer::Disconnected, session);
    });
}

// The session that the connection had, or null. Another connection's session of the same id stays.
KQAppSessServer::SessionPtr KQAppSessServer::Impl::RemoveSession(const ClientPtr& client) {
    auto session = index_.SessionOf(client->Identifier());
    if (!session) return nullptr;
    const std::string session_id = session->SessionID();
    const bool its_own_id = index_.ClientOf(session_id) == client;
    index_.RemoveSession(client->Identifier());
    announcement_.SessionsChanged();
    if (its_own_id) {
        IgnoreErrors([&] { index_.RemoveClient(session_id); });
        IgnoreErrors([&] { SessionRecords::Remove(*sessions, session_id); });
    }
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
