// The requests of clients, direct and relayed: one handler for each message type. Every known request is
// answered with the response of its type, some of them later.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <kqappsession/Signal.h>

#include "messages/ASMessages.h"
#include "zeb/requests/HostNames.h"
#include "zeb/requests/Peer.h"
#include "zeb/store/Services.h"

namespace kq::zeb {

class ClientRequests {
 public:
    explicit ClientRequests(Services& services)
        : services_(services), host_names_(services.platform, HostNames::Rule()) {}

    // False for a type that is not a request of a client.
    bool Handle(const XMLMessage& message, const PeerPtr& peer);

 private:
    // One file each.
    void ValidateClient(const XMLMessage& message, const PeerPtr& peer);
    void Login(const XMLMessage& message, const PeerPtr& peer);
    void ChangePassword(const XMLMessage& message, const PeerPtr& peer);
    void UpdateProfiles(const XMLMessage& message, const PeerPtr& peer);
    void DownloadClient(const XMLMessage& message, const PeerPtr& peer);

    // The user of a session if login id, session and application belong together.
    std::optional<Account> FindUser(const std::string& login, const std::string& session_id,
                                    const std::string& app_id);

    // The restriction that two fields of a request ask for; nothing if a host name would have to be resolved.
    // A direct client that names this server itself is not restricted.
    std::optional<Restriction> KnownRestriction(const Peer& peer, const std::string& address,
                                                std::int32_t port) const;
    // The restriction of a login whose password was correct; resolves a host name. `then` may be called later
    // for that. False when too many names are being resolved; `then` is not called.
    bool ReadRestriction(const PeerPtr& peer, const ASLoginRequest& request,
                         std::function<void(const Restriction&)> then);
    Restriction DirectRestriction(const Peer& peer, const std::vector<std::string>& addresses,
                                  std::int32_t port) const;

    // The outcome of a password check. With None: the account, and the hash of the new password if there is
    // one.
    struct Checked {
        Refusal refusal = Refusal::None;
        Account account;
        std::string new_hash;
    };
    void AnswerLogin(const PeerPtr& peer, const ASLoginRequest& request, const Restriction& restriction,
                     const Checked& checked);
    Refusal FinishLogin(const ASLoginRequest& request, const Restriction& restriction, const Checked& checked,
                        XMLMessage& answer);
    Refusal StoreNewPassword(const Checked& checked);
    // With None the attempt is still open; Settle ends it.
    void CheckPassword(const std::string& login, const Secret& password,
                       const std::optional<Secret>& new_password,
                       const std::function<void(const Checked&)>& then);
    Checked Judge(const std::string& login, const std::optional<Account>& asked,
                  const PasswordAnswer& answer);
    // Reads the account again, because it may have changed in the meantime. A refusal if its password has
    // changed or it is disabled.
    Refusal Recheck(Account& account);
    // Runs what follows a correct password, up to its commit, and only then forgets the failures before it.
    Refusal Settle(const std::string& login, const std::function<Refusal()>& finish);

    // Runs a step of a handler; whatever it raises becomes the refusal Failed.
    template <class Response>
    void Guard(const PeerPtr& peer, const std::function<void()>& step);
    // `subject`: the login id or the field that it is about, if any.
    template <class Response>
    void Refuse(const PeerPtr& peer, Refusal refusal, const std::string& subject);

    Services& services_;
    HostNames host_names_;
    Owner owner_;
};

// Cuts a login id or password that is longer than any account's behind its first character too many. It is
// still wrong, but a queued password check stays small.
void ShortenLogin(std::string& login);
void ShortenPassword(Secret& password);

// The fields that say how a request ended, in any response.
template <class Response>
void SetOutcome(Response& response, Refusal refusal, const std::string& subject = {}) {
    response.ErrorNumber = std::to_string(NumberOf(refusal));
    response.ErrorDesc = SentenceOf(refusal);
    if constexpr (requires { response.ErrorParam; }) {
        const bool names_subject = refusal == Refusal::TooManySessions || refusal == Refusal::FieldTooLong;
        response.ErrorParam = names_subject ? subject : std::string(CodeOf(refusal));
    }
}

template <class Response>
void ClientRequests::Refuse(const PeerPtr& peer, Refusal refusal, const std::string& subject) {
    services_.log.info("{} to {} for \"{}\": {} {}", Response::kType, peer->Name(), ForLog(subject),
                       NumberOf(refusal), SentenceOf(refusal));
    Response response;
    SetOutcome(response, refusal, subject);
    peer->Answer(response.Build());
}

template <class Response>
void ClientRequests::Guard(const PeerPtr& peer, const std::function<void()>& step) {
    try {
        step();
    } catch (const std::exception& error) {
        services_.log.error("{} to {} failed: {}", Response::kType, peer->Name(), error.what());
        Refuse<Response>(peer, Refusal::Failed, {});
    }
}

}  // namespace kq::zeb
