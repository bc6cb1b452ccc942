// What an application server tells the login servers about itself: one message, kept from Listen on and sent
// again with a state letter and, where the state speaks of sessions, their list.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <kqappsession/AppObject.h>
#include <kqappsession/Platform.h>
#include <kqappsession/XMLBusClient.h>
#include <kqappsession/XMLMessage.h>

#include "messages/ASMessages.h"
#include "server/SessionIndex.h"

namespace kq {

class Announcement {
 public:
    // Takes the message while it has its state and list; the list is gone again when this returns or raises.
    using Hand = std::function<void(const XMLMessage&)>;

    // Every sending does nothing before Keep, and after Forget.
    void Keep(const ApplicationInfo& info, const ASRequestInfo& request_info);
    void Forget() { message_.reset(); }
    void SetBroadcastInterval(std::int32_t seconds);

    void SendAlone(const Hand& hand);
    void SendSessions(const SessionIndex& index, const Hand& hand);
    void SendRemoved(const std::string& session_id, const Hand& hand);
    void SendDown(const Hand& hand);

    // The index has got one more session, the last in its order. A burst of registrations so costs one
    // element each, not a list each.
    void SessionAdded(const std::string& session_id);
    // The index has changed in another way: the next sending reads it anew.
    void SessionsChanged() { list_.reset(); }

 private:
    void Send(std::string_view letter, const Hand& hand);
    void SendWith(XMLElement& list, std::string_view letter, const Hand& hand);
    XMLElement& Info();

    std::optional<XMLMessage> message_;
    std::optional<XMLElement> list_;  // "Sessions" as the index has it; nothing when it must be read anew
};

// Sends a message over the bus as the state that its letter gives it: a "C" outdates the queued "C" and "E"
// of the same application, an "E" outdates nothing, and a "D" makes all before it final. A message without
// one of these letters is sent as an ordinary one. Raises what XMLBusClient::Send raises.
void SendState(XMLBusClient& bus, const XMLMessage& message);

// Where clients find their installer, "ClientPath", and what is said of its version, "ClientVersion"; both
// empty when there is none. Shares the installer's folder on the network under "ClientInstall_" and the
// application's identifier. `app_obj` may be null.
struct Installer {
    std::string path;
    std::string version;
};
Installer FindInstaller(const PlatformPtr& platform, const AppObject* app_obj, const std::string& app_id,
                        const std::string& file_name);

}  // namespace kq
