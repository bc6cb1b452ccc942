// A missing time-out is a type mismatch, a missing port an invalid address.
#include "client/ProfilesOnClient.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "messages/ASMessages.h"

namespace kq {

namespace {

constexpr std::int32_t kWaitUpdating = 310;

void FillFromSettings(const SessConfig& config, ServerSettings& target) {
    if (target.address.empty()) target.address = config.Read(setting::Address);
    if (target.port == 0) target.port = config.Read(setting::Port);
    if (target.time_out == 0) target.time_out = config.Read(setting::RequiredTimeOut);
}

// The request for the session, still without the profiles.
ASProfilesUpdate UploadRequest(const KQAppSessionInfo& session) {
    ASProfilesUpdate request;
    request.AppID = session.AppID();
    request.LoginID = session.LoginID();
    request.UserUID = TextOf(session.UserUID());
    request.SessionID = session.SessionID();
    return request;
}

// Connects; what went wrong in the user's language, nothing when the connection is made.
std::optional<std::string> TryConnect(Procedure& procedure, APClient& client, const ServerSettings& target) {
    try {
        client.Connect(target.address, target.port, "", target.time_out);
        return std::nullopt;
    } catch (const Error& error) {
        procedure.Note(error.Number());
        return procedure.UserTexts().ForUser(error);
    }
}

// Sends the profiles as they are by now: their events upload nothing while the procedure runs. What the login
// server answers is not looked into.
void Send(APClient& client, ASProfilesUpdate request, const std::shared_ptr<Profiles>& profiles,
          std::int32_t time_out, Procedure& procedure) {
    try {
        request.Profiles = profiles ? profiles->ToXML() : Profiles().ToXML();
        client.Request(request.Build(), {}, time_out);
        client.Disconnect();
    } catch (const Error&) {
        client.Disconnect();
        procedure.CheckTermination();
        throw;
    }
}

// The upload with a wait window of its own.
bool Upload(ClientState& state, Procedure& procedure, LoginAttendant& attendant, ServerSettings& target) {
    try {
        return UploadProfiles(state, procedure, attendant, target);
    } catch (const UserGaveUp&) {
        attendant.HideWait();
        state.ReleaseLoginClient();
        return false;
    } catch (...) {
        attendant.HideWait();
        throw;
    }
}

}  // namespace

bool UploadProfiles(ClientState& state, Procedure& procedure, LoginAttendant& attendant,
                    ServerSettings& target) {
    procedure.CheckTermination();
    if (state.config) FillFromSettings(*state.config, target);
    RequireServer(state.texts, target);
    const ASProfilesUpdate request = UploadRequest(*state.session_info);
    for (;;) {
        attendant.ShowWait(kWaitUpdating);
        const auto client = state.NewLoginClient();
        const auto failure = TryConnect(procedure, *client, target);
        procedure.CheckTermination();
        if (!failure) {
            Send(*client, request, state.GetProfiles(), target.time_out, procedure);
            attendant.HideWait();
            return true;
        }
        attendant.HideWait();
        if (!attendant.RetryUpload(*failure)) return false;
        procedure.CheckTermination();
    }
}

bool UpdateProfilesEx(ClientState& state, bool interactive, ServerSettings& target) {
    Procedure procedure(state);
    const auto attendant = MakeAttendant(interactive, state);
    return Upload(state, procedure, *attendant, target);
}

void UpdateProfiles(ClientState& state) {
    ServerSettings target;
    UpdateProfilesEx(state, true, target);
}

void AddReplaceProfile(ClientState& state, bool interactive, std::shared_ptr<Profile> changed_profile) {
    const auto profiles = state.GetProfiles();
    if (!profiles || !changed_profile) Raise(RuntimeError::ObjectNotSet);
    Procedure procedure(state);
    const std::string current_name = state.current_profile ? state.current_profile->Name() : std::string();
    if (profiles->Exists(changed_profile->Name())) profiles->Remove(changed_profile->Name());
    const auto added = profiles->Add(std::move(changed_profile));
    if (added->Name() == current_name) state.current_profile = added;
    procedure.CheckTermination();
    const auto attendant = MakeAttendant(interactive, state);
    ServerSettings target;
    Upload(state, procedure, *attendant, target);
}

}  // namespace kq
