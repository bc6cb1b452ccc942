// Logs one user in: a system login with the login server, then a server login with an application server.
//
//   kq::KQAppSessClient client(kq::MakePlatform());
//   kq::SystemLoginArguments login;
//   login.AppID = "Demo";  login.InterfaceVersion = "1.0";
//   login.LoginID = "ann"; login.Password = kq::Secret(password);
//   login.Address = "zeb.example.com"; login.Port = 7710; login.TimeOut = 10000;
//   client.SystemLogin(false, login);   // raises a kq::Error when it fails
//   client.ServerLogin(false);
//   client.SessionClient()->Send(message);
//
// A silent procedure (Interactive false) raises every failure as an Error with a number of
// KQAppSessErrorEnum, leaves nothing half done and takes no longer than its time-outs and pauses. An
// interactive one asks the user and needs a platform with dialogs (RuntimeError::InvalidProcedureCall
// without).
//
// One thread. The procedures run the event loop while they wait, so events arrive and other code runs
// meanwhile; starting a procedure inside another one of the same object raises
// RuntimeError::InvalidProcedureCall. Dropping the object or TerminateClient inside a procedure ends the
// procedure's wait at once and closes its dialog; it raises NetError::Interrupted.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include <kqappsession/APClient.h>
#include <kqappsession/AppObject.h>
#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessErrorEnum.h>
#include <kqappsession/KQAppSessionInfo.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Secret.h>
#include <kqappsession/Signal.h>
#include <kqappsession/WebData.h>

namespace kq {

class Icon;

// How far a login has come.
enum KQAppSessLoginState : std::int32_t {
    kqaslsNotLoggedIn = 0,
    kqaslsSystemLogin = 1,  // logged in with the login server; no application-server session, or it was lost
    kqaslsServerLogin = 2,  // registered with the application server as well
};
const char* NameOf(KQAppSessLoginState state);

struct SystemLoginArguments {
    std::string AppID;             // the application identifier
    std::string InterfaceVersion;  // the interface version that the application needs
    std::string ClientVersion;     // empty: "Major.Minor.Revision" of AppObj, else the program's file version
    std::shared_ptr<AppObject> AppObj;    // may be null
    std::shared_ptr<const Icon> AppIcon;  // of the dialogs' windows, made by the port; may be null
    std::string CommandStr;               // the program's command line; "/Profile NAME" chooses a profile
    std::string LoginID;                  // silent only
    Secret Password;                      // silent only
    // Silent only: the login server. An empty address: all three are read from the settings file. A port
    // outside of 1 to 65535 and a time-out of 0 or less raise kqaserrLoginBadAddr.
    std::string Address;
    std::int32_t Port = 0;
    std::int32_t TimeOut = 0;                   // ms
    std::optional<bool> UseASServerForLogin{};  // given: replaces the stored setting
};

class ClientState;

class KQAppSessClient {
 public:
    // RuntimeError::ObjectNotSet for null.
    explicit KQAppSessClient(PlatformPtr platform);
    ~KQAppSessClient();  // TerminateClient
    KQAppSessClient(const KQAppSessClient&) = delete;
    KQAppSessClient& operator=(const KQAppSessClient&) = delete;

    // LoginState is another one now, the argument: by a procedure of this object, SetSystemLoginState, or the
    // end of the session connection. Raised on the loop's thread, within the call that changes the state; a
    // handler that wants to start a procedure posts that to the loop.
    Signal<KQAppSessLoginState> LoginStateChanged;

    // Null before a login has delivered them. Objects are shared with the caller: a profile added to the
    // collection or removed from it outside of a procedure is uploaded immediately, as by UpdateProfiles.
    // What that upload raises is reported to the stray exception handler (see Signal.h); the next upload
    // sends the whole collection, so it makes up for a failed one.
    std::shared_ptr<kq::TranslationTable> TranslationTable() const;
    std::shared_ptr<kq::Profiles> Profiles() const;
    std::shared_ptr<Profile> CurrentProfile() const;
    // A profile whose name the collection does not hold is ignored. RuntimeError::ObjectNotSet for null and
    // while there is no collection.
    void SetCurrentProfile(std::shared_ptr<Profile> profile);
    // The connection to the application server; null before a server login and after TerminateClient. Every
    // ServerLogin makes a new one and disconnects the old one, so handlers have to be connected again: when
    // ServerLogin has returned true, or in LoginStateChanged at kqaslsServerLogin. That is before the first
    // block is delivered. When the connection ends, the object stays and LoginState becomes
    // kqaslsSystemLogin; nothing reconnects until ServerLogin is called again.
    std::shared_ptr<APClient> SessionClient() const;
    std::shared_ptr<KQAppSessionInfo> SessionInfo() const;  // never null
    bool UseProfiles() const;
    void SetUseProfiles(bool use);
    KQAppSessLoginState LoginState() const;

