// The session manager of an application server. It registers clients, relays login traffic between clients
// and the login server over the XML bus, keeps the live sessions, announces the application server, and
// raises events.
//
//   kq::KQAppSessServer server(platform);
//   server.Connected.Connect(owner, [](const auto& session) { ... });
//   server.Initialize("Demo", app, bus, statistics, kq::InterfaceVersions("1.0|2.0"));
//   server.Listen(7000);
//
// A request that the login server does not answer within 30 s is refused. A client that neither registers nor
// sends a request for the login server within 10 s is disconnected. What clients may use before they have
// registered is limited (see Listener). A client's message may have 100,000 elements.
//
// One thread: all members and events belong to the thread of the platform's event loop. Handlers may call
// every member and may destroy the object.
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

// The interface versions that an application accepts, in order: a list, or a text that is split at every "|"
// or, if it contains none, at every ",". Pieces are not trimmed, and empty ones are kept.
class KQ_EXPORT InterfaceVersions {
 public:
    InterfaceVersions() = default;
    explicit InterfaceVersions(std::string_view text);
    explicit InterfaceVersions(std::vector<std::string> versions) : versions_(std::move(versions)) {}
    // Placeholder for a value of any other type: Initialize stores its other arguments, then raises
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
    ~KQAppSessServer();  // as Terminate, without events; never raises
    KQAppSessServer(const KQAppSessServer&) = delete;
    KQAppSessServer& operator=(const KQAppSessServer&) = delete;

    // A client has registered, and its session has been added. A connection has one session: if it had
    // another one before, that session has already ended with its own Disconnected.
    Signal<const SessionPtr&> Connected;
    // A registered client sent application data. The block is always XML.
    Signal<const SessionPtr&, const Block&> ReceivedData;
    // A client with a session has disconnected. Its session has already been removed.
    Signal<const SessionPtr&> Disconnected;
    // The listener failed: the error's number and description.
    Signal<std::int32_t, const std::string&> Error;
    // The connection of a client with a session failed: the error's number and description. Disconnected
    // follows.
    Signal<const SessionPtr&, const ClientPtr&, std::int32_t, const std::string&> SessionError;
    // A message was given to the bus client's Send.
    Signal<const MessagePtr&> XMLBusSend;
    // A bus message for this object arrived. The number is 0 and the description empty unless it is a
    // refusal. Also raised for an answer to a request that is not open, which has no other effect; if the
    // client that it names is still connected, that is reported to the stray exception handler.
    Signal<const MessagePtr&, std::int32_t, const std::string&> XMLBusReceive;
    // A session was added or removed.
    Signal<> Count;

    // Seconds between announcements, default 120. 0 or less: no repeated announcements. May be changed while
    // listening. A value above 2147483 or below -2147483 is stored and raises RuntimeError::Overflow;
    // announcements that were being repeated stop then.
    std::int32_t InfoInterval() const;
    void SetInfoInterval(std::int32_t seconds);
    // Never null. Raises kqaserrNotInitialized unless initialised.
    std::shared_ptr<kq::Listener> Listener() const;
    // Never null; always the same object.
    const std::shared_ptr<KQAppSessionInfos>& Sessions() const;

    // Sets what the object works with. It shares all objects with the caller. `app_obj` may be null; its
    // "Path" is the folder with the client installer (see setInstallExeFile). `statistics` is held, but
    // nothing is recorded in it. Without `client` or `statistics` the object is not initialised afterwards;
    // nothing is raised.
    //
    // May be called again at any time. The sessions stay, but connected clients have to register again.
    // Raises kqaserrInvalidInterfaces for InterfaceVersions::Invalid.
    void Initialize(const std::string& app_id, std::shared_ptr<AppObject> app_obj,
                    std::shared_ptr<XMLBusClient> client, std::shared_ptr<Statistics> statistics,
                    const InterfaceVersions& interfaces_versions);
    // Stops listening as StopListening(false) does, with its wait and its errors, and releases bus client and
    // statistics. Connected clients and sessions stay. Does nothing unless initialised.
    void Terminate();
    // Listens on the port (0: a free one) and local address (empty: all), joins the bus and announces this
    // server. If the bus client is already running, waits up to 1 s for its queue to empty. Raises
    // kqaserrAlreadyConnected while listening, kqaserrNotInitialized unless initialised, and the errors of
    // Listener::Listen, in which case nothing was done. An error of the bus client's Send is raised after
    // everything else has been done. So is an error of the AppObject, but then nothing is announced. In both
    // cases the server listens.
    void Listen(std::int32_t listen_port, const std::string& local_address = {});
    // Stops accepting clients; with `disconnect_all` the connected ones are disconnected too. Announces this
    // on the bus and leaves it; may take up to 1 s. A bus client that was running before Listen is started
    // again. Raises kqaserrNotInitialized unless initialised. An error of the bus client's Send is raised
    // after everything else has been done.
    void StopListening(bool disconnect_all = false);
    // Whether a bus message is one of the three that the program must leave to this object:
    // "RequestBroadcastAS", "ASRegistrationResponse" or "ASLogoutUser" in the login server's schema. False
    // for null.
    bool CheckMessage(const MessagePtr& message) const;
    bool IsInitialized() const;
    // The client installer's file name, in the folder "Install" of the application's "Path". Initialize sets
    // it to the default "Setup.exe" ("Valtorin2.msi" for the application "VL2"); Listen reads it.
    void setInstallExeFile(const std::string& install_exe_file);

 private:
    class KQ_HIDDEN Impl;
    std::shared_ptr<Impl> impl_;  // held by whoever works in it, so events may destroy this object
};

}  // namespace kq
