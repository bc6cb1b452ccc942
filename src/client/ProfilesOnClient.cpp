// The port is read by the numeric-prefix rule and the time-out by the whole-text rule: a missing time-out is
// a type mismatch, a missing port an invalid address.
#include "client/ProfilesOnClient.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "messages/ASMessages.h"

namespace kq {

namespace {

constexpr std::int32_t kWaitUpdating = 310;

void FillFromSettings(const SessConfig& config, UploadTarget& target) {
    if (target.address.empty()) target.address = config.Setting("Address", "");
    if (target.port == 0) target.port = ValLong(config.Setting("Port", ""));
    if (target.time_out == 0) target.time_out = TextToLong(config.Setting("TimeOut", ""));
}

XMLMessage UploadMessage(const ClientState& state) {
    ASProfilesUpdate request;
    request.AppID = state.session_info->AppID();
    request.LoginID = state.session_info->LoginID();
    request.UserUID = TextOf(state.session_info->UserUID());
    request.SessionID = state.session_info->SessionID();
    request.Profiles = state.GetProfiles() ? state.GetProfiles()->ToXML() : Profiles().ToXML();
    return request.Build();
}

// Connects; the description of what went wrong, nothing when the connection stands.
std::optional<std::string> TryConnect(APClient& client, const UploadTarget& target) {
    try {
        client.Connect(target.address, target.port, "", target.time_out);
        return client.Connected() ? std::nullopt : std::optional<std::string>("");
    } catch (const Error& error) {
        return error.Description();
    }
}

}  // namespace

bool UploadProfiles(ClientState& state, LoginAttendant& attendant, UploadTarget& target) {
    if (state.config) FillFromSettings(*state.config, target);
    if (target.time_out == 0 || target.port == 0 || target.address.empty()) {
        state.texts.RaiseASError(kqaserrLoginBadAddr,
                                 {target.address, TextOf(target.port), TextOf(target.time_out)});
    }
    for (;;) {
        attendant.ShowWait(kWaitUpdating);
        const auto client = state.NewLoginClient();
        const auto failure = TryConnect(*client, target);
        if (!failure) {
            client->Request(UploadMessage(state), {}, target.time_out);
            client->Disconnect();
            attendant.HideWait();
            return true;
        }
        attendant.HideWait();
        if (!attendant.RetryUpload(*failure)) return false;
    }
}

bool UpdateProfilesEx(ClientState& state, bool interactive, UploadTarget& target) {
    const Procedure procedure(state);
    const auto attendant = MakeAttendant(interactive, state.platform);
    try {
        return UploadProfiles(state, *attendant, target);
    } catch (...) {
        attendant->HideWait();
        throw;
    }
}

void UpdateProfiles(ClientState& state) {
    UploadTarget target;
    UpdateProfilesEx(state, true, target);
}

void AddReplaceProfile(ClientState& state, bool interactive, std::shared_ptr<Profile> changed_profile) {
    const auto profiles = state.GetProfiles();
    if (!profiles || !changed_profile) Raise(RuntimeError::ObjectNotSet);
    {
        const Procedure procedure(state);
        const std::string current_name =
            state.current_profile ? state.current_profile->Name() : std::string();
        if (profiles->Exists(changed_profile->Name())) profiles->Remove(changed_profile->Name());
        const auto added = profiles->Add(std::move(changed_profile));
        if (added->Name() == current_name) state.current_profile = added;
    }
    UploadTarget target;
    UpdateProfilesEx(state, interactive, target);
}

}  // namespace kq
