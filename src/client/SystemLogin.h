// The system login: from nothing to a user logged in with the login server.
//
// One step for each state, in the order of a successful login; a step returns the next state. The steps know
// neither mode nor dialogs: they put failures and questions to the attendant.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <kqappsession/KQAppSessClient.h>

#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "client/LoginExchange.h"

namespace kq {

class SystemLogin {
 public:
    // RuntimeError::InvalidProcedureCall for an interactive one in a program without dialogs.
    SystemLogin(ClientState& state, bool interactive, SystemLoginArguments arguments);

    // True when the user is logged in. Every failure of a silent login, and what no step expects, is raised
    // after the work of lsFailed is done.
    bool Run();

 private:
    void Prepare();
    void RemoveDownloadedClient();
    void StartDownloadedClient(const std::string& path);
    LoginStates Step(LoginStates state);

    LoginStates GetLoginInfo();
    LoginStates AttemptConnectZEB();
    LoginStates ValidateClient();
    LoginStates CheckClientDownload();
    LoginStates CheckValidZEBInterface();
    LoginStates CheckValidInterface();
    LoginStates AttemptLogin();
    LoginStates ChangePassword();
    LoginStates GetTranslation();
    LoginStates GetSessionInfo();
    LoginStates GetProfile();
    void Finish();
    void Failed();

    LoginStates Meet(LoginFailure failure, const Args& question = {}, const Args& error = {});
    // The state after a login reply with this error code.
    LoginStates RefusedLogin(const ReplyError& error);
    // The login is granted already, so a failure is only reported as a stray exception.
    void UploadChangedProfiles();
    // The profile that the command line or the last login names; null when there is none.
    std::shared_ptr<Profile> NamedProfile(const Profiles& profiles) const;
    bool ClientAvailable() const;

    ClientState& state_;
    Procedure procedure_;
    std::unique_ptr<LoginAttendant> attendant_;
    SystemLoginArguments arguments_;

    std::optional<SessConfig>
        config_;  // of this login, though the host opens another while its user is asked
    LoginDetails details_;
    std::shared_ptr<APClient> connection_;
    std::shared_ptr<XMLMessage> validation_;  // the reply that the checks read
    std::shared_ptr<XMLMessage> reply_;       // the login's reply
    LoginFailure offer_{};                    // the question that offered the download
};

// The version that a client program announces when the host names none: "Major.Minor.Revision" of its
// application object, else the file version of the program, else nothing.
std::string ClientVersionOf(const AppObject* app, const PlatformPtr& platform);

}  // namespace kq
