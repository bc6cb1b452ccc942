// The session manager of an application server: accepts registrations of clients, relays login traffic
// between clients and the login server over the XML bus, keeps the live sessions, announces itself, raises
// events.
//
//   kq::KQAppSessServer server(platform);
//   server.Connected.Connect(owner, [](const auto& session) { ... });
//   server.Initialize("Demo", app, bus, statistics, kq::InterfaceVersions("1.0|2.0"));
//   server.Listen(7000);
//
// Requests that the login server does not answer within 30 s are refused. A client that neither registers nor
// sends a request for the login server within 10 s is disconnected. What a client may hold before it has
// registered is limited (see Listener); a client's message may have 100,000 elements.
//
// One thread: all members and events belong to the thread of the platform's event loop. A handler may call
// back into the object.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kqappsession/AppObject.h>
#include <kqappsession/Export.h>
#include <kqappsession/KQAppSessErrorEnum.h>
#include <kqappsession/KQAppSessionInfo.h>
#include <kqappsession/Listener.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Statistics.h>
#include <kqappsession/XMLBusClient.h>

namespace kq {

// The interface versions that an application accepts, in order: given as a list, or as a text that is split
// at every "|" when it holds one, else at every "," (no trimming, empty pieces kept).
class KQ_EXPORT InterfaceVersions {
 public:
    InterfaceVersions() = default;
    explicit InterfaceVersions(std::string_view text);
    explicit InterfaceVersions(std::vector<std::string> versions) : versions_(std::move(versions)) {}
    // Stands for a value that is no such list. Initialize takes everything else in and then raises
    // kqaserrInvalidInterfaces.
    static InterfaceVersions Invalid();
    const std::vector<std::string>& All() const { return versions_; }
    bool Valid() const { return valid_; }

 private:
    std::vector<std::string> versions_;
    bool valid_ = true;
};

class KQ_EXPORT KQAppSessServer {
 public:
    using SessionPtr = std::shared_ptr<KQAppSessionInfo>;
    using MessagePtr = std::shared_ptr<XMLMessage>;
    using ClientPtr = std::shared_ptr<APClient>;

    // Raises RuntimeError::ObjectNotSet when `platform` is null.
    explicit KQAppSessServer(PlatformPtr platform);
    ~KQAppSessServer();  // Terminate
    KQAppSessServer(const KQAppSessServer&) = delete;
    KQAppSessServer& operator=(const KQAppSessServer&) = delete;

    // A client's registration was confirmed and its session added. A connection has one session: if it had
    // another one before, that one has ended with its own Disconnected.
    Signal<const SessionPtr&> Connected;
    // A registered client sent data that is no session management: the block, always of type XML, and its
    // session.
    Signal<const SessionPtr&, const Block&> ReceivedData;
    // A client with a session has gone; its session was removed before.
    Signal<const SessionPtr&> Disconnected;
    // The listener failed: its number and sentence.
    Signal<std::int32_t, const std::string&> Error;
    // The connection of a client with a session failed; Disconnected follows.
    Signal<const SessionPtr&, const ClientPtr&, std::int32_t, const std::string&> SessionError;
    // A message was handed to the bus client.
    Signal<const MessagePtr&> XMLBusSend;
    // A bus message for this object arrived; number 0 and no text unless it is a refusal. Also raised for an
    // answer to a request that is not open, which has no other effect; such an answer to a client that is
    // still connected is reported to the stray-exception handler.
    Signal<const MessagePtr&, std::int32_t, const std::string&> XMLBusReceive;
    // A session was added or removed.
    Signal<> Count;

    // Seconds between announcements, default 120. A value beyond 2147483 or -2147483 is stored and raises
    // RuntimeError::Overflow (an enabled announcement timer is then off); 0 or less stops the ticks.
    std::int32_t InfoInterval() const;
    void SetInfoInterval(std::int32_t seconds);
    // Raises kqaserrNotInitialized unless initialised.
    std::shared_ptr<kq::Listener> Listener() const;
    const std::shared_ptr<KQAppSessionInfos>& Sessions() const;

    // May be called again at any time: the sessions stay, but clients that are connected have to register
    // anew. Without `client` or `statistics` the object is not initialised afterwards, and nothing is raised.
    // `app_obj` may be null; its "Path" says where the client installer is. Raises kqaserrInvalidInterfaces
    // for InterfaceVersions::Invalid.
    void Initialize(const std::string& app_id, std::shared_ptr<AppObject> app_obj,
                    std::shared_ptr<XMLBusClient> client, std::shared_ptr<Statistics> statistics,
                    const InterfaceVersions& interfaces_versions);
    // Stops listening, releases bus client and statistics; connected clients and sessions stay. Does nothing
    // unless initialised.
    void Terminate();
    // Listens on the port (0: a free one) and local address (empty: all), takes the place on the bus and
    // announces. Raises kqaserrAlreadyConnected while listening, kqaserrNotInitialized unless initialised,
    // and the listener's errors; what the bus client's sending raises comes when all else is done. Waits up
    // to 1 s while a bus client that runs already writes out what waits.
    void Listen(std::int32_t listen_port, const std::string& local_address = {});
    // Accepts no more clients; with `disconnect_all` the connected ones are disconnected too. Announces that
    // on the bus and leaves it, which waits up to 1 s. Raises kqaserrNotInitialized unless initialised, and
    // as Listen what sending raises.
    void StopListening(bool disconnect_all = false);
    // Whether a bus message is one of the three that the host must leave to this object:
    // "RequestBroadcastAS", "ASRegistrationResponse" or "ASLogoutUser" of the login server's schema. False
    // for null.
    bool CheckMessage(const MessagePtr& message) const;
    bool IsInitialized() const;
    // The client installer's file name in the folder "Install" of the application's "Path".
    void setInstallExeFile(const std::string& install_exe_file);

 private:
    class KQ_HIDDEN Impl;
    std::shared_ptr<Impl> impl_;  // held by whoever works in it, so events may destroy this object
};

}  // namespace kq
