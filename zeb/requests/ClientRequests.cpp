// Which request goes where, and what the handlers have in common.
#include "zeb/requests/ClientRequests.h"

#include <algorithm>
#include <array>

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "platform/Machine.h"
#include "platform/Socket.h"
#include "zeb/requests/Addresses.h"

namespace kq::zeb {
namespace {

struct FieldLimit {
    std::string_view name;
    std::size_t bytes;
};

// What a request may hold at most, whatever its type. Login ids and passwords are shortened instead, so that
// nobody learns more about them than that they are wrong; profiles have a limit of their own.
constexpr std::array<FieldLimit, 11> kFieldLimits = {{
    {"AppID", 128},
    {"InterfaceVersion", 64},
    {"ClientVersion", 64},
    {"RestrictIP", 256},  // a host name has at most 253 characters
    {"RestrictPort", 16},
    {"SessionID", 64},
    {"UserUID", 16},
    {"Request", 64},
    {kReturnMsgType, 1024},
    {kReturnSubType, 1024},
    {kTransID, 1024},
}};

// The first one; empty when there is none.
std::string_view FieldThatIsTooLong(const XMLMessage& message) {
    const auto too_long = [&](const FieldLimit& limit) {
        return message.Field(limit.name).size() > limit.bytes;
    };
    const auto found = std::ranges::find_if(kFieldLimits, too_long);
    return found == kFieldLimits.end() ? std::string_view() : found->name;
}

bool IsLoopback(const std::string& address) {
    return address.rfind("127.", 0) == 0 || address == "::1";
}

}  // namespace

bool ClientRequests::Handle(const XMLMessage& message, const PeerPtr& peer) {
    using Handler = void (ClientRequests::*)(const XMLMessage&, const PeerPtr&);
    using Refuser = void (ClientRequests::*)(const PeerPtr&, Refusal, const std::string&);
    struct Row {
        std::string_view type;
        Handler handler;
        Refuser refuse;
    };
    static constexpr std::array<Row, 5> kRows = {{
        {ASValidateClientRequest::kType, &ClientRequests::ValidateClient,
         &ClientRequests::Refuse<ASValidateClientResponse>},
        {ASLoginRequest::kType, &ClientRequests::Login, &ClientRequests::Refuse<ASLoginResponse>},
        {ASPasswordChangeRequest::kType, &ClientRequests::ChangePassword,
         &ClientRequests::Refuse<ASPasswordChangeResponse>},
        {ASProfilesUpdate::kType, &ClientRequests::UpdateProfiles,
         &ClientRequests::Refuse<ASProfilesUpdateResponse>},
        {ASDownloadClientRequest::kType, &ClientRequests::DownloadClient,
         &ClientRequests::Refuse<ASDownloadClientResponse>},
    }};
    for (const auto& row : kRows) {
        if (row.type != message.Type()) continue;
        if (const auto field = FieldThatIsTooLong(message); !field.empty()) {
            (this->*row.refuse)(peer, Refusal::FieldTooLong, std::string(field));
        } else {
            (this->*row.handler)(message, peer);
        }
        return true;
    }
    return false;
}

void ClientRequests::DownloadClient(const XMLMessage&, const PeerPtr& peer) {
    Refuse<ASDownloadClientResponse>(peer, Refusal::NoClientPackage, {});
}

void ShortenLogin(std::string& login) {
    login = FirstCharacters(login, Accounts::kMaxLogin + 1);
}

void ShortenPassword(Secret& password) {
    password = Secret(FirstCharacters(password.Reveal(), kMaxPassword + 1));
}

std::optional<Restriction> ClientRequests::KnownRestriction(const Peer& peer, const std::string& address,
                                                            std::int32_t port) const {
    if (peer.Relayed()) {
        Restriction restriction;
        if (!address.empty()) restriction.addresses.insert(address);
        restriction.port = port;
        return restriction;
    }
    if (address.empty()) return DirectRestriction(peer, {}, port);
    if (const auto numeric = NumericAddress(address)) return DirectRestriction(peer, {*numeric}, port);
    return std::nullopt;
}

bool ClientRequests::ReadRestriction(const PeerPtr& peer, const ASLoginRequest& request,
                                     std::function<void(const Restriction&)> then) {
    const std::int32_t port = ValLong(request.RestrictPort);
    if (const auto known = KnownRestriction(*peer, request.RestrictIP, port)) {
        then(*known);
        return true;
    }
    const auto read = [this, peer, name = request.RestrictIP, port,
                       then = std::move(then)](const HostNames::Addresses& found) {
        then(DirectRestriction(*peer, found.empty() ? HostNames::Addresses{name} : found, port));
    };
    return host_names_.Find({peer->Name(), request.LoginID}, request.RestrictIP, read);
}

Restriction ClientRequests::DirectRestriction(const Peer& peer, const std::vector<std::string>& addresses,
                                              std::int32_t port) const {
    const std::string local = peer.LocalAddress();
    const std::string own = services_.platform->Parts().network->OwnAddress();
    Restriction restriction;
    restriction.addresses.insert(addresses.begin(), addresses.end());
    restriction.port = port;
    bool names_this_machine = addresses.empty();
    for (const auto& address : addresses) {
        if (address == local || address == own || IsLoopback(address)) names_this_machine = true;
    }
    if (names_this_machine && port != 0 && port == peer.LocalPort()) return {};
    // Application servers on this machine announce one of its addresses, the client may know another.
    if (names_this_machine && !addresses.empty()) restriction.addresses.insert({local, own, "127.0.0.1"});
    return restriction;
}

void ClientRequests::CheckPassword(const std::string& login, const Secret& password,
                                   const std::optional<Secret>& new_password,
                                   const std::function<void(const Checked&)>& then) {
    // An id that no account can have is answered like a wrong one, but there is nothing to remember about it.
    const bool possible = Accounts::WhyNoLogin(login).empty();
    // Before the attempt begins: a store that fails must not cost the user one.
    const auto account = possible ? services_.accounts.Find(login) : std::nullopt;
    if (possible && !services_.attempts.Begin(login)) {
        then({Refusal::TooManyAttempts, {}, {}});
        return;
    }
    PasswordQuestion question;
    question.login = login;
    question.password = password;
    if (account) question.hash = account->password_hash;
    question.new_password = new_password;
    const auto judge = [this, login, account, then](const PasswordAnswer& answer) {
        Checked checked{Refusal::Failed, {}, {}};
        try {
            checked = Judge(login, account, answer);
        } catch (const Error& error) {
            services_.attempts.Withdraw(login);
            services_.log.error("The password check of {} failed: {}", ForLog(login), error.Description());
        }
        then(checked);
    };
    if (services_.passwords.Ask(std::move(question), owner_.Bind(judge))) return;
    services_.attempts.Withdraw(login);
    then({Refusal::Busy, {}, {}});
}

ClientRequests::Checked ClientRequests::Judge(const std::string& login, const std::optional<Account>& asked,
                                              const PasswordAnswer& answer) {
    if (answer.failed) {
        services_.attempts.Withdraw(login);
        return {Refusal::Failed, {}, {}};
    }
    if (!answer.correct) {
        if (Accounts::WhyNoLogin(login).empty()) services_.attempts.Failed(login);
        return {Refusal::UnknownUser, {}, {}};
    }
    auto account = asked.value();
    auto refusal = Recheck(account);
    if (refusal == Refusal::None) refusal = answer.new_password_refusal;
    if (refusal != Refusal::None) services_.attempts.Succeeded(login);
    return {refusal, std::move(account), answer.new_hash};
}

Refusal ClientRequests::Recheck(Account& account) {
    auto now = services_.accounts.Find(account.uid);
    if (!now || now->password_hash != account.password_hash) return Refusal::UnknownUser;
    account = *std::move(now);
    return account.disabled ? Refusal::Disabled : Refusal::None;
}

Refusal ClientRequests::Settle(const std::string& login, const std::function<Refusal()>& finish) {
    try {
        const auto refusal = finish();
        services_.attempts.Succeeded(login);
        return refusal;
    } catch (...) {
        services_.attempts.Withdraw(login);
        throw;
    }
}

}  // namespace kq::zeb
