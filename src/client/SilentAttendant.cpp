// Answers from the arguments and the settings file; what only a user could answer is an error.
#include "client/SilentAttendant.h"

#include "client/SessConfig.h"

namespace kq {

namespace {

// A setting that an argument replaces is not read: what is wrong with it does not matter.
ServerSettings ServerOf(const SessConfig& config, const SystemLoginArguments& arguments) {
    const auto& given = arguments.UseASServerForLogin;
    try {
        const bool use_as_server = given ? *given : config.Read(setting::UseASServerForLogin);
        if (!arguments.Address.empty())
            return {arguments.Address, arguments.Port, arguments.TimeOut, use_as_server};
        return {config.Read(setting::Address), config.Read(setting::Port), config.Read(setting::TimeOut),
                use_as_server};
    } catch (const Error& error) {
        throw Error(error.Number(), error.Source(), error.Description(), ErrorCause::Arguments);
    }
}

}  // namespace

LoginStates SilentAttendant::Meet(LoginFailure failure, const Args&, const Args& error) {
    const FailureRule& rule = RuleOf(failure);
    if (rule.error != 0) texts_.RaiseASError(rule.error, error, rule.cause);
    return rule.no;
}

LoginStates SilentAttendant::MeetUnexpected(std::int32_t, const Error&) {
    throw;
}

bool SilentAttendant::GetLoginInfo(SessConfig& config, const SystemLoginArguments& arguments, bool,
                                   LoginDetails& details) {
    details.server = ServerOf(config, arguments);
    RequireServer(texts_, details.server);
    details.login_id = arguments.LoginID;
    details.password = arguments.Password;
    if (details.login_id.empty() || details.password.Empty()) {
        texts_.RaiseASError(kqaserrLoginBadLogin, {details.login_id, details.password.Reveal()},
                            ErrorCause::Arguments);
    }
    return true;
}

std::optional<Secret> SilentAttendant::GetNewPassword(const SystemLoginArguments&) {
    texts_.RaiseASError(kqaserrLoginBadPassword, {}, ErrorCause::PasswordChange);
}

bool SilentAttendant::ChooseProfile(const std::shared_ptr<Profiles>& profiles, const SystemLoginArguments&,
                                    std::shared_ptr<Profile>& current, bool&) {
    if (!current && profiles->Count() > 0) current = profiles->Item(1);
    return true;
}

std::optional<std::string> SilentAttendant::DownloadClient(const std::shared_ptr<APClient>&,
                                                           bool& try_again) {
    try_again = false;
    return std::nullopt;
}

bool SilentAttendant::RetryUpload(const std::string& description) {
    texts_.RaiseASError(kqaserrLoginNoConnect, {description}, ErrorCause::NoConnection);
}

}  // namespace kq
