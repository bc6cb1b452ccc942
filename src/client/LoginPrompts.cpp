// The two preferences of the login dialog are kept as "True" or "False", unlike the flags of the server.
#include "client/LoginPrompts.h"

#include <utility>

#include "base/Convert.h"
#include "client/ClientTexts.h"
#include "client/TerminableDialog.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmServer.h"
#include "messages/boxes/MessageBoxes.h"

namespace kq {

ServerSettings PromptedSettings::Read(const std::string& default_time_out) const {
    return unsaved_ ? *unsaved_ : ReadServerSettings(config_, default_time_out);
}

void PromptedSettings::Write(const ServerSettings& settings) {
    unsaved_.reset();
    if (WriteServerSettings(config_, settings)) return;
    unsaved_ = settings;
    if (std::exchange(warned_, true)) return;
    MessageBoxes(state_.platform, &state_.Terminated)
        .ShowWarning(ClientText(ClientSentence::SettingsNotSaved, state_.texts, {config_.Path()}));
}

bool ChangeConfiguration(ClientState& state, PromptedSettings& settings) {
    ServerSettings server = settings.Read(kUsualTimeOut);
    TerminableDialog<frmServer> dialog(state.platform, state.Terminated);
    const bool confirmed = dialog->GetServerInfo(server.address, server.port, server.time_out,
                                                 server.use_as_server_for_login, nullptr);
    if (confirmed) settings.Write(server);
    return confirmed;
}

bool AskServerAddress(ClientState& state, PromptedSettings& settings, bool force) {
    const ServerSettings server = settings.Read(kUsualTimeOut);
    if (!server.address.empty() && server.port != 0 && !force) return true;
    return ChangeConfiguration(state, settings);
}

bool AskLoginDetails(ClientState& state, PromptedSettings& settings, bool use_profiles, const IconPtr& icon,
                     LoginDetails& details) {
    SessConfig& config = settings.Config();
    std::string login_id = config.Setting("LoginID", "");
    bool show_details = TextToBoolean(config.Setting("ShowDetails", "False"));
    bool ask_for_profile = TextToBoolean(config.Setting("AskForProfile", "False"));

    TerminableDialog<frmLogin> mLogin(state.platform, state.Terminated);
    mLogin->GetAddressPort = [&](std::string& address, std::int32_t& port, std::int32_t& time_out,
                                 bool& use_as) {
        const ServerSettings server = settings.Read("");  // a missing time-out is 0 here
        address = server.address;
        port = server.port;
        time_out = server.time_out;
        use_as = server.use_as_server_for_login;
    };
    mLogin->SaveAddressPort = [&](std::string& address, std::int32_t& port, std::int32_t& time_out,
                                  bool& use_as) {
        settings.Write({address, port, time_out, use_as});
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
