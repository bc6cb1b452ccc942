// Logs one user in: a system login with the login server, then a server login with an application server.
//
//   kq::KQAppSessClient client(kq::MakePlatform());
//   kq::SystemLoginArguments login;
//   login.AppID = "Demo";  login.InterfaceVersion = "1.0";
//   login.LoginID = "ann"; login.Password = kq::Secret(password);
//   login.Address = "zeb.example.com"; login.Port = 7700; login.TimeOut = 10000;
//   client.SystemLogin(false, login);   // raises a kq::Error when it fails
//   client.ServerLogin(false);
//   client.SessionClient()->Send(message);
//
// A silent procedure (Interactive false) reports every failure as an Error, usually with a number of
// KQAppSessErrorEnum, which lists who raises what. The others: RuntimeError::TypeMismatch and
// RuntimeError::Overflow for stored settings that are not what they should be, RuntimeError::PathFileAccess
// for a settings file that cannot be written, NetError::Interrupted (below), and what is not expected,
// unchanged. Error::Cause tells what is behind a number that several failures share. A silent procedure
// leaves nothing half done and never runs longer than its time-outs and pauses.
//
// An interactive procedure asks the user. In a program without dialogs (Platform::dialogs is null) it shows
// nothing and goes on, and raises RuntimeError::InvalidProcedureCall where it would have to ask. SystemLogin
// and Login always ask, so they raise it before they do anything.
//
// One thread. The procedures run the event loop while they wait, so events arrive and other code runs in the
// meantime; starting a procedure inside another one of the same object raises
// RuntimeError::InvalidProcedureCall. Destroying the object, TerminateClient and EventLoop::Quit inside a
// procedure end its wait immediately and close its dialogs and message boxes; it raises
// NetError::Interrupted. So does every procedure that is started after Quit.
//
// While an interactive procedure waits for a server it shows a small window that says so. That window is
// modeless: the program's own windows take input in the meantime, so a program disables whatever would start
// a procedure again. A user who closes the window, or presses Escape in it, gives the procedure up, as with
// Cancel in a dialog: the wait ends immediately, the connection is released and the result is false.
//
// The settings file keeps the login server's address, port and time-out, and what the dialogs remember, for
// each AppID: $XDG_CONFIG_HOME/HLXApps/AppSess_<AppID>.ini, with ~/.config in place of an unset
// XDG_CONFIG_HOME; on Windows HLXApps\AppSess_<AppID>.ini in the user's documents folder. A path separator in
// the AppID becomes "_". When it cannot be written, an interactive login goes on with what its user has
// entered and warns of it once.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include <kqappsession/APClient.h>
#include <kqappsession/AppObject.h>
#include <kqappsession/Error.h>
#include <kqappsession/Export.h>
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
KQ_EXPORT const char* NameOf(KQAppSessLoginState state);

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

class KQ_EXPORT KQAppSessClient {
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
    // Ignored unless the collection has a profile of that name. RuntimeError::ObjectNotSet for null and while
    // there is no collection.
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

    // Stored as given, without any check. A ServerLogin to a port outside of 1 to 65535 cannot connect.
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

    // Logs in with the login server; the state is kqaslsSystemLogin afterwards. False only when an
    // interactive user gave up or chose to be replaced by a newer client. After false or an error nothing of
    // a login is left and the state is kqaslsNotLoggedIn. Profiles that could not be uploaded at the end of a
    // login do not fail it: the error is reported to the stray exception handler (see Signal.h).
    bool SystemLogin(bool interactive, const SystemLoginArguments& arguments);
    // The same; arguments.UseASServerForLogin counts (SystemLogin ignores it).
    bool SystemLogin2(bool interactive, const SystemLoginArguments& arguments);
    // Connects to the application server and registers the session. True when it is registered
    // (kqaslsServerLogin). False only when an interactive user gave up: LoginState tells whether for now
    // (kqaslsSystemLogin, and ServerLogin may be called again) or in favour of a new login
    // (kqaslsNotLoggedIn: session record, profiles and connections are released). Raises
    // kqaserrLoginNoSystem before a system login; silent: kqaserrLoginNoConnectAS, kqaserrLoginNoRegister,
    // kqaserrLoginRegisterFailed, each with the connection released and the state kqaslsSystemLogin.
    bool ServerLogin(bool interactive);

    // Both, with a user at the dialogs, until the user is registered or gives up (false).
    bool Login(const std::string& app_id, const std::string& interface_version,
               std::shared_ptr<AppObject> app_obj, const std::string& command_str = {},
               std::shared_ptr<const Icon> app_icon = nullptr);
    // Shows the server dialog with the stored settings of the login server and stores what the user confirms.
    // False when cancelled. kqaserrLoginSessionRequired before a login or a SetSystem... call has opened the
    // settings, RuntimeError::TypeMismatch or Overflow when they are malformed.
    bool ChangeConfiguration();

    // Sends the profiles to the login server. Empty or 0 arguments are filled from the settings file, and the
    // caller sees what was filled in. True when they were sent, false when an interactive user gave up.
    // Raises kqaserrLoginBadAddr when the address is empty, the port outside of 1 to 65535 or the time-out 0
    // or less, kqaserrLoginNoConnect (silent), RuntimeError::TypeMismatch if the stored time-out is missing
    // or not a number, RuntimeError::ObjectNotSet without a session record, the errors of APClient::Request
    // when no answer comes.
    bool UpdateProfilesEx(bool interactive, std::string& address, std::int32_t& port, std::int32_t& time_out);
    void UpdateProfiles();  // interactive, login server from the settings file
    // Adds the profile in place of one of its name, then uploads all; the ASP variant never asks.
    void AddReplaceProfile(std::shared_ptr<Profile> changed_profile);
    void AddReplaceProfileASP(std::shared_ptr<Profile> changed_profile);

    // What SetSystemLoginState takes: nothing, a text form, or the object itself (not null).
    template <class T>
    using TextOrObject = std::variant<std::monostate, std::string, std::shared_ptr<T>>;
    // Puts the client into the state that a system login would have left: kqaslsSystemLogin, but only with an
    // address and a port that is not 0. A translation table given as text is checked and then dropped: the
    // field keeps its value. A time-out of 0 is read from the settings file. Raises XMLMessage::kNotAMessage
    // for a session text that is not a message, kNotWebData for one of the other texts that does not load,
    // RuntimeError::ObjectNotSet when the session or the profiles are nothing, RuntimeError::TypeMismatch (or
    // Overflow) when the time-out is 0 and none is stored or the stored one is not a number. Fields set
    // before a failing step keep their new values.
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