    // Stored as given, without any check.
    std::string AppServerAddress() const;
    void SetAppServerAddress(const std::string& address);
    std::int32_t AppServerPort() const;
    void SetAppServerPort(std::int32_t port);
    std::int32_t AppServerTimeOut() const;  // ms; 0 or less: APClient::kDefaultTimeOut
    void SetAppServerTimeOut(std::int32_t time_out);
    std::string RestrictIP() const;
    void SetRestrictIP(const std::string& address);
    std::int32_t RestrictPort() const;
    void SetRestrictPort(std::int32_t port);
    bool UseASServerForLogin() const;
    void SetUseASServerForLogin(bool use);

    // Logs in with the login server. True when the user is logged in; false only when an interactive user
    // gave up.
    bool SystemLogin(bool interactive, const SystemLoginArguments& arguments);
    // The same; arguments.UseASServerForLogin counts (SystemLogin ignores it).
    bool SystemLogin2(bool interactive, const SystemLoginArguments& arguments);
    // Connects to the application server and registers the session. kqaserrLoginNoSystem before a system
    // login.
    bool ServerLogin(bool interactive);

    // Both, with a user at the dialogs, until the user is registered or gives up (false).
    bool Login(const std::string& app_id, const std::string& interface_version,
               std::shared_ptr<AppObject> app_obj, const std::string& command_str = {},
               std::shared_ptr<const Icon> app_icon = nullptr);
    // Shows the server dialog with the stored settings of the login server and keeps what the user confirms.
    // False when cancelled. kqaserrLoginSessionRequired before a login or a SetSystem... call has opened the
    // settings.
    bool ChangeConfiguration();

    // Sends the profiles to the login server. Empty or 0 arguments are filled from the settings file, and the
    // caller sees what was filled in. True when they were sent, false when an interactive user gave up.
    // kqaserrLoginBadAddr, kqaserrLoginNoConnect, RuntimeError::TypeMismatch for a stored time-out that is
    // none, RuntimeError::ObjectNotSet without a session record, the errors of APClient::Request when no
    // answer comes.
    bool UpdateProfilesEx(bool interactive, std::string& address, std::int32_t& port, std::int32_t& time_out);
    void UpdateProfiles();  // interactive, login server from the settings file
    // Adds the profile in place of one of its name, then uploads all; the ASP variant never asks.
    void AddReplaceProfile(std::shared_ptr<Profile> changed_profile);
    void AddReplaceProfileASP(std::shared_ptr<Profile> changed_profile);

    // What SetSystemLoginState takes: nothing, a text form, or the object itself (not null).
    template <class T>
    using TextOrObject = std::variant<std::monostate, std::string, std::shared_ptr<T>>;
    // Puts the client into the state that a system login would have left. A translation table given as text
    // is checked and then dropped: the field keeps its value. Fields set before a failing step keep their new
    // values.
    void SetSystemLoginState(const TextOrObject<XMLMessage>& session_msg,
                             const TextOrObject<kq::TranslationTable>& translation_table,
                             const TextOrObject<kq::Profiles>& profiles,
                             const std::string& current_profile_name, const std::string& app_server_address,
                             std::int32_t app_server_port, std::int32_t app_server_time_out);
    // Store the login server's settings (port, time-out in ms) unchecked in the settings file; with an empty
    // address nothing is written. Raise kqaserrLoginSessionRequired without a session record, and
    // RuntimeError::PathFileAccess, with the file's path in the description, when the file cannot be written.
    void SetSystemConnectState(const std::string& system_address, std::int32_t system_port,
                               std::int32_t system_time_out);
    void SetSystemConnectState2(const std::string& system_address, std::int32_t system_port,
                                std::int32_t system_time_out, bool use_as_server_for_login);
    // Drops both connections; nothing else changes until the session connection's end arrives as an event,
    // which turns LoginState to kqaslsSystemLogin. Never raises.
    void TerminateClient();
    // The first IPv4 address of the host as dotted text, empty when there is none. Never raises.
    std::string IPAddressFromHostName(const std::string& host_name) const;

 private:
    std::shared_ptr<ClientState> state_;  // outlives this object while a procedure runs
    Owner owner_;
};

}  // namespace kq
