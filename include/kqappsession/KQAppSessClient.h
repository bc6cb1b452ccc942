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
// A silent procedure (`interactive` false) reports every failure as an Error, usually with a
// KQAppSessErrorEnum number; that header lists which procedure raises which. Other numbers are
// RuntimeError::TypeMismatch and RuntimeError::Overflow for malformed stored settings,
// RuntimeError::PathFileAccess for a settings file that cannot be written, NetError::Interrupted (below), and
// unexpected errors, unchanged. Error::Cause distinguishes failures that share a number. A silent procedure
// leaves nothing half done and never runs longer than its time-outs and pauses.
//
// An interactive procedure asks the user. In a program without dialogs (Platform::Interactive is false) it
// shows nothing, and raises RuntimeError::InvalidProcedureCall where it would have to ask. SystemLogin and
// Login always ask, so there they raise it before they do anything.
//
// One thread: all members and events belong to the thread of the platform's event loop. Procedures run the
// loop while they wait, so events arrive and other code runs in the meantime. Starting a procedure inside
// another one of the same object raises RuntimeError::InvalidProcedureCall. Destroying the object,
// TerminateClient and EventLoop::Quit end a running procedure immediately and close its dialogs and message
// boxes; the procedure raises NetError::Interrupted. So does every procedure that is started after Quit.
//
// While an interactive procedure waits for a server it shows a small window with a wait message. That window
// is modeless: the program's own windows accept input in the meantime, so a program should disable whatever
// could start a procedure again. A user who closes the window or presses Escape in it cancels the procedure:
// the wait ends immediately, the connection is released, and the result is false.
//
// The settings file stores the login server's address, port and time-out, and what the dialogs remember, for
// each AppID. On Linux it is $XDG_CONFIG_HOME/HLXApps/AppSess_<AppID>.ini (XDG_CONFIG_HOME defaults to
// ~/.config), on Windows HLXApps\AppSess_<AppID>.ini in the user's documents folder. A path separator in the
// AppID becomes "_". If the file cannot be written, an interactive login continues with what the user has
// entered and warns once.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

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

// How far the login has come.
enum KQAppSessLoginState : std::int32_t {
    kqaslsNotLoggedIn = 0,
    kqaslsSystemLogin = 1,  // logged in, but not registered with an application server, or not any more
    kqaslsServerLogin = 2,  // registered with the application server
};
// Its name, such as "kqaslsNotLoggedIn"; empty for any other number.
KQ_EXPORT const char* NameOf(KQAppSessLoginState state);

struct SystemLoginArguments {
    std::string AppID;             // the application identifier
    std::string InterfaceVersion;  // the interface version that the application needs
    std::string ClientVersion;     // empty: "Major.Minor.Revision" of AppObj, else the program's file version
    std::shared_ptr<AppObject> AppObj;    // may be null
    std::shared_ptr<const Icon> AppIcon;  // of the dialogs' windows, see MakeQtIcon; may be null
    std::string CommandStr;               // the program's command line; "/Profile NAME" chooses a profile
    std::string LoginID;                  // silent only
    Secret Password;                      // silent only
    // The login server, silent only. If the address is empty, all three are read from the settings file. A
    // port outside 1 to 65535 and a time-out of 0 or less raise kqaserrLoginBadAddr.
    std::string Address;
    std::int32_t Port = 0;
    std::int32_t TimeOut = 0;                   // ms
    std::optional<bool> UseASServerForLogin{};  // SystemLogin2 only; replaces the stored setting
};

// One step of a system login or a server login, for logs: which state it was, how long it took, what came of
// it. Names and numbers only: it holds no text that a user has typed or a server has sent, and no secret.
struct LoginStep {
    std::string_view Procedure;     // "SystemLogin" or "ServerLogin"
    std::string_view State;         // the name of the state: "lsAttemptLogin"
    std::string_view Role;          // what the step of that state does: "logs in"
    std::int64_t Milliseconds = 0;  // the step's time; the time that a user takes to answer is part of it
    // The name of the state that follows; "ended" after a procedure's last step; "cancelled" when the user
    // has closed the wait window; else the number of the error that the step raised, such as "0x80040A06" or
    // "10004", or "failed" when it has none. A procedure that a step leaves by an error or as cancelled still
    // cleans up, in a last step lsFailed.
    std::string Outcome;
    // The numbers of the errors that the step has met and not raised, in their order: a connection's error
    // behind kqaserrLoginNoConnect, an error that became a question, an upload that failed without notice.
    std::vector<std::int32_t> Errors;
};
// The step on one line, without its role: "SystemLogin lsAttemptLogin 512 lsGetTranslation". The numbers of
// Errors follow the outcome, each after a space.
KQ_EXPORT std::string LineOf(const LoginStep& step);

