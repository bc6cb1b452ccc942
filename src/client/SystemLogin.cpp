// The steps up to the login's reply; what the reply delivers is taken in SystemLoginResults.cpp.
#include "client/SystemLogin.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "client/ClientTexts.h"
#include "platform/Folders.h"
#include "platform/Machine.h"
#include "platform/Process.h"

namespace kq {

namespace {

constexpr std::int32_t kUnexpectedError = 406;
constexpr std::int32_t kWaitConnecting = 300;
constexpr std::int32_t kWaitLoggingIn = 302;
constexpr std::int32_t kWaitValidating = 312;

// Codes of the login server's protocol.
constexpr std::int32_t kUnknownUserOrPassword = 7721;
constexpr std::int32_t kPasswordMustChange = 7722;
constexpr std::int32_t kPasswordExpires = 7724;
constexpr std::int32_t kTooManyUsers = 7790;
constexpr std::int32_t kTooManyAttempts = 7602;
constexpr std::int32_t kServerBusy = 7603;
constexpr std::int32_t kNoApplicationServer = 7604;
constexpr std::int32_t kServerFailed = 7609;
constexpr const char* kUnknownUserCode = "ZEBError-132";

// The login server cannot do now what may succeed later, whatever the user typed.
bool IsServerFailure(std::int32_t code) {
    return code == kTooManyAttempts || code == kServerBusy || code == kNoApplicationServer ||
           code == kServerFailed;
}

// Without a restriction of the client's own, a login by way of the application server is restricted to where
// it is made; otherwise each value counts on its own.
template <class Request>
void Restrict(Request& request, const ClientState& state, const LoginDetails& details) {
    if (state.restrict_ip.empty() && state.restrict_port == 0) {
        if (!details.server.use_as_server_for_login) return;
        request.RestrictIP = details.server.address;
        request.RestrictPort = TextOf(details.server.port);
        return;
    }
    request.RestrictIP = state.restrict_ip;
    if (state.restrict_port != 0) request.RestrictPort = TextOf(state.restrict_port);
}

}  // namespace

SystemLogin::SystemLogin(ClientState& state, bool interactive, SystemLoginArguments arguments)
    : LoginLoop(state, interactive, "SystemLogin", kUnexpectedError),
      interactive_(interactive),
      arguments_(std::move(arguments)) {}

LoginStates SystemLogin::Begin() {
    if (interactive_ && !state_.platform->Interactive()) {
        Raise(RuntimeError::InvalidProcedureCall,
              "An interactive login asks its user through dialogs, and this program has none");
    }
    config_.emplace(state_.OpenConfig(arguments_.AppID));
    RemoveDownloadedClient();
    state_.ReleaseLoginClient();
    state_.SetLoginState(kqaslsNotLoggedIn);
    return lsGetLoginInfo;
}

void SystemLogin::RemoveDownloadedClient() {
    const std::string old_client = config_->Read(setting::LastDownloadedClient);
    if (old_client.empty()) return;
    state_.platform->Parts().folders->DeleteFile(old_client);
    config_->Write(setting::LastDownloadedClient, "");
}

std::optional<LoginStates> SystemLogin::Step(LoginStates state) {
    switch (state) {
        case lsGetLoginInfo:
            return GetLoginInfo();
        case lsAttemptConnectZEB:
            return AttemptConnectZEB();
        case lsValidateClient:
            return ValidateClient();
        case lsCheckClientDownload:
            return CheckClientDownload();
        case lsCheckValidZEBInterface:
            return CheckValidZEBInterface();
        case lsCheckValidInterface:
            return CheckValidInterface();
        case lsAttemptLogin:
            return AttemptLogin();
        case lsChangePassword:
            return ChangePassword();
        case lsGetTranslation:
            return GetTranslation();
        case lsGetSessionInfo:
            return GetSessionInfo();
        case lsGetProfile:
            return GetProfile();
        case lsFinish:
            Finish();
            return std::nullopt;
        case lsFailed:
            Failed();
            return std::nullopt;
        default:
            Raise(RuntimeError::InvalidProcedureCall);
    }
}

LoginStates SystemLogin::GetLoginInfo() {
    details_ = LoginDetails();
    attendant_->HideWait();
    return attendant_->GetLoginInfo(*config_, arguments_, state_.use_profiles, details_) ? lsAttemptConnectZEB
                                                                                         : lsFailed;
}

LoginStates SystemLogin::AttemptConnectZEB() {
    attendant_->ShowWait(kWaitConnecting);
    connection_ = state_.NewLoginClient();
    std::string failure;
    try {
        connection_->Connect(details_.server.address, details_.server.port, "", details_.server.time_out);
        return lsValidateClient;
    } catch (const Error& error) {
        procedure_->Note(error.Number());
        failure = state_.texts.ForUser(error);
    }
    return Meet(LoginFailure::NoConnect, {}, {failure});
}

LoginStates SystemLogin::ValidateClient() {
    attendant_->ShowWait(kWaitValidating);
    ASValidateClientRequest request;
    request.AppID = arguments_.AppID;
    request.InterfaceVersion = arguments_.InterfaceVersion;
    request.ClientVersion = arguments_.ClientVersion.empty()
                                ? ClientVersionOf(arguments_.AppObj.get(), state_.platform)
                                : arguments_.ClientVersion;
    Restrict(request, state_, details_);
    validation_ = Exchange<ASValidateClientResponse>(*procedure_, *connection_, request.Build(),
                                                     details_.server.time_out);
    if (!validation_.received) return Meet(LoginFailure::NoValidateReply, {}, {validation_.failure});
    if (validation_.improper != 0) {
        const std::string text = state_.texts.Text(validation_.improper);
        return Meet(LoginFailure::ValidationServerFailed, {text}, {text});
    }
    const ASValidateClientResponse& response = validation_.fields;
    if (const ReplyError error = ReadReplyError(response.ErrorNumber); error.failed) {
        const std::string text = ZEBFailureText(state_.texts, response.ErrorDesc, response.ErrorParam);
        return Meet(IsServerFailure(error.code) ? LoginFailure::ValidationServerFailed
                                                : LoginFailure::ValidationFailed,
                    {text}, {text});
    }
    return ClientAvailable() ? Meet(LoginFailure::NewClient) : lsCheckValidZEBInterface;
}

LoginStates SystemLogin::CheckClientDownload() {
    if (!ClientAvailable()) return lsCheckValidZEBInterface;
    attendant_->HideWait();
    bool try_again = false;
    if (const auto path = attendant_->DownloadClient(connection_, try_again)) {
        StartDownloadedClient(*path);
        return lsFailed;
    }
    return try_again ? lsGetLoginInfo : Meet(met_);  // the question that offered it, again
}

// The next start removes the file, whether or not it could be started.
void SystemLogin::StartDownloadedClient(const std::string& path) {
    RemoveDownloadedClient();
    config_->Write(setting::LastDownloadedClient, path);
    procedure_->CheckTermination();
    const Platform::Machine& machine = state_.platform->Parts();
    if (const std::string reason = machine.process->Start(path); !reason.empty()) {
        Raise(RuntimeError::InvalidProcedureCall,
              ClientText(ClientSentence::ClientNotStarted, state_.texts, {path, reason}));
    }
}

LoginStates SystemLogin::CheckValidZEBInterface() {
    if (ReceivedVal(validation_.message->Version()) == 1.0) return lsCheckValidInterface;
    return Meet(ClientAvailable() ? LoginFailure::ClientTooOldNewOne : LoginFailure::ClientTooOld);
}

LoginStates SystemLogin::CheckValidInterface() {
    if (IsTrue(validation_.fields.InterfaceAvailable)) return lsAttemptLogin;
    return Meet(ClientAvailable() ? LoginFailure::NoServersNewClient : LoginFailure::NoServers);
}

LoginStates SystemLogin::AttemptLogin() {
    attendant_->ShowWait(kWaitLoggingIn);
    ASLoginRequest request;
    request.AppID = arguments_.AppID;
    request.LoginID = details_.login_id;
    request.Password = details_.password;
    request.NewPassword = details_.new_password;
    Restrict(request, state_, details_);
    auto reply =
        Exchange<ASLoginResponse>(*procedure_, *connection_, request.Build(), details_.server.time_out);
    if (!reply.received) return Meet(LoginFailure::NoLoginReply, {}, {details_.login_id, ""});
    if (reply.improper != 0) {
        const std::string text = state_.texts.Text(reply.improper);
        return Meet(LoginFailure::LoginServerFailed, {text}, {text});
    }
    reply_ = std::move(reply.fields);
    const ReplyError error = ReadReplyError(reply_.ErrorNumber);
    return error.failed ? RefusedLogin(error) : lsGetTranslation;
}

LoginStates SystemLogin::RefusedLogin(const ReplyError& error) {
    switch (error.code) {
        case kUnknownUserOrPassword:
            return Meet(LoginFailure::LoginFailed, {state_.texts.MapZEBError(kUnknownUserCode)},
                        {reply_.ErrorDesc});
        case kPasswordMustChange:
            return Meet(LoginFailure::MustChangePassword);
        case kPasswordExpires:
            return ReceivedVal(reply_.DaysToExpirePassword) > 0
                       ? Meet(LoginFailure::PasswordExpires, {reply_.DaysToExpirePassword})
                       : Meet(LoginFailure::MustChangePassword);
        case kTooManyUsers:
            return Meet(LoginFailure::TooManyUsers,
                        {state_.texts.GetASErrorText(kqaserrLoginTooManyUsers, {reply_.ErrorParam})},
                        {reply_.ErrorParam});
        default: {
            const std::string text = ZEBFailureText(state_.texts, reply_.ErrorDesc, reply_.ErrorParam);
            return Meet(
                IsServerFailure(error.code) ? LoginFailure::LoginServerFailed : LoginFailure::LoginFailed,
                {text}, {text});
        }
    }
}

LoginStates SystemLogin::ChangePassword() {
    attendant_->HideWait();
    auto new_password = attendant_->GetNewPassword(arguments_);
    if (!new_password) return lsFailed;
    details_.new_password = std::move(*new_password);
    return lsAttemptLogin;
}

}  // namespace kq
