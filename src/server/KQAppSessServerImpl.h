// What stands behind KQAppSessServer. It is shared: whoever works in it holds it, so the face may be
// destroyed inside any of its events. From then on nothing is raised, the steps that are under way end by
// themselves, and the listener goes when the last of them has returned.
//
// KQAppSessServer.cpp holds the members, Requests.cpp what clients ask for, BusMessages.cpp what the bus
// says.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessServer.h>
#include <kqappsession/Timer.h>

#include "messages/ASMessages.h"
#include "messages/modASMsg.h"
#include "server/Announcement.h"
#include "server/ErrorsByLocale.h"
#include "server/SessionIndex.h"

namespace kq {

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

    // Members
    void AttachToBus(std::uint64_t turn);
    void DetachFromBus(std::uint64_t turn, XMLBusClient& client);
    void BuildInformation();

    // Requests of clients
    void mListener_Receive(const ClientPtr& client, const Block& block);
    void mListener_Disconnected(const ClientPtr& client);
    void mListener_ClientError(const ClientPtr& client, std::int32_t number, const std::string& description);
    void Handle(const ClientPtr& client, const Block& block);
    void Register(const ClientPtr& client, const XMLMessage& message);
    void RequestRegistration(const ClientPtr& client, const ASRegisterRequest& request);
    void Relay(const ClientPtr& client, const XMLMessage& request);
    void Refuse(const ClientPtr& client, const XMLMessage& request, std::string_view reply_type,
                std::int32_t code, const Args& args = {});
    SessionPtr RemoveSession(const ClientPtr& client);

    // Messages of the bus
    static Handler HandlerOf(std::string_view type);
    void mClient_ReceiveMessage(const MessagePtr& message, bool& handled);
    void OnRequestBroadcastAS(const MessagePtr& message, bool& handled);
    void OnASRegistrationResponse(const MessagePtr& message, bool& handled);
    void OnASLogoutUser(const MessagePtr& message, bool& handled);
    void OnRelayedResponse(const MessagePtr& message, bool& handled);
    void GrantRegistration(const ClientPtr& client, const std::string& session_id,
                           const ASRegistrationResponse& answer);
    void AddSession(const ClientPtr& client, const SessionPtr& session);

    // Sendings to the bus
    XMLBusClient& Bus() const;
    void Send(XMLMessage message, const std::string& type, const std::string& subtype);
    void SendSessionList();
    template <class Sending>
    void SendInformation(Sending sending);

    // Raises an event of the face while there is one.
    template <class... Declared, class... Given>
    void Raise(Signal<Declared...> KQAppSessServer::*event, Given&&... args) {
        if (face_ != nullptr) (face_->*event)(std::forward<Given>(args)...);
    }

    KQAppSessServer* face_;
    modASMsg texts_;
    ErrorsByLocale locale_texts_;
    std::string app_id_;
    std::shared_ptr<AppObject> app_obj_;
    std::shared_ptr<XMLBusClient> client_;
    std::shared_ptr<kq::Statistics> statistics_;
    std::vector<std::string> interfaces_;
    SessionIndex index_;
    Announcement announcement_;
    Timer info_timer_;
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
        Bus().Send(message, BusSending::State);
        // A copy only for those who look: a list of thousands of sessions is sent at every registration.
        if (face_ != nullptr && face_->XMLBusSend.HasHandlers()) sent = std::make_shared<XMLMessage>(message);
    });
    if (sent) Raise(&KQAppSessServer::XMLBusSend, sent);
}

}  // namespace kq
