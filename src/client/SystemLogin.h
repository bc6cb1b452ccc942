// The system login: from nothing to a user logged in with the login server.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <kqappsession/KQAppSessClient.h>

#include "client/LoginExchange.h"
#include "client/LoginLoop.h"

namespace kq {

class SystemLogin final : public LoginLoop {
 public:
    SystemLogin(ClientState& state, bool interactive, SystemLoginArguments arguments);

 private:
    // RuntimeError::InvalidProcedureCall for an interactive one in a program without dialogs.
    LoginStates Begin() override;
    std::optional<LoginStates> Step(LoginStates state) override;
    void RemoveDownloadedClient();
    void StartDownloadedClient(const std::string& path);

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

    // The state after a login reply with this error code.
    LoginStates RefusedLogin(const ReplyError& error);
    // The login is granted already, so a failure is only reported as a stray exception.
    void UploadChangedProfiles();
    // The profile that the command line or the last login names; null when there is none.
    std::shared_ptr<Profile> NamedProfile(const Profiles& profiles) const;
    bool ClientAvailable() const { return IsTrue(validation_.fields.ClientAvailable); }

    bool interactive_;
    SystemLoginArguments arguments_;
    // Of this login, though the host opens another while its user is asked.
    std::optional<SessConfig> config_;
    LoginDetails details_;
    std::shared_ptr<APClient> connection_;
    Reply<ASValidateClientResponse> validation_;
    ASLoginResponse reply_;
};

// The version that a client program announces when the host names none: "Major.Minor.Revision" of its
// application object, else the file version of the program, else nothing.
std::string ClientVersionOf(const AppObject* app, const PlatformPtr& platform);

}  // namespace kq
