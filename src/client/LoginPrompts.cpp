// The two preferences of the login dialog are kept as "True" or "False", unlike the flags of the server.
#include "client/LoginPrompts.h"

#include "base/Convert.h"
#include "client/TerminableDialog.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmServer.h"

namespace kq {

bool ChangeConfiguration(ClientState& state, SessConfig& config) {
    ServerSettings settings = ReadServerSettings(config, kUsualTimeOut);
    TerminableDialog<frmServer> server(state.platform, state.Terminated);
    const bool confirmed = server->GetServerInfo(settings.address, settings.port, settings.time_out,
                                                 settings.use_as_server_for_login, nullptr);
    if (confirmed) WriteServerSettings(config, settings);
    return confirmed;
}

bool AskServerAddress(ClientState& state, SessConfig& config, bool force) {
    const ServerSettings settings = ReadServerSettings(config, kUsualTimeOut);
    if (!settings.address.empty() && settings.port != 0 && !force) return true;
    return ChangeConfiguration(state, config);
}

bool AskLoginDetails(ClientState& state, SessConfig& config, bool use_profiles, const IconPtr& icon,
                     LoginDetails& details) {
    std::string login_id = config.Setting("LoginID", "");
    bool show_details = TextToBoolean(config.Setting("ShowDetails", "False"));
    bool ask_for_profile = TextToBoolean(config.Setting("AskForProfile", "False"));

    TerminableDialog<frmLogin> mLogin(state.platform, state.Terminated);
    mLogin->GetAddressPort = [&](std::string& address, std::int32_t& port, std::int32_t& time_out,
                                 bool& use_as) {
        const ServerSettings settings = ReadServerSettings(config, "");  // a missing time-out is 0 here
        address = settings.address;
        port = settings.port;
        time_out = settings.time_out;
        use_as = settings.use_as_server_for_login;
    };
    mLogin->SaveAddressPort = [&](std::string& address, std::int32_t& port, std::int32_t& time_out,
                                  bool& use_as) {
        WriteServerSettings(config, {address, port, time_out, use_as});
    };
    if (!mLogin->Login(login_id, details.password, use_profiles, details.new_password, ask_for_profile,
                       show_details, icon)) {
        return false;
    }
    config.SetSetting("LoginID", login_id);
    config.SetSetting("ShowDetails", TextOf(show_details));
    config.SetSetting("AskForProfile", TextOf(ask_for_profile));
    details.login_id = login_id;
    details.ask_for_profile = ask_for_profile;
    return true;
}

}  // namespace kq
