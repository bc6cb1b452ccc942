// A session connection that is lost between connecting and sending (10057) is made again a few times without
// a word.
#include "client/ServerLogin.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "platform/Locale.h"
#include "platform/Machine.h"
#include "session/SessionRecords.h"

namespace kq {

namespace {

constexpr std::int32_t kUnexpectedError = 409;
constexpr std::int32_t kWaitRegistering = 304;
constexpr std::int32_t kWaitConnecting = 306;
constexpr int kMaxRetries = 5;

}  // namespace

ServerLogin::ServerLogin(ClientState& state, bool interactive)
    : LoginLoop(state, interactive, "ServerLogin", kUnexpectedError) {}

LoginStates ServerLogin::Begin() {
    if (state_.LoginState() == kqaslsNotLoggedIn) state_.texts.RaiseASError(kqaserrLoginNoSystem);
    state_.OpenConfig(state_.session_info->AppID());
    if (state_.LoginState() == kqaslsServerLogin) state_.SetLoginState(kqaslsSystemLogin);
    return lsAttemptConnectServer;
}

std::optional<LoginStates> ServerLogin::Step(LoginStates state) {
    if (state == lsAttemptConnectServer) return AttemptConnectServer();
    if (state == lsAttemptRegister) return AttemptRegister();
    attendant_->HideWait();
    if (state == lsFinish) {
        Finish();
    } else if (state == lsGetLoginInfo) {
        GiveUpLogin();
    } else {
        state_.ReleaseSessionClient();
    }
    return std::nullopt;
}

LoginStates ServerLogin::AttemptConnectServer() {
    attendant_->ShowWait(kWaitConnecting);
    connection_ = state_.NewSessionClient();
    try {
        connection_->Connect(state_.app_server_address, state_.app_server_port, "",
                             state_.app_server_time_out);
        return lsAttemptRegister;
    } catch (const Error& error) {
        procedure_->Note(error.Number());  // neither the error nor the question names it
    }
    return Meet(LoginFailure::NoConnectAS);
}

LoginStates ServerLogin::AttemptRegister() {
    attendant_->ShowWait(kWaitRegistering);
    ASRegisterRequest request;
    request.AppID = state_.session_info->AppID();
    request.SessionID = state_.session_info->SessionID();
    request.LocaleID = TextOf(state_.platform->Parts().locale->UserLocaleId());
    state_.Pause(kLoginPause);
    try {
        connection_->SendText(request.Build().ToXML());
    } catch (const Error& error) {
        procedure_->Note(error.Number());
        const bool not_connected = error.Number() == static_cast<std::int32_t>(NetError::NotConnected);
        if (not_connected && retries_ < kMaxRetries && !procedure_->Ended()) {
            ++retries_;
            return lsAttemptConnectServer;
        }
        return NoReply();
    }
    state_.Pause(kLoginPause);
    const auto reply = TakeReply<ASRegisterResponse>(*procedure_, *connection_, state_.app_server_time_out);
    if (!reply.received) return NoReply();
    if (reply.improper != 0 || ReceivedVal(reply.fields.ErrorNum) != 0) return Refused(reply);
    return lsFinish;
}

LoginStates ServerLogin::NoReply() {
    const LoginStates next = Meet(LoginFailure::NoRegisterReply);
    const bool again = next == lsAttemptRegister;
    return again && !connection_->Connected() ? lsGetLoginInfo : next;
}

LoginStates ServerLogin::Refused(const Reply<ASRegisterResponse>& reply) {
    std::string text = reply.fields.ErrorDesc;
    if (text.empty() && reply.improper != 0) text = state_.texts.Text(reply.improper);
    return Meet(LoginFailure::RegisterFailed, {text}, {text});
}

void ServerLogin::Finish() {
    SessionRecords::SetClient(*state_.session_info, connection_);
    connection_->SetReceiveType(DataType::Any);
    connection_->SetReceiveMode(ReceiveMode::Events);
    state_.SetLoginState(kqaslsServerLogin);
}

void ServerLogin::GiveUpLogin() {
    state_.session_info = std::make_shared<KQAppSessionInfo>();
    state_.ReleaseSessionClient();
    state_.ReleaseLoginClient();
    state_.SetProfiles(nullptr);
    state_.current_profile.reset();
    state_.SetLoginState(kqaslsNotLoggedIn);
}

}  // namespace kq