class ClientState;

class KQ_EXPORT KQAppSessClient {
 public:
    // Raises RuntimeError::ObjectNotSet when `platform` is null.
    explicit KQAppSessClient(PlatformPtr platform);
    ~KQAppSessClient();  // as TerminateClient, without events
    KQAppSessClient(const KQAppSessClient&) = delete;
    KQAppSessClient& operator=(const KQAppSessClient&) = delete;

    // LoginState has changed, to the argument: by a procedure of this object, by SetSystemLoginState, or
    // because the session connection has ended. Raised on the loop's thread, from inside the call that
    // changes the state. A handler that wants to start a procedure posts that to the loop.
    Signal<KQAppSessLoginState> LoginStateChanged;

    // A step of a system login or a server login has ended; a copy of the argument may be kept. Raised on
    // the loop's thread inside the procedure, between two steps or after the last one; what holds for
    // handlers of LoginStateChanged holds here as well.
    //
    // A trace in a file needs no handler: if the settings file has the key "TraceFile", each step is added to
    // the file of that path, as LineOf writes it after the time in UTC. The key is read when a procedure
    // starts. A missing file is created, a missing folder is not. A file that cannot be written is ignored.
    Signal<const LoginStep&> LoginStepDone;

    // What a login delivers; null before. The objects are shared with the caller. A profile that is added to
    // or removed from the collection while no procedure runs is uploaded immediately, as by UpdateProfiles,
    // before Add or Remove returns. An error of that upload is reported to the stray exception handler (see
    // Signal.h). The next upload sends the whole collection, so it makes up for a failed one.
    std::shared_ptr<kq::TranslationTable> TranslationTable() const;
    std::shared_ptr<kq::Profiles> Profiles() const;
    std::shared_ptr<Profile> CurrentProfile() const;
    // Ignored unless the collection has a profile of that name. Raises RuntimeError::ObjectNotSet for null
    // and while there is no collection.
    void SetCurrentProfile(std::shared_ptr<Profile> profile);
    // The connection to the application server; null before a server login and after TerminateClient. Every
    // ServerLogin makes a new one and disconnects the old one, so handlers have to be connected again: when
    // ServerLogin has returned true, or in LoginStateChanged at kqaslsServerLogin. No block has been
    // delivered by then. When the connection ends, the object stays and LoginState becomes kqaslsSystemLogin.
    // Nothing reconnects until ServerLogin is called again.
    std::shared_ptr<APClient> SessionClient() const;
    std::shared_ptr<KQAppSessionInfo> SessionInfo() const;  // never null
    // Default true. False: the user does not choose a profile, the login uses the one named "Default" and
    // creates it if it is missing.
    bool UseProfiles() const;
    void SetUseProfiles(bool use);
    KQAppSessLoginState LoginState() const;

    // The application server that ServerLogin connects to. A system login sets all three: the address that it
    // used itself, the port that the login server reported, and its TimeOut argument. Values are stored as
    // given, without any check; ServerLogin cannot connect to a port outside 1 to 65535.
    std::string AppServerAddress() const;
    void SetAppServerAddress(const std::string& address);
    std::int32_t AppServerPort() const;
    void SetAppServerPort(std::int32_t port);
    std::int32_t AppServerTimeOut() const;  // ms; 0 or less: APClient::kDefaultTimeOut
    void SetAppServerTimeOut(std::int32_t time_out);
    // System logins: use only application servers at this address and port. Default empty and 0: no
    // restriction. With neither set, a login through the application server is restricted to the address and
    // port that it connects to.
    std::string RestrictIP() const;
    void SetRestrictIP(const std::string& address);
    std::int32_t RestrictPort() const;
    void SetRestrictPort(std::int32_t port);
    // Whether the last system login went through the application server, default false. Setting it does not
    // change the next login, which uses the stored setting or its argument.
    bool UseASServerForLogin() const;
    void SetUseASServerForLogin(bool use);

    // Logs in with the login server; LoginState is kqaslsSystemLogin afterwards. False only when an
    // interactive user gave up or chose to start a newer client. After false or an error nothing of a login
    // is left, and LoginState is kqaslsNotLoggedIn. Profiles that could not be uploaded at the end of a login
    // do not make it fail: the error is reported to the stray exception handler (see Signal.h), and its
    // number is among the Errors of the step lsGetProfile.
    bool SystemLogin(bool interactive, const SystemLoginArguments& arguments);
    // The same with arguments.UseASServerForLogin, which SystemLogin ignores.
    bool SystemLogin2(bool interactive, const SystemLoginArguments& arguments);
    // Connects to the application server and registers the session. True when it is registered
    // (kqaslsServerLogin). False only when an interactive user gave up. LoginState is then kqaslsSystemLogin,
    // and ServerLogin may be called again, or kqaslsNotLoggedIn if the user wants a new login: session
    // record, profiles and connections are released. Raises kqaserrLoginNoSystem before a system login. A
    // silent one raises kqaserrLoginNoConnectAS, kqaserrLoginNoRegister or kqaserrLoginRegisterFailed; the
    // connection is then released and LoginState is kqaslsSystemLogin.
    bool ServerLogin(bool interactive);

