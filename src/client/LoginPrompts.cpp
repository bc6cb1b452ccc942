// What is asked, and when it is read and written.
#include "client/LoginPrompts.h"

#include <utility>

#include "client/ClientTexts.h"
#include "client/TerminableDialog.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmServer.h"
#include "messages/boxes/MessageBoxes.h"

namespace kq {

ServerSettings PromptedSettings::Read(const setting::Row<setting::Number>& time_out) const {
    return unsaved_ ? *unsaved_ : ReadServerSettings(config_, time_out);
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
    ServerSettings server = settings.Read();
    TerminableDialog<frmServer> dialog(state.platform, state.Terminated);
    const bool confirmed = dialog->GetServerInfo(server, nullptr);
    if (confirmed) settings.Write(server);
    return confirmed;
}

bool AskServerAddress(ClientState& state, PromptedSettings& settings, bool force) {
    const ServerSettings server = settings.Read();
    if (!server.address.empty() && server.port != 0 && !force) return true;
    return ChangeConfiguration(state, settings);
}

bool AskLoginDetails(ClientState& state, PromptedSettings& settings, bool use_profiles, const IconPtr& icon,
                     LoginAnswer& answer) {
    SessConfig& config = settings.Config();
    answer.login_id = config.Read(setting::LoginID);
    answer.show_details = config.Read(setting::ShowDetails);
    answer.ask_for_profile = config.Read(setting::AskForProfile);

    TerminableDialog<frmLogin> mLogin(state.platform, state.Terminated);
    mLogin->GetAddressPort = [&](ServerSettings& server) { server = settings.Read(setting::TimeOutIfAny); };
    mLogin->SaveAddressPort = [&](const ServerSettings& server) { settings.Write(server); };
    if (!mLogin->Login(answer, use_profiles, icon)) return false;
    config.Write(setting::LoginID, answer.login_id);
    config.Write(setting::ShowDetails, answer.show_details);
    config.Write(setting::AskForProfile, answer.ask_for_profile);
    return true;
}

}  // namespace kq
