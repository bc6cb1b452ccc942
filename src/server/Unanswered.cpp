// Requests that the login server does not answer in time, because it or the bus is away: their clients are
// refused instead of waiting, and what still waits for the bus is dropped.
//
// While a request is open its connection has no time limit, since the client can do nothing but wait. An
// answer ends the limit for good; without one it starts anew.
#include <chrono>

#include "base/Convert.h"
#include "messages/TextIds.h"
#include "server/KQAppSessServerImpl.h"

namespace kq {
namespace {

// A question follows the sentence, after two spaces.
std::string FirstSentence(const std::string& text) {
    return text.substr(0, text.find("  "));
}

}  // namespace

KQAppSessServer::ClientPtr KQAppSessServer::Impl::ConnectedClient(const std::string& identifier) const {
    auto client = listener->Client(identifier);
    return client && client->Connected() ? client : nullptr;
}

bool KQAppSessServer::Impl::Open(OpenRequest request) {
    request.since = platform->Loop()->Now();
    if (!open_.Add(request)) {
        RefuseUnanswered(request);
        return false;
    }
    if (const auto client = ConnectedClient(request.client)) client->SetDeadline(Milliseconds(0));
    if (oldest_timer_ == 0) AwaitOldest();
    return true;
}

void KQAppSessServer::Impl::AwaitOldest() {
    const auto oldest = open_.Oldest();
    if (!oldest) return;
    const auto left = std::chrono::ceil<Milliseconds>(*oldest + kAnswerTime - platform->Loop()->Now());
    oldest_timer_ = platform->Loop()->StartTimer(left, owner_.Bind([this] { OnTooOld(); }));
}

void KQAppSessServer::Impl::OnTooOld() {
    const auto self = shared_from_this();
    oldest_timer_ = 0;
    for (const auto& request : open_.TakeUntil(platform->Loop()->Now() - kAnswerTime))
        IgnoreErrors([&] { RefuseUnanswered(request); });
    AwaitOldest();
}

void KQAppSessServer::Impl::RefuseUnanswered(const OpenRequest& request) {
    const auto client = ConnectedClient(request.client);
    if (!client) return;
    const std::string sentence = FirstSentence(texts_.Text(TextId::kNoReply));
    if (request.answer == ASRegistrationResponse::kType) {
        client->Send(ASRegisterResponse{TextOf(kqaserrLoginNoRegister), sentence}.Build(), request.tag);
        client->Disconnect();
        return;
    }
    XMLMessage reply(request.answer, kMessageVersion);
    reply.SetField(ASLoginResponse::kErrorNumber, TextOf(kqaserrLoginNoLogin));
    reply.SetField(ASLoginResponse::kErrorDesc, sentence);
    if (!open_.Has(request.client) && !answered_.contains(request.client)) client->SetDeadline(kProofTime);
    client->Send(reply, request.tag);
}

}  // namespace kq
