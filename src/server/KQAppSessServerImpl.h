// What stands behind KQAppSessServer. It is shared: whoever works in it holds it, so the face may be
// destroyed inside any of its events. From then on nothing is raised, the steps that are under way end by
// themselves, and the listener goes when the last of them has returned.
//
// KQAppSessServer.cpp holds the members, Requests.cpp what clients ask for, Unanswered.cpp what becomes of
// requests without an answer, BusMessages.cpp what the bus says.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessServer.h>
#include <kqappsession/Timer.h>

#include "messages/ASMessages.h"
#include "messages/Texts.h"
#include "server/Announcement.h"
#include "server/ErrorsByLocale.h"
#include "server/OpenRequests.h"
#include "server/SessionIndex.h"

namespace kq {

// How long the login server may take to answer a client's request, the time on the way to it included.
inline constexpr Milliseconds kAnswerTime{30'000};
// A client's time from its connection to its registration or to a request for the login server.
inline constexpr Milliseconds kProofTime{10'000};

// For a step whose failure must not keep the next one from being done.
template <class Step>
void IgnoreErrors(Step&& step) {
    try {
        step();
    } catch (const Error&) {
        // Left to the step that follows, as the callers want it.
    }
}

class KQAppSessServer::Impl : public std::enable_shared_from_this<Impl> {
 public:
    Impl(KQAppSessServer& face, PlatformPtr platform);

    // The face goes: tears down without a word to its host.
    void Leave();

    void SetInfoInterval(std::int32_t seconds);
    void Initialize(const std::string& app_id, std::shared_ptr<AppObject> app_obj,
                    std::shared_ptr<XMLBusClient> client, std::shared_ptr<kq::Statistics> statistics,
                    const InterfaceVersions& interfaces_versions);
    void Terminate();
    void Listen(std::int32_t port, const std::string& local_address);
    void StopListening(bool disconnect_all);
    void RequireInitialized() const;

    PlatformPtr platform;
    std::shared_ptr<kq::Listener> listener;
    std::shared_ptr<KQAppSessionInfos> sessions;
    std::string install_file;
    std::int32_t info_interval = 0;  // s
    bool initialized = false;

 private:
    using Handler = void (Impl::*)(const MessagePtr& message, bool& handled);
    // A message of a client, and what its answer needs.
    struct Request {
        ClientPtr client;
        std::string tag;
        std::size_t bytes = 0;
        XMLMessage message = {};
    };

    // Members
    void AttachToBus(std::uint64_t turn);
    void DetachFromBus(std::uint64_t turn, XMLBusClient& client);
    void BuildInformation();

    // Requests of clients
    void mListener_Receive(const ClientPtr& client, const Block& block);
    void mListener_Disconnected(const ClientPtr& client);
    void mListener_ClientError(const ClientPtr& client, std::int32_t number, const std::string& description);
    void Handle(const ClientPtr& client, const Block& block);
    void Register(const Request& request);
    void RequestRegistration(const Request& request, const ASRegisterRequest& registration);
    void Relay(const Request& request, std::string_view answer);
    void Refuse(const Request& request, std::string_view reply_type, std::int32_t code,
                const Args& args = {});
    void RefuseNoMessage(const Request& request, const kq::Error& error);
    // Notes the request as open; false, and it is refused, when there are too many.
    bool Open(OpenRequest request);
    void RefuseUnanswered(const OpenRequest& request);
    void AwaitOldest();
    void OnTooOld();
    // The connection while it stands, else null: one that was disconnected is gone from that moment, though
    // the listener keeps it until its Disconnected.
    ClientPtr ConnectedClient(const std::string& identifier) const;
    SessionPtr RemoveSession(const ClientPtr& client);

    // Messages of the bus
    static Handler HandlerOf(std::string_view type);
    void mClient_ReceiveMessage(const MessagePtr& message, bool& handled);
    void OnRequestBroadcastAS(const MessagePtr& message, bool& handled);
    void OnASRegistrationResponse(const MessagePtr& message, bool& handled);
    void OnASLogoutUser(const MessagePtr& message, bool& handled);
    void OnRelayedResponse(const MessagePtr& message, bool& handled);
    std::optional<OpenRequest> TakeOpen(const XMLMessage& answer, const std::string& client,
                                        const std::string& session_id = {});
    void GrantRegistration(const ClientPtr& client, const OpenRequest& request,
                           const ASRegistrationResponse& answer);
    void SessionIsGone(const std::string& session_id);
    void AddSession(const ClientPtr& client, const SessionPtr& session);

    // Sendings to the bus
    XMLBusClient& Bus() const;
    // `keep`: how long the message may wait for the bus.
    void Send(XMLMessage message, const std::string& type, const std::string& subtype, Milliseconds keep);
    void SendSessionList();
    template <class Sending>
    void SendInformation(Sending sending);

    // Raises an event of the face while there is one.
    template <class... Declared, class... Given>
    void Raise(Signal<Declared...> KQAppSessServer::*event, Given&&... args) {
        if (face_ != nullptr) (face_->*event)(std::forward<Given>(args)...);
    }

    KQAppSessServer* face_;
    Texts texts_;
    ErrorsByLocale locale_texts_;
    std::string app_id_;
    std::shared_ptr<AppObject> app_obj_;
    std::shared_ptr<XMLBusClient> client_;
    // Held from Initialize to Terminate. Nothing is counted in it, on purpose; what counts is that there is
    // one, since the object is not initialised without it.
    std::shared_ptr<kq::Statistics> statistics_;
    std::vector<std::string> interfaces_;
    SessionIndex index_;
    OpenRequests open_;
    std::unordered_set<std::string> answered_;  // connections whose relayed request was answered
    EventLoop::TimerId oldest_timer_ = 0;
    Announcement announcement_;
    Timer info_timer_;
    // A place for sessions whose release must wait until the events about them are over. None needs it now:
    // every handler holds the session that it is given. Nothing fills the list or enables the timer, on
    // purpose; both are ready from every Listen on, and a tick would empty the list.
    std::unique_ptr<Timer> removed_timer_;
    std::vector<SessionPtr> removed_sessions_;
    bool bus_was_running_ = false;
    bool stopping_bus_ = false;
    // Counts Listen and StopListening: another value after a wait, and the caller's is over.
    std::uint64_t turn_ = 0;
    Owner bus_owner_;
    Owner owner_;
};

// Sends the kept message in one of its states and raises XMLBusSend with what was sent.
template <class Sending>
void KQAppSessServer::Impl::SendInformation(Sending sending) {
    MessagePtr sent;
    sending([&](const XMLMessage& message) {
        SendState(Bus(), message);
        // A copy only for those who look: a list of thousands of sessions is sent at every registration.
        if (face_ != nullptr && face_->XMLBusSend.HasHandlers()) sent = std::make_shared<XMLMessage>(message);
    });
    if (sent) Raise(&KQAppSessServer::XMLBusSend, sent);
}

}  // namespace kq
