// Answers from the arguments and the settings file; what only a user could answer is an error.
#include "client/SilentAttendant.h"

#include "base/Convert.h"
#include "client/SessConfig.h"

namespace kq {

LoginStates SilentAttendant::Meet(LoginFailure failure, const Args&, const Args& error) {
    const FailureRule& rule = RuleOf(failure);
    if (rule.error != 0) texts_.RaiseASError(rule.error, error);
    return rule.no;
}

LoginStates SilentAttendant::MeetUnexpected(std::int32_t, const Error&) {
    throw;
}

bool SilentAttendant::GetLoginInfo(SessConfig& config, const SystemLoginArguments& arguments, bool,
                                   LoginDetails& details) {
    // A setting that an argument replaces is not read: what is wrong with it does not matter.
    details.use_as_server_for_login = arguments.UseASServerForLogin.has_value()
                                          ? *arguments.UseASServerForLogin
                                          : TextToBoolean(config.Setting("UseASServerForLogin", "1"));
    if (arguments.Address.empty()) {
        details.address = config.Setting("Address", "");
        details.port = ValLong(config.Setting("Port", ""));
        details.time_out = ValLong(config.Setting("TimeOut", kUsualTimeOut));
    } else {
        details.address = arguments.Address;
        details.port = arguments.Port;
        details.time_out = arguments.TimeOut;
    }
    if (details.address.empty() || details.port == 0 || details.time_out == 0) {
        texts_.RaiseASError(kqaserrLoginBadAddr,
                            {details.address, TextOf(details.port), TextOf(details.time_out)});
    }
    details.login_id = arguments.LoginID;
    details.password = arguments.Password;
    if (details.login_id.empty() || details.password.Empty()) {
        texts_.RaiseASError(kqaserrLoginBadLogin, {details.login_id, details.password.Reveal()});
    }
    return true;
}

std::optional<Secret> SilentAttendant::GetNewPassword(const SystemLoginArguments&) {
    texts_.RaiseASError(kqaserrLoginBadPassword);
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
    texts_.RaiseASError(kqaserrLoginNoConnect, {description});
}

}  // namespace kq
