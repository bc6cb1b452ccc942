// The driver of the system login and its steps up to the login's reply; what the reply delivers is taken in
// SystemLoginResults.cpp.
#include "client/SystemLogin.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "client/ClientTexts.h"
#include "messages/ASMessages.h"
#include "platform/Folders.h"
#include "platform/Machine.h"
#include "platform/Process.h"

namespace kq {

namespace {

constexpr std::int32_t kUnexpectedError = 406;
constexpr std::int32_t kWaitConnecting = 300;
constexpr std::int32_t kWaitLoggingIn = 302;
constexpr std::int32_t kWaitValidating = 312;
constexpr const char* kLastDownloadedClient = "LastDownloadedClient";

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
        if (!details.use_as_server_for_login) return;
        request.RestrictIP = details.address;
        request.RestrictPort = TextOf(details.port);
        return;
    }
    request.RestrictIP = state.restrict_ip;
    if (state.restrict_port != 0) request.RestrictPort = TextOf(state.restrict_port);
}

}  // namespace

SystemLogin::SystemLogin(ClientState& state, bool interactive, SystemLoginArguments arguments)
    : state_(state),
      procedure_(state),
      attendant_(MakeAttendant(interactive, state)),
      arguments_(std::move(arguments)) {
    if (interactive && !state.platform->Interactive()) {
        Raise(RuntimeError::InvalidProcedureCall,
              "An interactive login asks its user through dialogs, and this program has none");
    }
}

bool SystemLogin::Run() {
    try {
        Prepare();
        LoginStates state = lsGetLoginInfo;
        while (state != lsFailed) {
            procedure_.CheckTermination();
            try {
                if (state == lsFinish) {
                    Finish();
                    return true;
                }
                state = Step(state);
            } catch (const Error& error) {
                procedure_.CheckTermination();
                attendant_->HideWait();
                state = attendant_->MeetUnexpected(kUnexpectedError, error);
            }
        }
        procedure_.CheckTermination();
    } catch (const UserGaveUp&) {
        // Ends as lsFailed does.
    } catch (...) {
        Failed();
        throw;
    }
    Failed();
    return false;
}

void SystemLogin::Prepare() {
    config_.emplace(state_.OpenConfig(arguments_.AppID));
    RemoveDownloadedClient();
    state_.ReleaseLoginClient();
    state_.SetLoginState(kqaslsNotLoggedIn);
}

void SystemLogin::RemoveDownloadedClient() {
    const std::string old_client = config_->Setting(kLastDownloadedClient, "");
    if (old_client.empty()) return;
    state_.platform->Parts().folders->DeleteFile(old_client);
    config_->SetSetting(kLastDownloadedClient, "");
}

LoginStates SystemLogin::Step(LoginStates state) {
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
        default:
            Raise(RuntimeError::InvalidProcedureCall);
    }
}

LoginStates SystemLogin::Meet(LoginFailure failure, const Args& question, const Args& error) {
    procedure_.CheckTermination();
    attendant_->HideWait();
    const LoginStates next = attendant_->Meet(failure, question, error);
    if (next == lsCheckClientDownload) offer_ = failure;
    return next;
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
        connection_->Connect(details_.address, details_.port, "", details_.time_out);
        if (connection_->Connected()) return lsValidateClient;
    } catch (const Error& error) {
        failure = error.Description();
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
    const Reply reply =
        Exchange(state_, *connection_, request.Build(), ASValidateClientResponse::kType, details_.time_out);
    if (!reply.received) return Meet(LoginFailure::NoValidateReply, {}, {reply.failure});
    if (reply.improper != 0) {
        const std::string text = state_.texts.Text(reply.improper);
        return Meet(LoginFailure::ValidationServerFailed, {text}, {text});
    }
    validation_ = reply.message;
    const auto response = ASValidateClientResponse::Read(*validation_);
    if (const ReplyError error = ReadReplyError(response.ErrorNumber); error.failed) {
        const std::string text = ZEBFailureText(state_.texts, response.ErrorDesc, response.ErrorParam);
        return Meet(IsServerFailure(error.code) ? LoginFailure::ValidationServerFailed
                                                : LoginFailure::ValidationFailed,
                    {text}, {text});
    }
    return ClientAvailable() ? Meet(LoginFailure::NewClient) : lsCheckValidZEBInterface;
}

bool SystemLogin::ClientAvailable() const {
    return validation_ && IsTrue(validation_->Field("ClientAvailable"));
}

LoginStates SystemLogin::CheckClientDownload() {
    if (!ClientAvailable()) return lsCheckValidZEBInterface;
    attendant_->HideWait();
    bool try_again = false;
    if (const auto path = attendant_->DownloadClient(connection_, try_again)) {
        StartDownloadedClient(*path);
        return lsFailed;
    }
    return try_again ? lsGetLoginInfo : Meet(offer_);
}

// The next start removes the file, whether or not it could be started.
void SystemLogin::StartDownloadedClient(const std::string& path) {
    RemoveDownloadedClient();
    config_->SetSetting(kLastDownloadedClient, path);
    procedure_.CheckTermination();
    const Platform::Machine& machine = state_.platform->Parts();
    if (const std::string reason = machine.process->Start(path); !reason.empty()) {
        Raise(RuntimeError::InvalidProcedureCall,
              ClientText(ClientSentence::ClientNotStarted, *machine.locale, {path, reason}));
    }
}

LoginStates SystemLogin::CheckValidZEBInterface() {
    if (ReceivedVal(validation_->Version()) == 1.0) return lsCheckValidInterface;
    return Meet(ClientAvailable() ? LoginFailure::ClientTooOldNewOne : LoginFailure::ClientTooOld);
}

LoginStates SystemLogin::CheckValidInterface() {
    if (IsTrue(validation_->Field("InterfaceAvailable"))) return lsAttemptLogin;
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
    const Reply reply =
        Exchange(state_, *connection_, request.Build(), ASLoginResponse::kType, details_.time_out);
    if (!reply.received) return Meet(LoginFailure::NoLoginReply, {}, {details_.login_id, ""});
    if (reply.improper != 0) {
        const std::string text = state_.texts.Text(reply.improper);
        return Meet(LoginFailure::LoginServerFailed, {text}, {text});
    }
    reply_ = reply.message;
    const ReplyError error = ReadReplyError(reply_->Field("ErrorNumber"));
    return error.failed ? RefusedLogin(error) : lsGetTranslation;
}

LoginStates SystemLogin::RefusedLogin(const ReplyError& error) {
    const std::string desc = reply_->Field("ErrorDesc");
    const std::string param = reply_->Field("ErrorParam");
    switch (error.code) {
        case kUnknownUserOrPassword:
            return Meet(LoginFailure::LoginFailed, {state_.texts.MapZEBError(kUnknownUserCode)}, {desc});
        case kPasswordMustChange:
            return Meet(LoginFailure::MustChangePassword);
        case kPasswordExpires: {
            const std::string days = reply_->Field("DaysToExpirePassword");
            return ReceivedVal(days) > 0 ? Meet(LoginFailure::PasswordExpires, {days})
                                         : Meet(LoginFailure::MustChangePassword);
        }
        case kTooManyUsers:
            return Meet(LoginFailure::TooManyUsers,
                        {state_.texts.GetASErrorText(kqaserrLoginTooManyUsers, {param})}, {param});
        default: {
            const std::string text = ZEBFailureText(state_.texts, desc, param);
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