    // Both logins, interactive, until the user is registered (true) or gives up (false).
    bool Login(const std::string& app_id, const std::string& interface_version,
               std::shared_ptr<AppObject> app_obj, const std::string& command_str = {},
               std::shared_ptr<const Icon> app_icon = nullptr);
    // Shows the server dialog with the stored settings of the login server and stores what the user confirms.
    // False when cancelled. Raises kqaserrLoginSessionRequired before a login or a SetSystem... call has
    // opened the settings, and RuntimeError::TypeMismatch or Overflow when they are malformed.
    bool ChangeConfiguration();

    // Sends the profiles to the login server. Arguments that are empty or 0 are read from the settings file;
    // the caller receives the values used, also on an error. `time_out`: milliseconds. True when they were
    // sent, false when an interactive user gave up.
    //
    // Raises kqaserrLoginBadAddr if the address is empty, the port outside 1 to 65535 or the time-out 0 or
    // less, kqaserrLoginNoConnect (silent), RuntimeError::TypeMismatch if the stored time-out is missing or
    // not a number, RuntimeError::ObjectNotSet without a session record, and the errors of APClient::Request
    // when no answer arrives.
    bool UpdateProfilesEx(bool interactive, std::string& address, std::int32_t& port, std::int32_t& time_out);
    void UpdateProfiles();  // interactive, with the stored login server; its errors
    // Adds the profile, in place of one of the same name, then uploads all of them. AddReplaceProfile is
    // interactive, AddReplaceProfileASP silent. Raise RuntimeError::ObjectNotSet for null and while there is
    // no collection, and the errors of UpdateProfilesEx; the profile stays added.
    void AddReplaceProfile(std::shared_ptr<Profile> changed_profile);
    void AddReplaceProfileASP(std::shared_ptr<Profile> changed_profile);

    // An argument of SetSystemLoginState: nothing, a text form, or the object itself (not null).
    template <class T>
    using TextOrObject = std::variant<std::monostate, std::string, std::shared_ptr<T>>;
    // Puts the client into the state that a system login would have left: kqaslsSystemLogin, but only with an
    // address and a port that is not 0. A translation table given as text is checked, and the property keeps
    // its value. An empty profile name means the first profile. A time-out (ms) of 0 is read from the
    // settings file.
    //
    // Raises XMLMessage::kNotAMessage for a session text that is not a message, kNotWebData for one of the
    // other texts that does not load, RuntimeError::ObjectNotSet when the session or the profiles are
    // nothing, and RuntimeError::TypeMismatch (or Overflow) when the time-out is 0 and the stored one is
    // missing or not a number. Properties set before a failing step keep their new values.
    void SetSystemLoginState(const TextOrObject<XMLMessage>& session_msg,
                             const TextOrObject<kq::TranslationTable>& translation_table,
                             const TextOrObject<kq::Profiles>& profiles,
                             const std::string& current_profile_name, const std::string& app_server_address,
                             std::int32_t app_server_port, std::int32_t app_server_time_out);
    // Store the login server's settings (port, time-out in ms) in the settings file, without any check. With
    // an empty address nothing is written. Raise kqaserrLoginSessionRequired without a session record, and
    // RuntimeError::PathFileAccess, with the file's path in the description, when the file cannot be written.
    void SetSystemConnectState(const std::string& system_address, std::int32_t system_port,
                               std::int32_t system_time_out);
    void SetSystemConnectState2(const std::string& system_address, std::int32_t system_port,
                                std::int32_t system_time_out, bool use_as_server_for_login);
    // Disconnects both connections and ends a running procedure. Everything else stays until the end of the
    // session connection arrives as an event, which changes LoginState to kqaslsSystemLogin. Never raises.
    void TerminateClient();
    // The first IPv4 address of the host name as dotted text, empty if there is none. May take as long as the
    // system's name resolution. Never raises.
    std::string IPAddressFromHostName(const std::string& host_name) const;

 private:
    std::shared_ptr<ClientState> state_;  // outlives this object while a procedure runs
    Owner owner_;
};

}  // namespace kq
