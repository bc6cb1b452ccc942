// What application servers send over the bus: requests to register a session, and announcements.
#pragma once

#include <set>
#include <string>
#include <utility>

#include "messages/ASMessages.h"
#include "zeb/store/Services.h"

namespace kq::zeb {

class ServerMessages {
 public:
    explicit ServerMessages(Services& services) : services_(services) {}

    // False for a type that application servers do not send.
    bool Handle(const XMLMessage& message);
    // Asks every application server to announce itself immediately.
    void AskForAnnouncements();
    // Whether the connection behind a reply address is open. An application server without one is not used
    // until it is back.
    void Reachable(const BusAddress& reply, bool there);
    // To be called regularly: removes servers that have fallen silent and sessions that have expired.
    void Tidy();

 private:
    void Register(const XMLMessage& message);
    // The content of the answer: None with a filled session record, or the refusal.
    Refusal Confirm(const RequestASRegistration& request, SessionInfo& info);
    void OrderLogout(const Session& session);
    void Announce(const XMLMessage& message);
    void AnnounceState(const BusAddress& server, const ApplicationInfo& application);
    void RemarkOnPort(const BusAddress& server, const ApplicationInfo& application);
    void AskForAnnouncements(const BusAddress& destination);

    Services& services_;
    std::set<std::pair<BusAddress, std::string>> remarked_;  // whose unusable ports were logged
};

}  // namespace kq::zeb
